#include "textcmds/Whitespace.h"

#include "textcmds/Framework.h"
#include "textcmds/Utf8Transforms.h"

namespace ed {

namespace {

QString withoutSpaces(QStringView s) {
    // Every character is written and the next one overwrites it if it was a space: no branch
    // to mispredict on irregular spaces.
    QString out(s.size(), Qt::Uninitialized);
    char16_t* o = reinterpret_cast<char16_t*>(out.data());
    char16_t* const begin = o;
    const char16_t* in = s.utf16();
    for (qsizetype i = 0; i < s.size(); ++i) {
        const char16_t c = in[i];
        *o = c;
        o += c != u' ';
    }
    out.truncate(o - begin);
    return out;
}

} // namespace

QString collapseSpaces(QStringView s) {
    // Replacing "  " by " " until no pair is left shortens every run to one space; this is that
    // result in one pass (without branches: spaces come too irregularly to predict).
    QString out(s.size(), Qt::Uninitialized);
    char16_t* o = reinterpret_cast<char16_t*>(out.data());
    char16_t* const begin = o;
    unsigned afterSpace = 0;
    const char16_t* in = s.utf16();
    for (qsizetype i = 0; i < s.size(); ++i) {
        const char16_t c = in[i];
        const unsigned space = c == u' ';
        *o = c;
        o += 1 - (space & afterSpace);
        afterSpace = space;
    }
    out.truncate(o - begin);
    return out;
}

QString joinParagraphs(QStringView s) {
    // The steps are: CR LF CR LF -> "^" (left to right), remaining CR LF -> " ", "^" -> CR LF CR
    // LF, then one left-to-right pass of "  " -> " ". They are done here in one scan: the first
    // three rewrite disjoint patterns in scan order, and the last shortens every run of k spaces
    // of their result to (k + 1) / 2, i.e. keeps the 1st, 3rd, 5th ... space of each run.
    const qsizetype n = s.size();
    const char16_t* in = s.utf16();
    // The text grows only where "^" becomes four characters.
    qsizetype carets = 0;
    for (qsizetype i = 0; i < n; ++i)
        carets += in[i] == u'^';
    QString out(n + 3 * carets, Qt::Uninitialized);
    char16_t* o = reinterpret_cast<char16_t*>(out.data());
    char16_t* const begin = o;
    qsizetype run = 0; // 1 after an odd number of spaces of the unshortened result
    for (qsizetype i = 0; i < n;) {
        const char16_t c = in[i];
        if (c != u'\r' && c != u'^') {
            // Ordinary characters and spaces, without branches.
            const qsizetype space = c == u' ';
            *o = c;
            o += 1 - (space & run);
            run = (run ^ 1) & space;
            ++i;
            continue;
        }
        bool space = c == u' ';
        qsizetype used = 1;
        if (c == u'\r') {
            if (i + 1 < n && in[i + 1] == u'\n') {
                if (i + 3 < n && in[i + 2] == u'\r' && in[i + 3] == u'\n')
                    used = 4; // a paragraph break
                else
                    space = true, used = 2;
            } else {
                *o++ = c; // a lone CR
                run = 0;
                ++i;
                continue;
            }
        }
        if (space) {
            if (run == 0)
                *o++ = u' ';
            run ^= 1;
        } else {
            o[0] = o[2] = u'\r';
            o[1] = o[3] = u'\n';
            o += 4;
            run = 0;
        }
        i += used;
    }
    out.truncate(o - begin);
    return out;
}

void mnuRemoveAllSpaces_Click(CommandContext& ctx) {
    selectionOrWhole(ctx, !ctx.edit.selText().isEmpty(), withoutSpaces);
}

void mnuRemoveAllSpaces_Utf8(CommandContext&, Utf8Document& doc) {
    doc.setText(removeSpacesUtf8(doc.text()));
}

void mnuTrimLeadingAndTrailingSpaces_Click(CommandContext& ctx) {
    const QString text = ctx.edit.text();
    ctx.edit.setText(mapLines(
        text, [](QStringView line, QString& out) { out.append(trimSpaces(line)).append(kCrLf); }));
}

void mnuTrimLeadingAndTrailingSpaces_Utf8(CommandContext&, Utf8Document& doc) {
    doc.setText(affixLinesUtf8(doc, QString(), QString()));
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
