#include "textcmds/LineFilters.h"

#include "app/Trap.h"
#include "textcmds/Framework.h"
#include "util/HugePages.h"
#include "util/Utility.h"

#include <QStringMatcher>

#include <cstring>
#include <limits>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

// ---- numbers -------------------------------------------------------------------------------

std::optional<qint32> roundedInt32(QStringView s) {
    auto isSpace = [](QChar c) { return c == u' ' || c == u'\t'; };
    qsizetype b = 0, e = s.size();
    while (b < e && isSpace(s[b]))
        ++b;
    while (e > b && isSpace(s[e - 1]))
        --e;
    bool negative = false;
    if (b < e && (s[b] == u'+' || s[b] == u'-')) {
        negative = s[b] == u'-';
        ++b;
    }
    // Whole part, saturated well above the 32-bit range so that a long run of digits cannot wrap.
    constexpr quint64 kSaturated = quint64(1) << 40;
    quint64 magnitude = 0;
    qsizetype digits = 0;
    while (b < e && s[b] >= u'0' && s[b] <= u'9') {
        magnitude = qMin(kSaturated, magnitude * 10 + quint64(s[b].unicode() - u'0'));
        ++digits;
        ++b;
    }
    int firstFraction = 0;    // the first digit after the point
    bool restNonZero = false; // any later fraction digit other than 0
    if (b < e && s[b] == u'.') {
        ++b;
        for (qsizetype k = 0; b < e && s[b] >= u'0' && s[b] <= u'9'; ++k, ++b, ++digits) {
            const int d = s[b].unicode() - u'0';
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

// ---- case-insensitive matching ---------------------------------------------------------------

QStringView LowerCaser::operator()(QStringView s) {
    const qsizetype n = s.size();
    if (buffer_.size() < n)
        buffer_.resize(n);
    auto* d = reinterpret_cast<char16_t*>(buffer_.data());
    const char16_t* p = s.utf16();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = p[i];
        if (c >= 0x80) {
            // Beyond ASCII a character may lower into something else entirely (KELVIN SIGN to
            // 'k', one character into two): let the full conversion work in place.
            buffer_.resize(n);
            d = reinterpret_cast<char16_t*>(buffer_.data());
            std::memcpy(d, p, size_t(n) * sizeof(char16_t));
            buffer_ = std::move(buffer_).toLower();
            return QStringView(buffer_);
        }
        d[i] = char16_t(c - u'A') < 26 ? char16_t(c + 32) : c;
    }
    return QStringView(d, n);
}

namespace {

const QString kSwitchAtTextKey = QStringLiteral("Previous Switch At Text");
const QString kContainsTitle = QStringLiteral("Type text lines must contain");

// Keeps the lines whose lower-cased form contains the lower-cased `answer` exactly when
// `keepContaining` is set.
void filterByText(CommandContext& ctx, const QString& answer, bool keepContaining) {
    const QStringMatcher matcher(answer.toLower(), Qt::CaseSensitive);
    LowerCaser lower;
    const QString text = ctx.edit.text();
    ctx.edit.setText(mapLines(text, [&](QStringView line, QString& out) {
        const bool contains = matcher.indexIn(lower(line)) >= 0;
        if (contains == keepContaining)
            out.append(line).append(kCrLf);
    }));
}

// The pieces of `text` split at CR LF, as forEachLine gives them, in one pass over the text.
std::vector<QStringView> splitLines(QStringView text) {
    const char16_t* p = text.utf16();
    const qsizetype n = text.size();
    std::vector<QStringView> lines;
    lines.reserve(size_t(n / 16 + 1)); // address space only: untouched pages cost nothing
    adviseHugePages(lines.data(), lines.capacity() * sizeof(QStringView));
    qsizetype start = 0;
    auto atLf = [&](qsizetype lf) {
        if (lf > 0 && p[lf - 1] == u'\r') {
            lines.emplace_back(p + start, lf - 1 - start);
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
    lines.emplace_back(p + start, n - start);
    return lines;
}

// Lines and their line breaks, copied once into a string of the exact size.
QString joinLines(const std::vector<QStringView>& lines) {
    qsizetype total = 0;
    for (QStringView l : lines)
        total += l.size() + 2;
    QString out(total, Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(total) * sizeof(QChar));
    auto* d = reinterpret_cast<char16_t*>(out.data());
    for (QStringView l : lines) {
        std::memcpy(d, l.utf16(), size_t(l.size()) * sizeof(char16_t));
        d += l.size();
        *d++ = u'\r';
        *d++ = u'\n';
    }
    return out;
}

} // namespace

void mnuRemoveLinesContainingText_Click(CommandContext& ctx) {
    const auto answer = promptRemembered(ctx, QStringLiteral("Remove lines Containing text."),
                                         kContainsTitle, kSwitchAtTextKey);
    if (answer)
        filterByText(ctx, *answer, false);
}

void mnuRemoveLinesNotContainingText_Click(CommandContext& ctx) {
    const auto answer = promptRemembered(ctx, QStringLiteral("Remove lines Not containing text."),
                                         kContainsTitle, kSwitchAtTextKey);
    if (answer)
        filterByText(ctx, *answer, true);
}

void mnuByNumericValue_Click(CommandContext& ctx) {
    const QString section = ctx.startUp.RegNames.RegKeyfrmEdit;
    const QString key = ctx.startUp.RegNames.PrvValue;
    const QString answer = ctx.dialogs.inputBox(
        QStringLiteral("Operation sign and numeric value\r\n\r\nExample:\r\n\r\n"
                       ">5000 means remove values greater than 5000"),
        QStringLiteral("filter numbers"), ctx.settings.get(section, key, QStringLiteral("0")));
    if (answer.isEmpty())
        return;
    const QChar op = answer[0];
    const QStringView numberPart = QStringView(answer).mid(1);
    // Only the form is tested here; an overflow shows up in the conversion below, after saving.
    bool numeric = true;
    try {
        numeric = roundedInt32(numberPart).has_value();
    } catch (const RuntimeError&) {
    }
    if (!numeric)
        return;
    ctx.settings.save(section, key, answer);
    const qint32 n = *roundedInt32(numberPart);

    const QString text = ctx.edit.text();
    ctx.edit.setText(mapLines(text, [&](QStringView line, QString& out) {
        bool keep = true;
        if (const std::optional<qint32> v = roundedInt32(line)) {
            if (op == u'<')
                keep = *v > n;
            else if (op == u'>')
                keep = *v < n;
            else if (op == u'=')
                keep = *v == n;
            else
                keep = false;
        }
        if (keep)
            out.append(line).append(kCrLf);
    }));
}

void mnuRemoveRepeats_Click(CommandContext& ctx) {
    const QString text = ctx.edit.text();
    std::vector<QStringView> lines = splitLines(text);
    Utility util(ctx.log);
    const std::vector<QStringView> kept = util.RemoveRepeatsFromViews(lines);
    if (kept.empty()) // the utility failed and logged it: there is no array to write out
        throw RuntimeError("Subscript out of range");
    lines = {};
    ctx.edit.setText(joinLines(kept));
}

} // namespace ed
