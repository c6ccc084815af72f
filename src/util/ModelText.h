#pragma once
// The document's text as every command sees it: UTF-8 bytes whose line breaks are CR LF (a lone
// CR or LF is an ordinary character of its line). The edit control counts positions in UTF-16
// code units, a CR LF as two; they are mapped to byte offsets here, by one scan, never by
// converting the text. A lone surrogate (only a UTF-16 file or the window can hold one) is kept
// as its own three-byte sequence so that nothing is lost on the way through.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

// UTF-16 text <-> model bytes.
QByteArray toModelUtf8(QStringView text);
QString fromModelUtf8(QByteArrayView bytes);
// The same written at `out`, which has room for bytes.size() units; returns the units written.
qsizetype decodeModelUtf8(QByteArrayView bytes, char16_t* out);

// How many UTF-16 code units the bytes are.
qsizetype utf16Length(QByteArrayView bytes);
// The byte offset of UTF-16 position `pos` (clipped to the text); a position inside a surrogate
// pair maps to the start of its character.
qsizetype byteOffsetOf(QByteArrayView bytes, qsizetype pos);

// How many CR LF pairs the text holds.
qsizetype countLineBreaks(QByteArrayView text);
// Number of lines (pieces split at CR LF, the last one included even when empty): one more.
qsizetype countModelLines(QByteArrayView text);

// Calls f(line) for every piece of `text` split at CR LF, the last (possibly empty) one included.
template <class F> void forEachModelLine(QByteArrayView text, F&& f) {
    const char* p = text.data();
    const qsizetype n = text.size();
    qsizetype start = 0;
    auto atLf = [&](qsizetype lf) {
        if (lf > start && p[lf - 1] == '\r') {
            f(QByteArrayView(p + start, lf - 1 - start));
            start = lf + 1;
        }
    };
    qsizetype i = 0;
#ifdef __SSE2__
    const __m128i newline = _mm_set1_epi8('\n');
    auto ends = [&](qsizetype at) {
        return quint64(unsigned(_mm_movemask_epi8(
            _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + at)), newline))));
    };
    for (; i + 64 <= n; i += 64) {
        quint64 mask = ends(i) | ends(i + 16) << 16 | ends(i + 32) << 32 | ends(i + 48) << 48;
        while (mask) {
            atLf(i + __builtin_ctzll(mask));
            mask &= mask - 1;
        }
    }
#endif
    while (i < n) {
        const void* hit = std::memchr(p + i, '\n', size_t(n - i));
        if (!hit)
            break;
        i = static_cast<const char*>(hit) - p;
        atLf(i++);
    }
    f(QByteArrayView(p + start, n - start));
}

} // namespace ed
