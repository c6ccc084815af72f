#include "textcmds/Utf8Lowering.h"

#include "util/Utf8.h"

#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

// The most bytes one character's lower case takes (three UTF-16 units of three bytes each),
// rounded up so that sixteen bytes of ASCII can always be written too.
constexpr qsizetype kRoom = 16;

} // namespace

Utf8Lowering::Utf8Lowering(Mapping mapping) : mapping_(mapping) {
    for (Entry& e : twoByte_)
        e.size = kUnknown;
}

char* Utf8Lowering::putMapped(char32_t cp, char* d) {
    if (mapping_ == Mapping::Simple) {
        char32_t m = QChar::toLower(cp);
        // A character whose lower case lies in the other plane (none known) stays as it is.
        if (QChar::requiresSurrogates(m) != QChar::requiresSurrogates(cp))
            m = cp;
        return encodeUtf8At(m, d);
    }
    const QStringView m = full_.map(cp);
    for (qsizetype k = 0; k < m.size(); ++k) {
        char32_t u = m[k].unicode();
        if (m[k].isHighSurrogate() && k + 1 < m.size() && m[k + 1].isLowSurrogate()) {
            u = QChar::surrogateToUcs4(m[k], m[k + 1]);
            ++k;
        }
        d = encodeUtf8At(u, d); // a lone surrogate keeps its own three bytes
    }
    return d;
}

char* Utf8Lowering::put(char32_t cp, char* d) {
    if (cp >= 0x800)
        return putMapped(cp, d);
    Entry& e = twoByte_[cp - 0x80];
    if (e.size == kUnknown) {
        char bytes[kRoom];
        const qsizetype size = putMapped(cp, bytes) - bytes;
        if (size <= qsizetype(sizeof e.bytes)) {
            std::memcpy(e.bytes, bytes, size_t(size));
            e.size = quint8(size);
        } else {
            e.size = kLong;
        }
    }
    if (e.size == kLong)
        return putMapped(cp, d);
    std::memcpy(d, e.bytes, sizeof e.bytes);
    return d + e.size;
}

QByteArrayView Utf8Lowering::operator()(QByteArrayView text) {
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    const qsizetype n = text.size();
    if (buffer_.size() < n + kRoom)
        buffer_.resize(n + n / 8 + kRoom);
    char* out = buffer_.data();
    qsizetype o = 0;
    keptLengths_ = true;
    qsizetype i = 0;
    while (i < n) {
#ifdef __SSE2__
        // Sixteen ASCII bytes at a time: 'A'..'Z' get 0x20. All sixteen are written; only those
        // before the first byte outside ASCII count.
        const __m128i beforeA = _mm_set1_epi8('A' - 1);
        const __m128i afterZ = _mm_set1_epi8('Z' + 1);
        const __m128i caseBit = _mm_set1_epi8(0x20);
        while (i + 16 <= n) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
            const __m128i upper =
                _mm_and_si128(_mm_cmpgt_epi8(v, beforeA), _mm_cmplt_epi8(v, afterZ));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + o),
                             _mm_or_si128(v, _mm_and_si128(upper, caseBit)));
            const int nonAscii = _mm_movemask_epi8(v);
            if (nonAscii != 0) {
                const int k = __builtin_ctz(unsigned(nonAscii));
                i += k;
                o += k;
                break;
            }
            i += 16;
            o += 16;
        }
#endif
        if (i >= n)
            break;
        const unsigned char c = s[i];
        if (c < 0x80) {
            out[o++] = char(unsigned(c - 'A') < 26 ? c | 0x20 : c);
            ++i;
            continue;
        }
        int len;
        const char32_t cp = decodeUtf8At(s + i, len);
        const qsizetype size = put(cp, out + o) - (out + o);
        keptLengths_ = keptLengths_ && size == len;
        i += len;
        o += size;
        // Room for the next character, or the next sixteen ASCII bytes, behind the result.
        if (buffer_.size() - o < (n - i) + kRoom) {
            buffer_.resize(o + (n - i) + (n - i) / 8 + 2 * kRoom);
            out = buffer_.data();
        }
    }
    return QByteArrayView(out, o);
}

} // namespace ed
