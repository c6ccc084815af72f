#include "util/Utf8.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif
#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

#include <cstring>

namespace ed {

namespace {

#if defined(__x86_64__) || defined(__i386__)
// Sixteen bytes at a time with table look-ups: every fault of a UTF-8 sequence shows in a pair of
// neighbouring bytes (the first byte's two halves and the second byte's high half), except a
// missing or surplus third or fourth byte, which shows in the bytes two and three back.
class SimdUtf8Check {
public:
    // ASCII (`last` is the last sixteen of it): right unless what came before ended inside a
    // sequence.
    __attribute__((target("ssse3"))) void addAscii(__m128i last) {
        error_ = _mm_or_si128(error_, incomplete_);
        previous_ = last;
    }

    __attribute__((target("ssse3"))) void add(__m128i input) {
        if (_mm_movemask_epi8(input) == 0) {
            addAscii(input);
            return;
        }
        const __m128i nibble = _mm_set1_epi8(0x0F);
        const __m128i prev1 = _mm_alignr_epi8(input, previous_, 15);
        const __m128i byte1High = _mm_shuffle_epi8(
            table(kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong,
                  kTwoConts, kTwoConts, kTwoConts, kTwoConts, kTooShort | kOverlong2, kTooShort,
                  kTooShort | kOverlong3 | kSurrogate,
                  kTooShort | kTooLarge | kTooLarge1000 | kOverlong4),
            _mm_and_si128(_mm_srli_epi16(prev1, 4), nibble));
        constexpr quint8 kCarry = kTooShort | kTooLong | kTwoConts;
        constexpr quint8 kLarge = kCarry | kTooLarge | kTooLarge1000;
        const __m128i byte1Low = _mm_shuffle_epi8(
            table(kCarry | kOverlong3 | kOverlong2 | kOverlong4, kCarry | kOverlong2, kCarry,
                  kCarry, kCarry | kTooLarge, kLarge, kLarge, kLarge, kLarge, kLarge, kLarge,
                  kLarge, kLarge, kLarge | kSurrogate, kLarge, kLarge),
            _mm_and_si128(prev1, nibble));
        constexpr quint8 kCont8 =
            kTooLong | kOverlong2 | kTwoConts | kOverlong3 | kTooLarge1000 | kOverlong4;
        constexpr quint8 kCont9 = kTooLong | kOverlong2 | kTwoConts | kOverlong3 | kTooLarge;
        constexpr quint8 kContAB = kTooLong | kOverlong2 | kTwoConts | kSurrogate | kTooLarge;
        const __m128i byte2High =
            _mm_shuffle_epi8(table(kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort,
                                   kTooShort, kTooShort, kCont8, kCont9, kContAB, kContAB,
                                   kTooShort, kTooShort, kTooShort, kTooShort),
                             _mm_and_si128(_mm_srli_epi16(input, 4), nibble));
        const __m128i special = _mm_and_si128(_mm_and_si128(byte1High, byte1Low), byte2High);
        // A byte two after a three- or four-byte lead, or three after a four-byte lead, must be
        // a continuation byte: exactly where `special` says "two continuation bytes in a row".
        const __m128i prev2 = _mm_alignr_epi8(input, previous_, 14);
        const __m128i prev3 = _mm_alignr_epi8(input, previous_, 13);
        const __m128i mustContinue =
            _mm_and_si128(_mm_or_si128(_mm_subs_epu8(prev2, _mm_set1_epi8(char(0xE0 - 0x80))),
                                       _mm_subs_epu8(prev3, _mm_set1_epi8(char(0xF0 - 0x80)))),
                          _mm_set1_epi8(char(0x80)));
        error_ = _mm_or_si128(error_, _mm_xor_si128(mustContinue, special));
        // A lead byte too close to the end for its sequence.
        incomplete_ =
            _mm_subs_epu8(input, _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
                                               char(0xF0 - 1), char(0xE0 - 1), char(0xC0 - 1)));
        previous_ = input;
    }

    // True when everything added was valid and did not end inside a sequence.
    __attribute__((target("ssse3"))) bool valid() const {
        const __m128i any = _mm_or_si128(error_, incomplete_);
        return _mm_movemask_epi8(_mm_cmpeq_epi8(any, _mm_setzero_si128())) == 0xFFFF;
    }

private:
    static constexpr quint8 kTooShort = 1 << 0;     // a lead byte, then no continuation byte
    static constexpr quint8 kTooLong = 1 << 1;      // ASCII, then a continuation byte
    static constexpr quint8 kOverlong3 = 1 << 2;    // E0 80..9F
    static constexpr quint8 kTooLarge = 1 << 3;     // past U+10FFFF
    static constexpr quint8 kSurrogate = 1 << 4;    // ED A0..BF
    static constexpr quint8 kOverlong2 = 1 << 5;    // C0 or C1
    static constexpr quint8 kTooLarge1000 = 1 << 6; // F5.. 80..8F
    static constexpr quint8 kOverlong4 = 1 << 6;    // F0 80..8F
    static constexpr quint8 kTwoConts = 1 << 7;     // two continuation bytes in a row

    template <class... B> __attribute__((target("ssse3"))) static __m128i table(B... b) {
        return _mm_setr_epi8(char(b)...);
    }

    __m128i error_ = _mm_setzero_si128();
    __m128i incomplete_ = _mm_setzero_si128();
    __m128i previous_ = _mm_setzero_si128();
};

__attribute__((target("ssse3"))) bool isValidUtf8Simd(const char* p, qsizetype n) {
    SimdUtf8Check check;
    qsizetype i = 0;
    auto block = [&](qsizetype at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + at));
    };
    // Sixty-four ASCII bytes are passed over at once.
    for (; i + 64 <= n; i += 64) {
        const __m128i a = block(i), b = block(i + 16), c = block(i + 32), d = block(i + 48);
        if (_mm_movemask_epi8(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d))) == 0) {
            check.addAscii(d);
        } else {
            check.add(a);
            check.add(b);
            check.add(c);
            check.add(d);
        }
    }
    for (; i + 16 <= n; i += 16)
        check.add(block(i));
    if (i < n) {
        // The rest after zero bytes, which are ASCII: a sequence cut short shows as one.
        char last[16] = {};
        std::memcpy(last, p + i, size_t(n - i));
        check.add(_mm_loadu_si128(reinterpret_cast<const __m128i*>(last)));
    }
    return check.valid();
}
#endif

} // namespace

bool isValidUtf8(const char* p, qsizetype n) {
#if defined(__x86_64__) || defined(__i386__)
    static const bool simd = __builtin_cpu_supports("ssse3");
    if (simd)
        return isValidUtf8Simd(p, n);
#endif
    return isValidUtf8Plain(p, n);
}

bool isValidUtf8Plain(const char* p, qsizetype n) {
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
        quint32 cp;
        const int len = checkedUtf8At(s + i, n - i, cp);
        if (len == 0)
            return false;
        i += len;
    }
    return true;
}

} // namespace ed
