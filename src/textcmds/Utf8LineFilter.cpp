#include "textcmds/LineFiltersSupport.h"
#include "textcmds/Utf8Transforms.h"
#include "util/ByteWriter.h"
#include "util/Utf8.h"

#include <QStringMatcher>

#include <array>
#include <cstring>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

// Lower-cases UTF-8 one character for one of the same length in bytes, as LowerCaser::lowerInto
// lowers UTF-16 one character for one. False (and the output partly written) where that cannot
// be done: a character lowerInto leaves to the full conversion, or one whose lower case takes a
// different number of bytes (the Kelvin sign becomes a plain "k").
class Utf8Lowering {
public:
    explicit Utf8Lowering(LowerCaser& lower) : lower_(lower) { twoByte_.fill(kUnknown); }

    bool lowerInto(QByteArrayView text, char* d) {
        const auto* s = reinterpret_cast<const unsigned char*>(text.data());
        const qsizetype n = text.size();
        qsizetype i = 0;
        while (i < n) {
#ifdef __SSE2__
            const __m128i beforeA = _mm_set1_epi8('A' - 1);
            const __m128i afterZ = _mm_set1_epi8('Z' + 1);
            const __m128i caseBit = _mm_set1_epi8(0x20);
            while (i + 16 <= n) {
                const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
                const __m128i upper =
                    _mm_and_si128(_mm_cmpgt_epi8(v, beforeA), _mm_cmplt_epi8(v, afterZ));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i),
                                 _mm_or_si128(v, _mm_and_si128(upper, caseBit)));
                const int nonAscii = _mm_movemask_epi8(v);
                if (nonAscii != 0) {
                    i += __builtin_ctz(unsigned(nonAscii));
                    break;
                }
                i += 16;
            }
#endif
            if (i >= n)
                break;
            const unsigned char c = s[i];
            if (c < 0x80) {
                d[i++] = char(unsigned(c - 'A') < 26 ? c | 0x20 : c);
                continue;
            }
            int len;
            const char32_t cp = decodeUtf8At(s + i, len);
            char32_t m;
            if (len == 2) {
                m = twoByte_[cp];
                if (m == kUnknown)
                    m = twoByte_[cp] = sameLength(cp, 2);
            } else {
                m = len == 3 ? sameLength(cp, 3) : kNone;
            }
            if (m == kNone)
                return false;
            encodeUtf8At(m, d + i);
            i += len;
        }
        return true;
    }

private:
    static constexpr char16_t kUnknown = 0;
    static constexpr char16_t kNone = 1;

    // The lower case of `cp` when it is one character of `len` bytes, else kNone.
    char16_t sameLength(char32_t cp, int len) {
        if (lower_.lowersDifferently(char16_t(cp)))
            return kNone;
        const char32_t m = QChar::toLower(cp);
        return utf8Length(m) == len ? char16_t(m) : kNone;
    }

    LowerCaser& lower_;
    std::array<char16_t, 0x800> twoByte_;
};

// The first place at or after `from` where `pattern` (not empty) occurs in `text`, or -1.
qsizetype find(QByteArrayView text, QByteArrayView pattern, qsizetype from) {
    const char* h = text.data();
    const char* q = pattern.data();
    const qsizetype n = text.size();
    const qsizetype m = pattern.size();
    auto matchesAt = [&](qsizetype at) {
        for (qsizetype k = 1; k < m - 1; ++k)
            if (h[at + k] != q[k])
                return false;
        return true;
    };
    qsizetype i = from;
#ifdef __SSE2__
    // Sixteen places at a time are tested for the pattern's first, second and last byte; only
    // where all three are right is the rest compared.
    const __m128i first = _mm_set1_epi8(q[0]);
    const __m128i second = _mm_set1_epi8(q[m > 1 ? 1 : 0]);
    const __m128i last = _mm_set1_epi8(q[m - 1]);
    const qsizetype secondAt = m > 1 ? 1 : 0;
    for (; i + m - 1 + 16 <= n; i += 16) {
        auto at = [&](qsizetype k, __m128i c) {
            return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i + k)), c);
        };
        auto mask = unsigned(_mm_movemask_epi8(
            _mm_and_si128(_mm_and_si128(at(0, first), at(secondAt, second)), at(m - 1, last))));
        while (mask) {
            const int bit = __builtin_ctz(mask);
            if (matchesAt(i + bit))
                return i + bit;
            mask &= mask - 1;
        }
    }
