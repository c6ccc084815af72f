#include "textcmds/Whitespace.h"

#include "textcmds/Framework.h"

namespace ed {

namespace {

QString withoutSpaces(QStringView s) {
    QString out(s.size(), Qt::Uninitialized);
    QChar* o = out.data();
    for (QChar c : s)
        if (c != u' ')
            *o++ = c;
    out.truncate(o - out.data());
    return out;
}

} // namespace

QString collapseSpaces(QStringView s) {
    // Replacing "  " by " " until no pair is left shortens every run to one space; this is that
    // result in one pass.
    QString out(s.size(), Qt::Uninitialized);
    QChar* o = out.data();
    bool afterSpace = false;
    for (QChar c : s) {
        const bool space = c == u' ';
        if (!(space && afterSpace))
            *o++ = c;
        afterSpace = space;
    }
    out.truncate(o - out.data());
    return out;
}

QString joinParagraphs(QStringView s) {
    // The steps are: CR LF CR LF -> "^" (left to right), remaining CR LF -> " ", "^" -> CR LF CR
    // LF, then one left-to-right pass of "  " -> " ". They are done here in one scan: the first
    // three rewrite disjoint patterns in scan order, and the last shortens every run of k spaces
    // of their result to (k + 1) / 2, i.e. keeps the 1st, 3rd, 5th ... space of each run.
    const qsizetype n = s.size();
    const QChar* in = s.data();
    // The text grows only where "^" becomes four characters.
    qsizetype carets = 0;
    for (qsizetype i = 0; i < n; ++i)
        carets += in[i] == u'^';
    QString out(n + 3 * carets, Qt::Uninitialized);
    QChar* o = out.data();
    qsizetype run = 0; // spaces in the current run of the unshortened result
    auto space = [&] {
        if (run++ % 2 == 0)
            *o++ = u' ';
    };
    auto paragraph = [&] {
        *o++ = u'\r';
        *o++ = u'\n';
        *o++ = u'\r';
        *o++ = u'\n';
        run = 0;
    };
    for (qsizetype i = 0; i < n;) {
        const QChar c = in[i];
        if (c == u'\r' && i + 1 < n && in[i + 1] == u'\n') {
            if (i + 3 < n && in[i + 2] == u'\r' && in[i + 3] == u'\n') {
                paragraph();
                i += 4;
            } else {
                space();
                i += 2;
            }
        } else if (c == u'^') {
            paragraph();
            ++i;
        } else if (c == u' ') {
            space();
            ++i;
        } else {
            *o++ = c;
            run = 0;
            ++i;
        }
    }
    out.truncate(o - out.data());
    return out;
}

void mnuRemoveAllSpaces_Click(CommandContext& ctx) {
    selectionOrWhole(ctx, !ctx.edit.selText().isEmpty(), withoutSpaces);
}

void mnuTrimLeadingAndTrailingSpaces_Click(CommandContext& ctx) {
    const QString text = ctx.edit.text();
    ctx.edit.setText(mapLines(
        text, [](QStringView line, QString& out) { out.append(trimSpaces(line)).append(kCrLf); }));
}

void mnuCnvDblSpcToSingle_Click(CommandContext& ctx) {
    ctx.edit.setText(collapseSpaces(ctx.edit.text()));
}

void mnuReplaceDoubleBlankLineWithSingle_Click(CommandContext& ctx) {
    // The first blank line of each run stays as it is (spaces included); the others go.
    const QString text = ctx.edit.text();
    bool previousBlank = false;
    ctx.edit.setText(mapLines(text, [&](QStringView line, QString& out) {
        const bool blank = isBlank(line);
        if (blank && previousBlank)
            return;
        previousBlank = blank;
        out.append(line).append(kCrLf);
    }));
}

void mnuTrimSpaces_Click(CommandContext& ctx) {
    const QString text = ctx.edit.text();
    ctx.edit.setText(mapLines(text, [](QStringView line, QString& out) {
        if (!isBlank(line))
            out.append(line).append(kCrLf);
    }));
}

void mnuRemoveCRLF_Click(CommandContext& ctx) {
    const QString joined = joinParagraphs(ctx.edit.text());
    ctx.edit.setText(QString());
    ctx.edit.setText(joined);
}

void mnuInsertBlankLines_Click(CommandContext& ctx) {
    constexpr int kBreaks = 301;
    const QString text = ctx.edit.text();
    QString out;
    out.reserve(2 * kBreaks + text.size());
    for (int i = 0; i < kBreaks; ++i)
        out.append(kCrLf);
    out.append(text);
    ctx.edit.setText(out);
}

} // namespace ed
