#include "textcmds/Positional.h"

#include "app/Trap.h"
#include "textcmds/Case.h"
#include "textcmds/Framework.h"
#include "util/Utility.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ed {

namespace {

const QString kKey = QStringLiteral("Previous Switch At Text");
const QString kSlash = QStringLiteral("/");

// Where a line is cut: never between the two halves of a character outside the Basic
// Multilingual Plane (such a character stays whole on the first side).
qsizetype cutAt(QStringView line, qsizetype cut) {
    if (cut > 0 && cut < line.size() && line[cut - 1].isHighSurrogate() &&
        line[cut].isLowSurrogate())
        ++cut;
    return cut;
}

} // namespace

MarkerSearch::MarkerSearch(QStringView marker) {
    lowerSameLength(marker, marker_);
    lowerLines_ = std::any_of(marker_.cbegin(), marker_.cend(), [](QChar c) {
        return c.unicode() >= 0x80 || (c.unicode() >= u'a' && c.unicode() <= u'z');
    });
    const qsizetype m = marker_.size();
    border_.assign(size_t(m), 0);
    for (qsizetype i = 1, k = 0; i < m; ++i) {
        while (k > 0 && marker_[i] != marker_[k])
            k = border_[size_t(k - 1)];
        if (marker_[i] == marker_[k])
            ++k;
        border_[size_t(i)] = k;
    }
}

qsizetype MarkerSearch::nth(QStringView line, qint64 n) {
    const qsizetype m = marker_.size();
    if (n < 1)
        return -1;
    if (m == 0)
        return n <= line.size() ? qsizetype(n - 1) : -1;
    if (m > line.size())
        return -1;
    if (lowerLines_)
        lowerSameLength(line, lowerLine_);
    const QStringView t = lowerLines_ ? QStringView(lowerLine_) : line;
    const QChar first = marker_[0];
    if (m == 1) {
        qsizetype p = -1;
        for (qint64 found = 0; found < n; ++found) {
            p = t.indexOf(first, p + 1);
            if (p < 0)
                return -1;
        }
        return p;
    }
    // Knuth-Morris-Pratt: every character of the line is looked at a bounded number of times.
    // While nothing is matched, jump straight to the next candidate first character.
    qint64 found = 0;
    qsizetype k = 0;
    for (qsizetype i = 0; i < t.size(); ++i) {
        if (k == 0) {
            i = t.indexOf(first, i);
            if (i < 0)
                return -1;
        }
        while (k > 0 && t[i] != marker_[k])
            k = border_[size_t(k - 1)];
        if (t[i] == marker_[k])
            ++k;
        if (k == m) {
            if (++found == n)
                return i - m + 1;
            k = border_[size_t(k - 1)];
        }
    }
    return -1;
}

qint32 occurrenceNumber(const QString& field) {
    const QString s = field.trimmed();
    bool ok = false;
    double v = QLocale::c().toDouble(s, &ok);
    if (!ok || std::isnan(v))
        throw RuntimeError(QStringLiteral("Type mismatch: the occurrence \"%1\" is not a number")
                               .arg(field)
                               .toStdString());
    v = std::nearbyint(v);
    if (!(v >= std::numeric_limits<qint32>::min() && v <= std::numeric_limits<qint32>::max()))
        throw RuntimeError(QStringLiteral("Overflow: the occurrence \"%1\" is out of range")
                               .arg(field)
                               .toStdString());
    return qint32(v);
}

void mnuInsertCRAt_Click(CommandContext& ctx) {
    const auto answer = promptRemembered(
        ctx,
        QStringLiteral("Insert CR at what character? enter InsertAtChar/Occurance as #/a or b "
                       "(after or before InSertAtChar)"),
        QStringLiteral("Enter character"), kKey);
    if (!answer)
        return;
    // "marker/n/side" with exactly two slashes; anything else is a marker alone (up to the
    // first slash), broken after its first occurrence.
    QString marker;
    qint32 n = 0;
    bool after = true;
    if (ctx.util.CountChar(*answer, kSlash, true) == 2) {
        const QStringList fields = answer->split(u'/');
        marker = fields[0];
        n = occurrenceNumber(fields[1]);
        after = fields[2] == u"a";
    } else {
        marker = answer->section(u'/', 0, 0);
    }
    MarkerSearch search(marker);
    const QString text = ctx.edit.text();
    // Lines without the marker (or with fewer than n occurrences) are left out.
    ctx.edit.setText(mapLines(
        text,
        [&](QStringView line, QString& out) {
            const qsizetype p = search.nth(line, n < 1 ? 1 : n);
            if (p < 0)
                return;
            const qsizetype cut = cutAt(line, after ? p + 1 : p);
            out.append(line.left(cut)).append(kCrLf).append(line.mid(cut)).append(kCrLf);
        },
        2 * countLines(text)));
}

void mnuInsertTextAt_Click(CommandContext& ctx) {
    const auto answer = promptRemembered(
        ctx,
        QStringLiteral("Insert text at what character? \r\nChar/Occurance #/InsertText/a or b "
                       "(after or before)"),
        QStringLiteral("Enter character"), kKey);
    if (!answer)
        return;
    if (ctx.util.CountChar(*answer, kSlash, true) != 3) {
        ctx.dialogs.messageBox(QStringLiteral("Parameters must be exact"), QStringLiteral("ERROR"),
                               Buttons::Ok, Icon::Critical);
        return;
    }
    const QStringList fields = answer->split(u'/');
    const qint32 n = occurrenceNumber(fields[1]);
    const QString& insert = fields[2];
    const bool after = fields[3] == u"a";
    MarkerSearch search(fields[0]);
    const QString text = ctx.edit.text();
    // No line holds a 0th occurrence, so n < 1 leaves nothing.
    const qsizetype lines = n < 1 ? 0 : countLines(text);
    ctx.edit.setText(mapLines(
        text,
        [&](QStringView line, QString& out) {
            const qsizetype p = search.nth(line, n);
            if (p < 0)
                return;
            const qsizetype cut = cutAt(line, after ? p + 1 : p);
            out.append(line.left(cut)).append(insert).append(line.mid(cut)).append(kCrLf);
        },
        lines * (insert.size() + 2)));
}

namespace {

enum class Keep { Right, Left };

// Each line holding the answer keeps what stands on one side of its first occurrence, trimmed
// of spaces; a line without it stays as it is.
void truncateLines(CommandContext& ctx, const QString& prompt, Keep keep) {
    const auto answer =
        promptRemembered(ctx, prompt, QStringLiteral("Enter character to truncate at"), kKey);
    if (!answer)
        return;
    MarkerSearch search(*answer);
    const QString text = ctx.edit.text();
    ctx.edit.setText(mapLines(text, [&](QStringView line, QString& out) {
        const qsizetype p = search.nth(line, 1);
        if (p < 0)
            out.append(line);
        else if (keep == Keep::Right)
            out.append(trimSpaces(line.mid(p + search.markerLength())));
        else
            out.append(trimSpaces(line.left(p)));
        out.append(kCrLf);
    }));
}

} // namespace

void mnuRemoveLeftSide_Click(CommandContext& ctx) {
    truncateLines(ctx, QStringLiteral("Truncate left side at?"), Keep::Right);
}

void mnuRemoveRightSide_Click(CommandContext& ctx) {
    truncateLines(ctx, QStringLiteral("Truncate right side at?"), Keep::Left);
}

} // namespace ed
