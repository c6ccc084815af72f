#include "textcmds/LineFilters.h"

#include "app/Trap.h"
#include "textcmds/Framework.h"
#include "textcmds/LineFiltersSupport.h"
#include "textcmds/LineHits.h"
#include "util/Utility.h"

namespace ed {

namespace {

const QString kSwitchAtTextKey = QStringLiteral("Previous Switch At Text");
const QString kContainsTitle = QStringLiteral("Type text lines must contain");
constexpr QByteArrayView kBreak("\r\n");

// The lines of `text` whose lower case contains the lower-cased `answer` when `keepContaining`
// is set, else the others, each followed by CR LF. Runs of kept lines are copied in one piece.
QByteArray filterByText(QByteArrayView text, const QString& answer, bool keepContaining) {
    const ByteSearch search(toModelUtf8(answer.toLower()));
    Utf8Lowering lowering(Utf8Lowering::Mapping::Full);
    LineHits hits(text, search, &lowering);
    ByteWriter out(text.size() + kBreak.size());
    const qsizetype n = text.size();
    qsizetype runStart = 0, runEnd = -1; // the kept lines not written yet
    LineHit hit;
    while (hits.next(hit)) {
        if (!keepContaining) {
            out.append(text.sliced(runStart, hit.start - runStart));
            runStart = hit.end + kBreak.size();
        } else if (runEnd >= 0 && hit.start == runEnd + kBreak.size()) {
            runEnd = hit.end;
        } else {
            if (runEnd >= 0) {
                out.append(text.sliced(runStart, runEnd - runStart));
                out.append(kBreak);
            }
            runStart = hit.start;
            runEnd = hit.end;
        }
    }
    if (!keepContaining)
        runEnd = n;
    // The last run; the last piece of the text gets a break too.
    if (runEnd >= 0 && runStart <= n) {
        out.append(text.sliced(runStart, runEnd - runStart));
        out.append(kBreak);
    }
    return std::move(out).finish();
}

std::optional<QString> askContaining(CommandContext& ctx) {
    return promptRemembered(ctx, QStringLiteral("Remove lines Containing text."), kContainsTitle,
                            kSwitchAtTextKey);
}

std::optional<QString> askNotContaining(CommandContext& ctx) {
    return promptRemembered(ctx, QStringLiteral("Remove lines Not containing text."),
                            kContainsTitle, kSwitchAtTextKey);
}

// The comparison asked for: an operator and a number.
struct NumericFilter {
    QChar op;
    qint32 n;

    // Whether a line whose value is `v` (nothing: not a number) stays.
    bool keeps(std::optional<qint32> v) const {
        if (!v)
            return true;
        if (op == u'<')
            return *v > n;
        if (op == u'>')
            return *v < n;
        if (op == u'=')
            return *v == n;
        return false;
    }
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
    const QByteArray numberPart = toModelUtf8(QStringView(answer).mid(1));
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

void mnuRemoveLinesContainingText_Click(CommandContext& ctx) {
    if (const auto answer = askContaining(ctx))
        ctx.edit.setUtf8(filterByText(ctx.edit.utf8(), *answer, false));
}

void mnuRemoveLinesNotContainingText_Click(CommandContext& ctx) {
    if (const auto answer = askNotContaining(ctx))
        ctx.edit.setUtf8(filterByText(ctx.edit.utf8(), *answer, true));
}

void mnuByNumericValue_Click(CommandContext& ctx) {
    const auto filter = askNumericFilter(ctx);
    if (!filter)
        return;
    const QByteArray text = ctx.edit.utf8();
    ByteWriter out(text.size() + kBreak.size());
    qsizetype runStart = 0; // the first line not yet written or dropped
    forEachModelLine(text, [&](QByteArrayView line) {
        if (filter->keeps(roundedInt32(line)))
            return;
        const qsizetype start = line.data() - text.constData();
        out.append(QByteArrayView(text).sliced(runStart, start - runStart));
        runStart = start + line.size() + kBreak.size();
    });
    // The lines after the last one dropped; the last piece of the text gets a break too.
    if (runStart <= text.size()) {
        out.append(QByteArrayView(text).sliced(runStart));
        out.append(kBreak);
    }
    ctx.edit.setUtf8(std::move(out).finish());
}

void mnuRemoveRepeats_Click(CommandContext& ctx) {
    Utility util(ctx.log);
    std::optional<QByteArray> kept = util.RemoveRepeatsFromLines(ctx.edit.utf8());
    if (!kept) // the utility failed and logged it: there is no array to write out
        throw RuntimeError("Subscript out of range");
    ctx.edit.setUtf8(*std::move(kept));
}

} // namespace ed
