#include "textcmds/LineFilters.h"

#include "app/Trap.h"
#include "textcmds/Framework.h"
#include "textcmds/LineFiltersSupport.h"
#include "textcmds/Utf8Transforms.h"
#include "util/Utility.h"

#include <QStringMatcher>

#include <vector>

namespace ed {

namespace {

const QString kSwitchAtTextKey = QStringLiteral("Previous Switch At Text");
const QString kContainsTitle = QStringLiteral("Type text lines must contain");

// Keeps the lines whose lower-cased form contains the lower-cased `answer` exactly when
// `keepContaining` is set.
void filterByText(CommandContext& ctx, const QString& answer, bool keepContaining) {
    const QString pattern = answer.toLower();
    const QStringMatcher matcher(pattern, Qt::CaseSensitive);
    LowerCaser lower;
    const QString text = ctx.edit.text();
    LineWriter out(text.size() + 2);
    if (pattern.isEmpty() || pattern.contains(u'\r') || pattern.contains(u'\n')) {
        // Every line contains the empty text; a line break in the text never lies in one line.
        forEachCrLfLine(text, [&](QStringView line) {
            if ((matcher.indexIn(lower(line)) >= 0) == keepContaining)
                out.add(line);
        });
    } else {
        forEachLineRun(text, matcher, lower, [&](QStringView run, bool matched) {
            if (matched == keepContaining)
                out.add(run);
        });
    }
    ctx.edit.setText(std::move(out).finish());
}

// Whether a line whose value is `v` stays, for the operator `op` and the number `n`.
bool keepsValue(QChar op, qint32 v, qint32 n) {
    if (op == u'<')
        return v > n;
    if (op == u'>')
        return v < n;
    if (op == u'=')
        return v == n;
    return false;
}

std::optional<QString> askContaining(CommandContext& ctx) {
    return promptRemembered(ctx, QStringLiteral("Remove lines Containing text."), kContainsTitle,
                            kSwitchAtTextKey);
}

std::optional<QString> askNotContaining(CommandContext& ctx) {
    return promptRemembered(ctx, QStringLiteral("Remove lines Not containing text."),
                            kContainsTitle, kSwitchAtTextKey);
}

} // namespace

void mnuRemoveLinesContainingText_Click(CommandContext& ctx) {
    if (const auto answer = askContaining(ctx))
        filterByText(ctx, *answer, false);
}

void mnuRemoveLinesNotContainingText_Click(CommandContext& ctx) {
    if (const auto answer = askNotContaining(ctx))
        filterByText(ctx, *answer, true);
}

void mnuRemoveLinesContainingText_Utf8(CommandContext& ctx, Utf8Document& doc) {
    if (const auto answer = askContaining(ctx))
        doc.setText(filterLinesUtf8(doc, *answer, false));
}

void mnuRemoveLinesNotContainingText_Utf8(CommandContext& ctx, Utf8Document& doc) {
    if (const auto answer = askNotContaining(ctx))
        doc.setText(filterLinesUtf8(doc, *answer, true));
}

namespace {

// The comparison asked for: an operator and a number.
struct NumericFilter {
    QChar op;
    qint32 n;

    // Whether a line whose value is `v` (nothing: not a number) stays.
    bool keeps(std::optional<qint32> v) const { return !v || keepsValue(op, *v, n); }
};

// Asks for the comparison; nothing when the command should end silently.
std::optional<NumericFilter> askNumericFilter(CommandContext& ctx) {
    const QString section = ctx.startUp.RegNames.RegKeyfrmEdit;
    const QString key = ctx.startUp.RegNames.PrvValue;
    const QString answer = ctx.dialogs.inputBox(
        QStringLiteral("Operation sign and numeric value\r\n\r\nExample:\r\n\r\n"
                       ">5000 means remove values greater than 5000"),
        QStringLiteral("filter numbers"), ctx.settings.get(section, key, QStringLiteral("0")));
    if (answer.isEmpty())
        return std::nullopt;
    const QChar op = answer[0];
    const QStringView numberPart = QStringView(answer).mid(1);
    // Only the form is tested here; an overflow shows up in the conversion below, after saving.
    bool numeric = true;
    try {
        numeric = roundedInt32(numberPart).has_value();
    } catch (const RuntimeError&) {
    }
    if (!numeric)
        return std::nullopt;
    ctx.settings.save(section, key, answer);
    return NumericFilter{op, *roundedInt32(numberPart)};
}

} // namespace

void mnuByNumericValue_Click(CommandContext& ctx) {
    const auto filter = askNumericFilter(ctx);
    if (!filter)
        return;
    const QString text = ctx.edit.text();
    LineWriter out(text.size() + 2);
    forEachCrLfLine(text, [&](QStringView line) {
        if (filter->keeps(roundedInt32(line)))
            out.add(line);
    });
    ctx.edit.setText(std::move(out).finish());
}

void mnuByNumericValue_Utf8(CommandContext& ctx, Utf8Document& doc) {
    if (const auto filter = askNumericFilter(ctx))
        doc.setText(keepLinesUtf8(
            doc, [&](QByteArrayView line) { return filter->keeps(roundedInt32(line)); }));
}

void mnuRemoveRepeats_Click(CommandContext& ctx) {
    const QString text = ctx.edit.text();
    std::vector<QStringView> lines = splitCrLfLines(text);
    Utility util(ctx.log);
    const std::vector<QStringView> kept = util.RemoveRepeatsFromViews(lines);
    if (kept.empty()) // the utility failed and logged it: there is no array to write out
        throw RuntimeError("Subscript out of range");
    lines = {};
    qsizetype total = 0;
    for (QStringView l : kept)
        total += l.size() + 2;
    LineWriter out(total);
    for (QStringView l : kept)
        out.add(l);
    ctx.edit.setText(std::move(out).finish());
}

} // namespace ed
