#pragma once
// The building blocks of the line filters: reading numbers, lower-casing lines without an
// allocation per line, and scanning and writing whole documents of lines quickly.

#include "util/HugePages.h"

#include <QString>
#include <QStringMatcher>
#include <QStringView>

#include <bitset>
#include <cstring>
#include <functional>
#include <optional>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

// The value of a number written as optional spaces, an optional sign, digits with an optional
// decimal fraction (".5" and "5." count) and optional spaces, rounded to the nearest 32-bit
// integer with a half going to the even neighbour. Nothing when `s` is not such a number;
// throws RuntimeError("Overflow") when the rounded value does not fit.
std::optional<qint32> roundedInt32(QStringView s);
// The same for a line of UTF-8 (the number is ASCII alone, so it reads the same).
std::optional<qint32> roundedInt32(QByteArrayView s);

// Lower-cases text exactly as QString::toLower does, into one buffer reused from call to call.
// The view returned stays valid until the next call.
class LowerCaser {
public:
    QStringView operator()(QStringView s);
    // Lower-cases `s` into `out` (room for s.size() units) one character for one, as
    // QString::toLower does; false (and `out` partly written) when a character of `s` needs the
    // full conversion: half of a surrogate pair, or one that lowers into more than one.
    bool lowerInto(QStringView s, char16_t* out);
    // True when QString::toLower turns `c` into something other than QChar::toLower(c) gives
    // (one character into two); worked out once per character met.
    bool lowersDifferently(char16_t c);

private:
    QString buffer_;
    std::bitset<65536> checked_;
    std::bitset<65536> different_;
};

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

std::vector<QStringView> splitCrLfLines(QStringView text);

// Splits `text` at CR LF as forEachCrLfLine does and calls f(run, matched) for stretches of
// whole lines in order: `run` is one or more lines joined by their CR LF (the last line's break
// left out) that all do (matched) or all do not contain `matcher`'s pattern once lower-cased by
// `lower`. The pattern must be lower-case, not empty and free of CR and LF. The text is
// lower-cased and searched a block of lines at a time, so a line costs nothing of its own
// unless the pattern is found in it.
void forEachLineRun(QStringView text, const QStringMatcher& matcher, LowerCaser& lower,
                    const std::function<void(QStringView run, bool matched)>& f);

// Collects output lines, each followed by CR LF, in one buffer allocated up front. A filter of
// a text never writes more than the text and one line break: text.size() + 2.
class LineWriter {
public:
    explicit LineWriter(qsizetype capacity);
    void add(QStringView line) {
        Q_ASSERT(end_ - next_ >= line.size() + 2);
        std::memcpy(next_, line.utf16(), size_t(line.size()) * sizeof(char16_t));
        next_ += line.size();
        *next_++ = u'\r';
        *next_++ = u'\n';
    }
    QString finish() &&;

private:
    QString out_;
    char16_t* next_;
    char16_t* end_;
};

} // namespace ed