#endif
    for (; i + m <= n; ++i)
        if (h[i] == q[0] && h[i + m - 1] == q[m - 1] && matchesAt(i))
            return i;
    return -1;
}

} // namespace

QByteArray filterLinesUtf8(const Utf8Document& doc, const QString& answer, bool keepContaining) {
    const QString pattern = answer.toLower();
    const QStringMatcher matcher(pattern, Qt::CaseSensitive);
    LowerCaser lower;
    const QByteArrayView text = doc.text();
    const char* p = text.data();
    const qsizetype n = text.size();
    const LineBreak style = doc.lineBreak();
    const QByteArrayView br = doc.lineBreakBytes();
    const char endByte = lineEndByte(style);
    const qsizetype beforeEnd = style == LineBreak::CrLf ? 1 : 0;
    ByteWriter out(n + br.size());

    qsizetype runStart = 0; // the first line not yet written or dropped
    // The line [start, end) contains the pattern.
    auto found = [&](qsizetype start, qsizetype end) {
        if (keepContaining) {
            out.append(QByteArrayView(p + start, end - start));
            out.append(br);
        } else {
            out.append(QByteArrayView(p + runStart, start - runStart));
            runStart = end + br.size();
        }
    };
    // The line as the model holds it, tested as the filter tests a line of the model.
    auto test = [&](QByteArrayView line) {
        if (matcher.indexIn(lower(QString::fromUtf8(line))) >= 0)
            found(line.data() - p, line.data() - p + line.size());
    };

    if (pattern.isEmpty() || pattern.contains(u'\r') || pattern.contains(u'\n') ||
        !QStringView(pattern).isValidUtf16()) {
        forEachUtf8Line(text, style, test);
    } else {
        // Blocks of whole lines are lower-cased and searched at once; a line costs nothing of its
        // own unless the pattern is found in it.
        const QByteArray needle = pattern.toUtf8();
        Utf8Lowering lowering(lower);
        constexpr qsizetype kBlock = 64 * 1024;
        std::vector<char> lowered;
        qsizetype pos = 0; // the start of the next block, always a line start
        while (true) {
            // [pos, end): whole lines, `end` at a line break or the end of the text.
            qsizetype end = n;
            if (pos + kBlock < n) {
                if (const void* e =
                        std::memchr(p + pos + kBlock, endByte, size_t(n - pos - kBlock)))
                    end = static_cast<const char*>(e) - p - beforeEnd;
            }
            const QByteArrayView block(p + pos, end - pos);
            lowered.resize(size_t(block.size()));
            if (lowering.lowerInto(block, lowered.data())) {
                const QByteArrayView low(lowered.data(), block.size());
                qsizetype from = 0;
                while (true) {
                    const qsizetype hit = find(low, needle, from);
                    if (hit < 0)
                        break;
                    // The pattern holds no line break: the hit lies inside one line.
                    qsizetype start = hit;
                    while (start > 0 && low[start - 1] != endByte)
                        --start;
                    const void* e =
                        std::memchr(low.data() + hit, endByte, size_t(low.size() - hit));
                    const qsizetype stop =
                        e ? static_cast<const char*>(e) - low.data() - beforeEnd : low.size();
                    found(pos + start, pos + stop);
                    from = stop + br.size();
                }
            } else {
                forEachUtf8Line(block, style, test);
            }
            if (end >= n)
                break;
            pos = end + br.size();
        }
    }
    if (!keepContaining && runStart <= n) {
        out.append(QByteArrayView(p + runStart, n - runStart));
        out.append(br);
    }
    return std::move(out).finish();
}

} // namespace ed
