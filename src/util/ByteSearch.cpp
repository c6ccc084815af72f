#include "util/ByteSearch.h"

#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

ByteSearch::ByteSearch(QByteArrayView pattern) : pattern_(pattern.toByteArray()) {}

const std::vector<qsizetype>& ByteSearch::borders() const {
    const qsizetype m = pattern_.size();
    if (qsizetype(border_.size()) != m) {
        border_.assign(size_t(m), 0);
        const char* q = pattern_.constData();
        for (qsizetype i = 1, k = 0; i < m; ++i) {
            while (k > 0 && q[i] != q[k])
                k = border_[size_t(k - 1)];
            if (q[i] == q[k])
                ++k;
            border_[size_t(i)] = k;
        }
    }
    return border_;
}

qsizetype ByteSearch::findFromKmp(QByteArrayView text, qsizetype from) const {
    const std::vector<qsizetype>& border = borders();
    const char* h = text.data();
    const char* q = pattern_.constData();
    const qsizetype n = text.size();
    const qsizetype m = pattern_.size();
    qsizetype k = 0;
    for (qsizetype i = from; i < n; ++i) {
        if (k == 0) {
            // Nothing matched yet: straight to the next place the first byte occurs.
            const void* hit = std::memchr(h + i, q[0], size_t(n - i));
            if (!hit)
                return -1;
            i = static_cast<const char*>(hit) - h;
        }
        while (k > 0 && h[i] != q[k])
            k = border[size_t(k - 1)];
        if (h[i] == q[k])
            ++k;
        if (k == m)
            return i - m + 1;
    }
    return -1;
}

qsizetype ByteSearch::find(QByteArrayView text, qsizetype from) const {
    const char* h = text.data();
    const char* q = pattern_.constData();
    const qsizetype n = text.size();
    const qsizetype m = pattern_.size();
    if (from < 0 || from > n)
        return -1;
    if (m == 0)
        return from;
    if (m > n - from)
        return -1;
    if (m == 1) {
        const void* hit = std::memchr(h + from, q[0], size_t(n - from));
        return hit ? static_cast<const char*>(hit) - h : -1;
    }
    // Bytes compared in full so far; past a few times the bytes scanned, the rest of the search
    // is left to Knuth-Morris-Pratt.
    qsizetype compared = 0;
    auto tooCostly = [&](qsizetype at) { return compared > 8 * (at - from + m); };
    auto matchesAt = [&](qsizetype at) {
        compared += m;
        return std::memcmp(h + at + 1, q + 1, size_t(m - 2)) == 0;
    };
    qsizetype i = from;
#ifdef __SSE2__
    const __m128i first = _mm_set1_epi8(q[0]);
    const __m128i second = _mm_set1_epi8(q[1]);
    const __m128i last = _mm_set1_epi8(q[m - 1]);
    for (; i + m - 1 + 16 <= n; i += 16) {
        auto at = [&](qsizetype k, __m128i c) {
            return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i + k)), c);
        };
        auto mask = unsigned(_mm_movemask_epi8(
            _mm_and_si128(_mm_and_si128(at(0, first), at(1, second)), at(m - 1, last))));
        while (mask) {
            const qsizetype place = i + __builtin_ctz(mask);
            if (matchesAt(place))
                return place;
            if (tooCostly(place))
                return findFromKmp(text, place + 1);
            mask &= mask - 1;
        }
    }
#endif
    for (; i + m <= n; ++i) {
        if (h[i] == q[0] && h[i + m - 1] == q[m - 1]) {
            if (matchesAt(i))
                return i;
            if (tooCostly(i))
                return findFromKmp(text, i + 1);
        }
    }
    return -1;
}

qsizetype ByteSearch::nth(QByteArrayView text, qint64 n) const {
    const qsizetype m = pattern_.size();
    if (n < 1 || m == 0 || m > text.size())
        return -1;
    if (n == 1)
        return find(text);
    // Knuth-Morris-Pratt counting every match, overlapping ones included: the same stretch of
    // text is never searched twice however many occurrences are asked for.
    const std::vector<qsizetype>& border = borders();
    const char* h = text.data();
    const char* q = pattern_.constData();
    const qsizetype size = text.size();
    qint64 found = 0;
    qsizetype k = 0;
    for (qsizetype i = 0; i < size; ++i) {
        if (k == 0) {
            const void* hit = std::memchr(h + i, q[0], size_t(size - i));
            if (!hit)
                return -1;
            i = static_cast<const char*>(hit) - h;
        }
        while (k > 0 && h[i] != q[k])
            k = border[size_t(k - 1)];
        if (h[i] == q[k])
            ++k;
        if (k == m) {
            if (++found == n)
                return i - m + 1;
            k = border[size_t(k - 1)];
        }
    }
    return -1;
}

} // namespace ed
