#include "util/SubstringFinder.h"

#include <algorithm>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

// One half of the critical factorisation: the start of the maximal suffix of `p` under the byte
// order (`reversed` flips it) and that suffix's period.
qsizetype maximalSuffix(const unsigned char* p, qsizetype n, bool reversed, qsizetype& period) {
    qsizetype suffix = -1; // the maximal suffix starts after this index
    qsizetype j = 0;
    qsizetype k = 1;
    period = 1;
    while (j + k < n) {
        const unsigned char a = p[j + k];
        const unsigned char b = p[suffix + k];
        if (reversed ? a > b : a < b) {
            j += k;
            k = 1;
            period = j - suffix;
        } else if (a == b) {
            if (k != period) {
                ++k;
            } else {
                j += period;
                k = 1;
            }
        } else {
            suffix = j++;
            k = period = 1;
        }
    }
    return suffix;
}

} // namespace

SubstringFinder::SubstringFinder(QByteArrayView pattern) : pattern_(pattern.toByteArray()) {
    const auto* p = reinterpret_cast<const unsigned char*>(pattern_.constData());
    const qsizetype n = pattern_.size();
    skip_.fill(n);
    for (qsizetype i = 0; i < n; ++i)
        skip_[p[i]] = n - 1 - i;
    if (n < 2)
        return;
    qsizetype forwardPeriod = 1;
    qsizetype reversePeriod = 1;
    const qsizetype forward = maximalSuffix(p, n, false, forwardPeriod);
    const qsizetype reverse = maximalSuffix(p, n, true, reversePeriod);
    if (reverse < forward) {
        split_ = forward + 1;
        period_ = forwardPeriod;
    } else {
        split_ = reverse + 1;
        period_ = reversePeriod;
    }
    periodic_ = split_ + period_ <= n && std::memcmp(p, p + period_, size_t(split_)) == 0;
    if (!periodic_)
        period_ = std::max(split_, n - split_) + 1;
}

qsizetype SubstringFinder::indexIn(QByteArrayView text, qsizetype from) const {
    const qsizetype n = pattern_.size();
    const qsizetype size = text.size();
    from = std::max<qsizetype>(from, 0);
    if (n == 0)
        return from <= size ? from : -1;
    if (from > size - n)
        return -1;
    const auto* t = reinterpret_cast<const unsigned char*>(text.data());
    const auto* p = reinterpret_cast<const unsigned char*>(pattern_.constData());
    if (n == 1) {
        const void* hit = std::memchr(t + from, p[0], size_t(size - from));
        return hit ? static_cast<const unsigned char*>(hit) - t : -1;
    }
    const qsizetype last = size - n; // the last place a match can start
    qsizetype j = from;
#ifdef __SSE2__
    // Sixteen places at a time, a place being a candidate where its first and last bytes match;
    // candidates are compared in full. Repetitive text makes many candidates: once comparing
    // costs more than a few times the bytes passed, the two-way search below takes over.
    {
        const __m128i head = _mm_set1_epi8(char(p[0]));
        const __m128i tail = _mm_set1_epi8(char(p[n - 1]));
        qsizetype compared = 0;
        while (j + 15 <= last && compared <= 4 * (j - from) + 4096) {
            const auto* a = reinterpret_cast<const __m128i*>(t + j);
            const auto* b = reinterpret_cast<const __m128i*>(t + j + n - 1);
            unsigned mask = unsigned(
                _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(_mm_loadu_si128(a), head),
                                                _mm_cmpeq_epi8(_mm_loadu_si128(b), tail))));
            while (mask) {
                const qsizetype at = j + __builtin_ctz(mask);
                if (std::memcmp(t + at + 1, p + 1, size_t(n - 2)) == 0)
                    return at;
                compared += n;
                mask &= mask - 1;
            }
            j += 16;
        }
    }
#endif
    if (periodic_) {
        // What is known to match at the start of the window after a shift by the period.
        qsizetype memory = 0;
        while (j <= last) {
            qsizetype shift = skip_[t[j + n - 1]];
            if (shift > 0) {
                if (memory && shift < period_)
                    shift = n - period_; // the last period is out of place: no match before
                memory = 0;
                j += shift;
                continue;
            }
            qsizetype i = std::max(split_, memory);
            while (i < n - 1 && p[i] == t[i + j])
                ++i;
            if (i >= n - 1) {
                i = split_ - 1;
                while (i >= memory && p[i] == t[i + j])
                    --i;
                if (i < memory)
                    return j;
                j += period_;
                memory = n - period_;
            } else {
                j += i - split_ + 1;
                memory = 0;
            }
        }
        return -1;
    }
    while (j <= last) {
        const qsizetype shift = skip_[t[j + n - 1]];
        if (shift > 0) {
            j += shift;
            continue;
        }
        qsizetype i = split_;
        while (i < n - 1 && p[i] == t[i + j])
            ++i;
        if (i >= n - 1) {
            i = split_ - 1;
            while (i >= 0 && p[i] == t[i + j])
                --i;
            if (i < 0)
                return j;
            j += period_;
        } else {
            j += i - split_ + 1;
        }
    }
    return -1;
}

} // namespace ed
