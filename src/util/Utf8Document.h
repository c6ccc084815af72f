#pragma once
// A document kept as the bytes of its UTF-8 file. Commands that can work on those bytes directly
// do so instead of decoding the whole file into the model and encoding the result again: on a big
// file that round trip costs more than most commands. They must give exactly the bytes the round
// trip would give.

#include "util/TextCodec.h"

#include <QByteArray>
#include <QByteArrayView>

#include <cstring>
#include <optional>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

class Utf8Document {
public:
    // The document of a file's bytes when decodeText would read them as UTF-8 (with or without a
    // byte order mark); nothing when it would read them another way. `bytes` must stay valid
    // while the document lives (a mapped file may be passed without a copy). The line-break
    // style is found in the same pass when `findLineBreak` is set, else on the first call of
    // lineBreak().
    static std::optional<Utf8Document> fromFile(const QByteArray& bytes, bool findLineBreak = true);

    // The text after the byte order mark: valid UTF-8 until setText says otherwise.
    QByteArrayView text() const { return text_; }
    // Replaces the text; the mark and the line-break style stay.
    void setText(QByteArray text) { text_ = std::move(text); }
    // What to write back: the byte order mark (if the file had one) and the text.
    QByteArray fileBytes() const;

    // The file's line-break style as loading and saving keep it: CR LF when the file has no line
    // break at all. The text is split into lines at this break, every line of a command's result
    // ends with it, and the model's lines are exactly these lines. Not to be called after
    // setText unless it was found before.
    LineBreak lineBreak() const;
    QByteArrayView lineBreakBytes() const;

private:
    Utf8Document(QByteArray text, bool bom, std::optional<LineBreak> lineBreak)
        : text_(std::move(text)), bom_(bom), lineBreak_(lineBreak) {}

    QByteArray text_;
    bool bom_;
    mutable std::optional<LineBreak> lineBreak_;
};

// The byte that ends a line of the style (the second of CR LF): every such byte in the text of a
// Utf8Document is the end of a line break.
inline char lineEndByte(LineBreak style) {
    return style == LineBreak::Cr ? '\r' : '\n';
}

// Calls f(line) for every line of `text` split at breaks of `style`, the last (possibly empty)
// piece included, as the model's line split gives them. `text` must have no lone LF when the
// style is CR LF (as the text of a Utf8Document has none).
template <class F> void forEachUtf8Line(QByteArrayView text, LineBreak style, F&& f) {
    const char* p = text.data();
    const qsizetype n = text.size();
    const char last = lineEndByte(style);
    const qsizetype before = style == LineBreak::CrLf ? 1 : 0;
    qsizetype start = 0; // the start of the current line
    auto lineEnd = [&](qsizetype at) {
        f(QByteArrayView(p + start, at - before - start));
        start = at + 1;
    };
    qsizetype i = 0;
#ifdef __SSE2__
    // The line ends of 64 bytes at a time as the bits of one number.
    const __m128i end = _mm_set1_epi8(last);
    auto ends = [&](qsizetype at) {
        return quint64(unsigned(_mm_movemask_epi8(
            _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + at)), end))));
    };
    for (; i + 64 <= n; i += 64) {
        quint64 mask = ends(i) | ends(i + 16) << 16 | ends(i + 32) << 32 | ends(i + 48) << 48;
        while (mask) {
            lineEnd(i + __builtin_ctzll(mask));
            mask &= mask - 1;
        }
    }
#endif
    while (const void* hit = std::memchr(p + i, last, size_t(n - i))) {
        i = static_cast<const char*>(hit) - p;
        lineEnd(i++);
    }
    f(QByteArrayView(p + start, n - start));
}

} // namespace ed
