#include "textcmds/LineFiltersSupport.h"

#include "app/Trap.h"

#include <limits>

namespace ed {

std::optional<qint32> roundedInt32(QByteArrayView s) {
    auto at = [&](qsizetype k) { return int(uchar(s[k])); };
    auto isSpace = [](int c) { return c == ' ' || c == '\t'; };
    qsizetype b = 0, e = s.size();
    while (b < e && isSpace(at(b)))
        ++b;
    while (e > b && isSpace(at(e - 1)))
        --e;
    bool negative = false;
    if (b < e && (at(b) == '+' || at(b) == '-')) {
        negative = at(b) == '-';
        ++b;
    }
    // Whole part, saturated well above the 32-bit range so that a long run of digits cannot wrap.
    constexpr quint64 kSaturated = quint64(1) << 40;
    quint64 magnitude = 0;
    qsizetype digits = 0;
    while (b < e && at(b) >= '0' && at(b) <= '9') {
        magnitude = qMin(kSaturated, magnitude * 10 + quint64(at(b) - '0'));
        ++digits;
        ++b;
    }
    int firstFraction = 0;    // the first digit after the point
    bool restNonZero = false; // any later fraction digit other than 0
    if (b < e && at(b) == '.') {
        ++b;
        for (qsizetype k = 0; b < e && at(b) >= '0' && at(b) <= '9'; ++k, ++b, ++digits) {
            const int d = at(b) - '0';
            if (k == 0)
                firstFraction = d;
            else if (d != 0)
                restNonZero = true;
        }
    }
    if (b != e || digits == 0)
        return std::nullopt;

    const bool up = firstFraction > 5 || (firstFraction == 5 && (restNonZero || magnitude % 2));
    if (up)
        ++magnitude;
    const qint64 value = negative ? -qint64(magnitude) : qint64(magnitude);
    if (value < std::numeric_limits<qint32>::min() || value > std::numeric_limits<qint32>::max())
        throw RuntimeError("Overflow");
    return qint32(value);
}

} // namespace ed
