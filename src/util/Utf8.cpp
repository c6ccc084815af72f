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
// Faults of a sequence, as flags of a byte's look-up tables.
constexpr quint8 kTooShort = 1 << 0;     // a lead byte, then no continuation byte
constexpr quint8 kTooLong = 1 << 1;      // ASCII, then a continuation byte
constexpr quint8 kOverlong3 = 1 << 2;    // E0 80..9F
constexpr quint8 kTooLarge = 1 << 3;     // past U+10FFFF
constexpr quint8 kSurrogate = 1 << 4;    // ED A0..BF
constexpr quint8 kOverlong2 = 1 << 5;    // C0 or C1
constexpr quint8 kTooLarge1000 = 1 << 6; // F5.. 80..8F
constexpr quint8 kOverlong4 = 1 << 6;    // F0 80..8F
constexpr quint8 kTwoConts = 1 << 7;     // two continuation bytes in a row
constexpr quint8 kCarry = kTooShort | kTooLong | kTwoConts;
constexpr quint8 kLarge = kCarry | kTooLarge | kTooLarge1000;
constexpr quint8 kCont8 =
    kTooLong | kOverlong2 | kTwoConts | kOverlong3 | kTooLarge1000 | kOverlong4;
constexpr quint8 kCont9 = kTooLong | kOverlong2 | kTwoConts | kOverlong3 | kTooLarge;
constexpr quint8 kContAB = kTooLong | kOverlong2 | kTwoConts | kSurrogate | kTooLarge;

// A look-up table of sixteen entries, the same for both halves of a vector (a look-up stays
// within its half).
#define ED_UTF8_TABLE(...) _mm256_setr_epi8(__VA_ARGS__, __VA_ARGS__)

// Thirty-two bytes at a time with table look-ups: every fault of a UTF-8 sequence shows in a pair
// of neighbouring bytes (the first byte's two halves and the second byte's high half), except a
// missing or surplus third or fourth byte, which shows in the bytes two and three back. Every
// block takes the same steps, ASCII or not: on text where some lines hold other characters a
// test per block would be mispredicted half the time and cost more than the look-ups.
template <bool kNoteBreaks>
__attribute__((target("avx2"))) bool isValidUtf8Simd(const char* p, qsizetype n,
                                                     LineBreaksSeen* seen = nullptr) {
    const __m256i nibble = _mm256_set1_epi8(0x0F);
    const __m256i byte1HighTable = ED_UTF8_TABLE(
        kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTooLong, kTwoConts,
        kTwoConts, kTwoConts, kTwoConts, kTooShort | kOverlong2, kTooShort,
        kTooShort | kOverlong3 | kSurrogate, kTooShort | kTooLarge | kTooLarge1000 | kOverlong4);
    const __m256i byte1LowTable =
        ED_UTF8_TABLE(kCarry | kOverlong3 | kOverlong2 | kOverlong4, kCarry | kOverlong2, kCarry,
                      kCarry, kCarry | kTooLarge, kLarge, kLarge, kLarge, kLarge, kLarge, kLarge,
                      kLarge, kLarge, kLarge | kSurrogate, kLarge, kLarge);
    const __m256i byte2HighTable = ED_UTF8_TABLE(
        kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort, kTooShort,
        kCont8, kCont9, kContAB, kContAB, kTooShort, kTooShort, kTooShort, kTooShort);
    __m256i error = _mm256_setzero_si256();
    __m256i previous = _mm256_setzero_si256();
    const __m256i newline = _mm256_set1_epi8('\n');
    const __m256i ret = _mm256_set1_epi8('\r');
    __m256i loneLf = _mm256_setzero_si256();
    __m256i anyLf = _mm256_setzero_si256();
    __m256i anyCr = _mm256_setzero_si256();
    for (qsizetype i = 0; i < n; i += 32) {
        __m256i input;
        if (i + 32 <= n) {
            input = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i));
        } else {
            // The rest after zero bytes, which are ASCII: a sequence cut short shows as one.
            char last[32] = {};
            std::memcpy(last, p + i, size_t(n - i));
            input = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(last));
        }
        // The bytes one, two and three before each byte of `input`.
        const __m256i before = _mm256_permute2x128_si256(previous, input, 0x21);
        const __m256i prev1 = _mm256_alignr_epi8(input, before, 15);
        const __m256i prev2 = _mm256_alignr_epi8(input, before, 14);
        const __m256i prev3 = _mm256_alignr_epi8(input, before, 13);
        const __m256i byte1High = _mm256_shuffle_epi8(
            byte1HighTable, _mm256_and_si256(_mm256_srli_epi16(prev1, 4), nibble));
        const __m256i byte1Low =
            _mm256_shuffle_epi8(byte1LowTable, _mm256_and_si256(prev1, nibble));
        const __m256i byte2High = _mm256_shuffle_epi8(
            byte2HighTable, _mm256_and_si256(_mm256_srli_epi16(input, 4), nibble));
        const __m256i special = _mm256_and_si256(_mm256_and_si256(byte1High, byte1Low), byte2High);
        // A byte two after a three- or four-byte lead, or three after a four-byte lead, must be
        // a continuation byte: exactly where `special` says "two continuation bytes in a row".
        const __m256i mustContinue = _mm256_and_si256(
            _mm256_or_si256(_mm256_subs_epu8(prev2, _mm256_set1_epi8(char(0xE0 - 0x80))),
                            _mm256_subs_epu8(prev3, _mm256_set1_epi8(char(0xF0 - 0x80)))),
            _mm256_set1_epi8(char(0x80)));
        error = _mm256_or_si256(error, _mm256_xor_si256(mustContinue, special));
        if constexpr (kNoteBreaks) {
            // An LF whose byte before is not a CR is a lone one.
            const __m256i lfs = _mm256_cmpeq_epi8(input, newline);
            anyLf = _mm256_or_si256(anyLf, lfs);
            anyCr = _mm256_or_si256(anyCr, _mm256_cmpeq_epi8(input, ret));
            loneLf =
                _mm256_or_si256(loneLf, _mm256_andnot_si256(_mm256_cmpeq_epi8(prev1, ret), lfs));
        }
        previous = input;
    }
    if constexpr (kNoteBreaks) {
        seen->loneLf = !_mm256_testz_si256(loneLf, loneLf);
        seen->lf = !_mm256_testz_si256(anyLf, anyLf);
        seen->cr = !_mm256_testz_si256(anyCr, anyCr);
    }
    // A lead byte too close to the end for its sequence.
    const __m256i incomplete = _mm256_subs_epu8(
        previous, _mm256_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
                                   -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
                                   char(0xF0 - 1), char(0xE0 - 1), char(0xC0 - 1)));
    error = _mm256_or_si256(error, incomplete);
    return _mm256_testz_si256(error, error) != 0;
}
#undef ED_UTF8_TABLE
#endif

} // namespace

#if defined(__x86_64__) || defined(__i386__)
namespace {
const bool hasAvx2 = __builtin_cpu_supports("avx2");
} // namespace
#endif

bool isValidUtf8(const char* p, qsizetype n) {
#if defined(__x86_64__) || defined(__i386__)
    if (hasAvx2)
        return isValidUtf8Simd<false>(p, n);
#endif
    return isValidUtf8Plain(p, n);
}

bool isValidUtf8NotingBreaks(const char* p, qsizetype n, LineBreaksSeen& seen, bool& done) {
#if defined(__x86_64__) || defined(__i386__)
    if (hasAvx2) {
        done = true;
        return isValidUtf8Simd<true>(p, n, &seen);
    }
#endif
    done = false;
    return false;
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
