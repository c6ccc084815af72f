#include "util/Utf8.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

bool isValidUtf8(const char* p, qsizetype n) {
    const auto* s = reinterpret_cast<const unsigned char*>(p);
    qsizetype i = 0;
    while (i < n) {
#ifdef __SSE2__
        // Sixty-four ASCII bytes at a time, then sixteen.
        while (i + 64 <= n) {
            const auto* v = reinterpret_cast<const __m128i*>(s + i);
            const __m128i any =
                _mm_or_si128(_mm_or_si128(_mm_loadu_si128(v), _mm_loadu_si128(v + 1)),
                             _mm_or_si128(_mm_loadu_si128(v + 2), _mm_loadu_si128(v + 3)));
            if (_mm_movemask_epi8(any) != 0)
                break;
            i += 64;
        }
        while (i + 16 <= n) {
            const int mask =
                _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)));
            if (mask != 0) {
                i += __builtin_ctz(unsigned(mask));
                break;
            }
            i += 16;
        }
#endif
        if (i >= n)
            break;
        const unsigned char c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        int len;
        quint32 cp;
        if (c >= 0xC2 && c <= 0xDF) {
            len = 2;
            cp = c & 0x1F;
        } else if (c >= 0xE0 && c <= 0xEF) {
            len = 3;
            cp = c & 0x0F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            len = 4;
            cp = c & 0x07;
        } else {
            return false;
        }
        if (i + len > n)
            return false;
        for (int k = 1; k < len; ++k) {
            const unsigned char cc = s[i + k];
            if ((cc & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (cc & 0x3F);
        }
        if ((len == 3 && (cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF))) ||
            (len == 4 && (cp < 0x10000 || cp > 0x10FFFF)))
            return false;
        i += len;
    }
    return true;
}

} // namespace ed
