#include "textcmds/PrefixSuffix.h"

#include "textcmds/Framework.h"
#include "textcmds/Utf8Transforms.h"

namespace ed {

namespace {

// Appends trimSpaces(a + b + c) to `out` without putting the three together first.
void appendTrimmed(QString& out, QStringView a, QStringView b, QStringView c) {
    const QStringView parts[3] = {a, b, c};
    // Where the text starts: the first part with something other than spaces, and in it.
    int first = 0;
    qsizetype from = 0;
    for (; first < 3; ++first) {
        const QStringView p = parts[first];
        from = 0;
        while (from < p.size() && p[from] == u' ')
            ++from;
        if (from < p.size())
            break;
    }
    if (first == 3)
        return; // nothing but spaces
    // Where it ends: the last part with something other than spaces, and in it.
    int last = 2;
    qsizetype to = 0;
    for (;; --last) {
        const QStringView p = parts[last];
        to = p.size();
        while (to > 0 && p[to - 1] == u' ')
            --to;
        if (to > 0)
            break;
    }
    for (int k = first; k <= last; ++k) {
        const QStringView p = parts[k];
        const qsizetype b = k == first ? from : 0;
        const qsizetype e = k == last ? to : p.size();
        out.append(p.mid(b, e - b));
    }
}

// Each line becomes prefix + line + suffix with the spaces at both ends of the whole trimmed.
void affixLines(CommandContext& ctx, const QString& prefix, const QString& suffix) {
    const QString text = ctx.edit.text();
    const qsizetype lines = countLines(text);
    ctx.edit.setText(mapLines(
        text,
        [&](QStringView line, QString& out) {
            appendTrimmed(out, prefix, line, suffix);
            out.append(kCrLf);
        },
        lines * (prefix.size() + suffix.size() + 2)));
}

std::optional<QString> askPrefix(CommandContext& ctx) {
    return promptRemembered(ctx, QStringLiteral("Enter text to add as Prefix."),
                            QStringLiteral("Enter text"), QStringLiteral("Previous Prefix"));
}

std::optional<QString> askSuffix(CommandContext& ctx) {
    return promptRemembered(ctx, QStringLiteral("Enter text to add as Suffix."),
                            QStringLiteral("Enter text"), QStringLiteral("Previous Suffix"));
}

} // namespace

void mnuAddPrefix_Click(CommandContext& ctx) {
    if (const auto prefix = askPrefix(ctx))
        affixLines(ctx, *prefix, QString());
}

void mnuAddSuffix_Click(CommandContext& ctx) {
    if (const auto suffix = askSuffix(ctx))
        affixLines(ctx, QString(), *suffix);
}

void mnuAddPrefix_Utf8(CommandContext& ctx, Utf8Document& doc) {
    if (const auto prefix = askPrefix(ctx))
        doc.setText(affixLinesUtf8(doc, *prefix, QString()));
}

void mnuAddSuffix_Utf8(CommandContext& ctx, Utf8Document& doc) {
    if (const auto suffix = askSuffix(ctx))
        doc.setText(affixLinesUtf8(doc, QString(), *suffix));
}

} // namespace ed
