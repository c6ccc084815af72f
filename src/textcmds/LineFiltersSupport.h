#pragma once
// The building blocks of the line filters: reading a line as a number, and the CR LF split of
// decoded text that the commands still working on QString share.

#include <QByteArrayView>
#include <QStringView>

#include <optional>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

// The value of a number written as optional spaces, an optional sign, digits with an optional
// decimal fraction (".5" and "5." count) and optional spaces, rounded to the nearest 32-bit
// integer with a half going to the even neighbour. Nothing when `s` (UTF-8) is not such a number;
// throws RuntimeError("Overflow") when the rounded value does not fit.
std::optional<qint32> roundedInt32(QByteArrayView s);

// Calls f(line) for every piece of `text` split at CR LF, the last (possibly empty) one
// included, exactly as forEachLine does, eight characters at a time.
template <class F> void forEachCrLfLine(QStringView text, F&& f) {
    const char16_t* p = text.utf16();
    const qsizetype n = text.size();
    qsizetype start = 0;
    auto atLf = [&](qsizetype lf) {
        if (lf > 0 && p[lf - 1] == u'\r') {
            f(QStringView(p + start, lf - 1 - start));
            start = lf + 1;
        }
    };
    qsizetype i = 0;
#ifdef __SSE2__
    const __m128i newline = _mm_set1_epi16(u'\n');
    for (; i + 8 <= n; i += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
        auto mask = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi16(block, newline)));
        while (mask) {
            const int bit = __builtin_ctz(mask);
            atLf(i + bit / 2);
            mask &= ~(3u << bit);
        }
    }
#endif
    for (; i < n; ++i)
        if (p[i] == u'\n')
            atLf(i);
    f(QStringView(p + start, n - start));
}

} // namespace ed
