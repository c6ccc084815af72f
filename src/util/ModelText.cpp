#include "util/ModelText.h"

#include "util/HugePages.h"
#include "util/Utf8.h"

#include <algorithm>

namespace ed {

namespace {

#ifdef __SSE2__
// Per byte of 16: 0xFF where it starts a UTF-16 unit (any byte but a continuation byte), and
// where it starts a second one (the lead of four bytes).
inline __m128i startsUnit(__m128i v) {
    // Continuation bytes 0x80-0xBF are -128..-65 as signed bytes.
    return _mm_cmpgt_epi8(v, _mm_set1_epi8(-65));
}
inline __m128i startsPair(__m128i v) {
    // Leads of four bytes 0xF0-0xF4 are -16..-12 (up to 0xFF counted alike).
    return _mm_and_si128(_mm_cmpgt_epi8(v, _mm_set1_epi8(-17)),
                         _mm_cmplt_epi8(v, _mm_setzero_si128()));
}
// The sum of the sixteen byte counters of `acc`.
inline int sumBytes(__m128i acc) {
    const __m128i s = _mm_sad_epu8(acc, _mm_setzero_si128());
    return _mm_cvtsi128_si32(s) + _mm_cvtsi128_si32(_mm_unpackhi_epi64(s, s));
}
// Per 16 bytes: the UTF-16 units they start (lead bytes count one, four-byte leads two).
inline int unitsIn16(const char* p) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return sumBytes(_mm_sub_epi8(_mm_sub_epi8(_mm_setzero_si128(), startsUnit(v)), startsPair(v)));
}
#endif

inline int unitsOf(unsigned char b) {
    return (b & 0xC0) == 0x80 ? 0 : b >= 0xF0 ? 2 : 1;
}

} // namespace

QByteArray toModelUtf8(QStringView text) {
    const qsizetype n = text.size();
    QByteArray out(3 * n, Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(out.size()));
    char* d = out.data();
    const char16_t* s = text.utf16();
    for (qsizetype i = 0; i < n;) {
        const char16_t c = s[i];
        if (c < 0x80) {
            *d++ = char(c);
            ++i;
        } else if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(s[i + 1])) {
            d = encodeUtf8At(QChar::surrogateToUcs4(c, s[i + 1]), d);
            i += 2;
        } else if (c < 0x800) {
            *d++ = char(0xC0 | (c >> 6));
            *d++ = char(0x80 | (c & 0x3F));
            ++i;
        } else {
            // Three bytes; a lone surrogate is written as the three bytes its value would take.
            *d++ = char(0xE0 | (c >> 12));
            *d++ = char(0x80 | ((c >> 6) & 0x3F));
            *d++ = char(0x80 | (c & 0x3F));
            ++i;
        }
    }
    out.truncate(d - out.constData());
    return out;
}

QString fromModelUtf8(QByteArrayView bytes) {
    QString out(bytes.size(), Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(bytes.size()) * sizeof(QChar));
    out.truncate(decodeModelUtf8(bytes, reinterpret_cast<char16_t*>(out.data())));
    return out;
}

qsizetype decodeModelUtf8(QByteArrayView bytes, char16_t* out) {
    const qsizetype n = bytes.size();
    char16_t* d = out;
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    for (qsizetype i = 0; i < n;) {
        const unsigned char c = s[i];
        if (c < 0x80) {
            *d++ = c;
            ++i;
            continue;
        }
        quint32 cp;
        int len = checkedUtf8At(s + i, n - i, cp);
        if (len == 0 && c == 0xED && n - i >= 3 && (s[i + 1] & 0xC0) == 0x80 &&
            (s[i + 2] & 0xC0) == 0x80) {
            // A lone surrogate kept by toModelUtf8.
            cp = 0xD000 | ((s[i + 1] & 0x3F) << 6) | (s[i + 2] & 0x3F);
            len = 3;
        }
        if (len == 0) {
            // Not from this program's model: each stray byte reads as its Latin-1 character.
            *d++ = c;
            ++i;
            continue;
        }
        if (cp >= 0x10000) {
            *d++ = char16_t(0xD800 + ((cp - 0x10000) >> 10));
            *d++ = char16_t(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            *d++ = char16_t(cp);
        }
        i += len;
    }
    return d - out;
}

qsizetype utf16Length(QByteArrayView bytes) {
    const char* p = bytes.data();
    const qsizetype n = bytes.size();
    qsizetype units = 0;
    qsizetype i = 0;
#ifdef __SSE2__
    while (i + 16 <= n) {
        // Each byte counter grows by at most two a block: 127 blocks fit in a byte.
        const qsizetype stop = std::min(n - 15, i + 16 * 127);
        __m128i acc = _mm_setzero_si128();
        for (; i < stop; i += 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            acc = _mm_sub_epi8(_mm_sub_epi8(acc, startsUnit(v)), startsPair(v));
        }
        units += sumBytes(acc);
    }
#endif
    for (; i < n; ++i)
        units += unitsOf((unsigned char)p[i]);
    return units;
}

qsizetype byteOffsetOf(QByteArrayView bytes, qsizetype pos) {
    const char* p = bytes.data();
    const qsizetype n = bytes.size();
    if (pos <= 0)
        return 0;
    qsizetype left = pos;
    qsizetype i = 0;
#ifdef __SSE2__
    for (; i + 16 <= n; i += 16) {
        const int u = unitsIn16(p + i);
        if (u >= left)
            break;
        left -= u;
    }
#endif
    for (; i < n; ++i) {
        const int u = unitsOf((unsigned char)p[i]);
        if (u == 0)
            continue;
        if (left < u)
            return i; // at this character, or inside its surrogate pair
        left -= u;
        if (left == 0) {
            // The position is right after this character: skip its continuation bytes.
            ++i;
            while (i < n && ((unsigned char)p[i] & 0xC0) == 0x80)
                ++i;
            return i;
        }
    }
    return n;
}

qsizetype countLineBreaks(QByteArrayView text) {
    const char* p = text.data();
    const qsizetype n = text.size();
    qsizetype breaks = 0;
    qsizetype i = 0;
#ifdef __SSE2__
    // Each CR whose next byte is an LF, sixteen bytes at a time, counted in byte lanes that are
    // added up before they can overflow.
    const __m128i zero = _mm_setzero_si128();
    while (i + 17 <= n) {
        __m128i lanes = zero;
        for (int k = 0; k < 255 && i + 17 <= n; ++k, i += 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i + 1));
            const __m128i pairs = _mm_and_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('\r')),
                                                _mm_cmpeq_epi8(next, _mm_set1_epi8('\n')));
            lanes = _mm_sub_epi8(lanes, pairs);
        }
        const __m128i sums = _mm_sad_epu8(lanes, zero);
        breaks += _mm_cvtsi128_si64(sums) + _mm_cvtsi128_si64(_mm_unpackhi_epi64(sums, sums));
    }
#endif
    for (; i + 1 < n; ++i)
        breaks += p[i] == '\r' && p[i + 1] == '\n';
    return breaks;
}

qsizetype countModelLines(QByteArrayView text) {
    return countLineBreaks(text) + 1;
}

} // namespace ed
