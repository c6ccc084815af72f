#include "textcmds/PrefixSuffix.h"

#include "textcmds/Framework.h"

namespace ed {

namespace {

// Each line becomes prefix + line + suffix with the spaces at both ends of the whole trimmed.
void affixLines(CommandContext& ctx, const QString& prefix, const QString& suffix) {
    const QString text = ctx.edit.text();
    QString scratch;
    const qsizetype lines = countLines(text);
    ctx.edit.setText(mapLines(
        text,
        [&](QStringView line, QString& out) {
            scratch.clear();
            scratch.append(prefix).append(line).append(suffix);
            out.append(trimSpaces(scratch)).append(kCrLf);
        },
        lines * (prefix.size() + suffix.size() + 2)));
}

} // namespace

void mnuAddPrefix_Click(CommandContext& ctx) {
    const auto prefix = promptRemembered(ctx, QStringLiteral("Enter text to add as Prefix."),
                                         QStringLiteral("Enter text"),
                                         QStringLiteral("Previous Prefix"));
    if (prefix)
        affixLines(ctx, *prefix, QString());
}

void mnuAddSuffix_Click(CommandContext& ctx) {
    const auto suffix = promptRemembered(ctx, QStringLiteral("Enter text to add as Suffix."),
                                         QStringLiteral("Enter text"),
                                         QStringLiteral("Previous Suffix"));
    if (suffix)
        affixLines(ctx, QString(), *suffix);
}

} // namespace ed
