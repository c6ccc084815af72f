#include "editor/SearchCommands.h"

#include "app/Trap.h"
#include "editor/LowerCaseSearch.h"
#include "util/ByteWriter.h"
#include "util/ByteSearch.h"

#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace ed {

namespace {

const char* const kModule = "frmEdit";
const QString kSection = QStringLiteral("frmEdit");
const QString kPreviousSearch = QStringLiteral("Previous Search");
const QString kReplaceWith = QStringLiteral("Replace with");
const QString kSearchPrompt = QStringLiteral("Text to search for in these files?");
const QString kNotFound = QStringLiteral("String not found");

qint32 checkedPosition(qsizetype value) {
    if (value > std::numeric_limits<qint32>::max())
        throw RuntimeError("Overflow");
    return qint32(value);
}

QString askSearchText(CommandContext& ctx, const QString& proposed) {
    return ctx.dialogs.inputBox(kSearchPrompt, QStringLiteral("Enter Search String"), proposed);
}

void findTextBody(CommandContext& ctx, QString& searchText, qint32* startPos, bool quiet) {
    QString s;
    qint32 p = 1;
    if (quiet) {
        s = searchText;
    } else if (!startPos) {
        searchText = ctx.clipboard.text();
        s = askSearchText(ctx, searchText);
    } else {
        p = *startPos;
        s = ctx.settings.get(kSection, kPreviousSearch, QString());
        if (s.isEmpty() || p == 0) {
            s = askSearchText(ctx, searchText);
            p = 1;
        }
    }
    if (s.isEmpty())
        return;
    ctx.settings.save(kSection, kPreviousSearch, s);

    if (p < 1)
        throw RuntimeError("Invalid procedure call or argument");
    const qsizetype found = indexOfIgnoringCase(ctx.edit.utf8(), toModelUtf8(s), qsizetype(p) - 1);
    if (found < 0) {
        ctx.form.SearchPos = 0;
        ctx.menu.setEnabled(QStringLiteral("mnuFindNext"), false);
        if (!quiet)
            ctx.dialogs.messageBox(kNotFound, defaultTitle(), Buttons::Ok, Icon::Critical);
        return;
    }
    ctx.form.SearchPos = checkedPosition(found + 1 + s.size());
    ctx.edit.setSelStart(int(found));
    ctx.edit.setSelLength(int(s.size()));
    ctx.menu.setEnabled(QStringLiteral("mnuFindNext"), true);
}

void replaceAllBody(CommandContext& ctx) {
    QString find = ctx.edit.selText();
    const int caret = ctx.edit.selStart();
    if (find.isEmpty())
        find = ctx.dialogs.inputBox(kSearchPrompt, defaultTitle(),
                                    ctx.settings.get(kSection, kPreviousSearch, QString()));
    if (find.isEmpty())
        return;
    ctx.settings.save(kSection, kPreviousSearch, find);

    const QString prompt = QStringLiteral("Enter text to replace \"") + find +
                           QStringLiteral("\" with?\r\n\r\n\r\nEnter \"vbCrLf\" to replace with "
                                          "carriage return character.");
    QString with = ctx.dialogs.inputBox(prompt, defaultTitle(),
                                        ctx.settings.get(kSection, kReplaceWith, QString()));
    if (with.isEmpty()) {
        const Answer a = ctx.dialogs.messageBox(
            QStringLiteral("Replace ") + find + QStringLiteral(" with an empty string?"),
            QStringLiteral("Replace with empty or cancel?"), Buttons::YesNo, Icon::Question);
        if (a != Answer::Yes)
            return;
    }
    ctx.settings.save(kSection, kReplaceWith, with);

    const QByteArray text = ctx.edit.utf8();
    const ByteSearch finder(toModelUtf8(find));
    qsizetype hit = finder.find(text);
    if (hit < 0) {
        ctx.dialogs.messageBox(kNotFound, defaultTitle(), Buttons::Ok, Icon::None);
        return;
    }
    if (with.toLower() == u"vbcrlf")
        with = QStringLiteral("\r\n");
    const QByteArray replacement = toModelUtf8(with);
    // Left to right without overlap, in one pass; the untouched stretches are copied whole.
    const qsizetype growth = std::max<qsizetype>(0, replacement.size() - finder.pattern().size());
    ByteWriter out(text.size() + (growth ? text.size() / 8 + growth : 0));
    qsizetype done = 0;
    while (hit >= 0) {
        out.append(QByteArrayView(text).sliced(done, hit - done));
        out.append(replacement);
        done = hit + finder.pattern().size();
        hit = finder.find(text, done);
    }
    out.append(QByteArrayView(text).sliced(done));
    ctx.edit.setUtf8(std::move(out).finish());
    ctx.edit.setSelStart(caret);
    ctx.edit.setSelLength(5); // always 5, whatever was replaced
}

} // namespace

void FindText(CommandContext& ctx, QString& searchText, qint32* startPos, bool quiet) {
    trapped(ctx.log, kModule, QStringLiteral("Sub FindText"),
            [&] { findTextBody(ctx, searchText, startPos, quiet); });
}

void ReplaceAllText(CommandContext& ctx) {
    trapped(ctx.log, kModule, QStringLiteral("Sub ReplaceAllText"), [&] { replaceAllBody(ctx); });
}

void mnuSearch_Click(CommandContext& ctx) {
    QString text = ctx.edit.selText();
    if (text.isEmpty())
        text = ctx.settings.get(kSection, kPreviousSearch, QString());
    FindText(ctx, text, nullptr, false);
}

void mnuFindNext_Click(CommandContext& ctx) {
    QString none;
    FindText(ctx, none, &ctx.form.SearchPos, false);
}

void mnuReplace_Click(CommandContext& ctx) {
    ReplaceAllText(ctx);
}

QString fixedBrowserPath() {
#ifdef Q_OS_WIN
    return QStringLiteral("C:\\Program Files\\Internet Explorer\\iexplore.exe");
#else
    // That browser has no install location outside Windows: nothing is there to find.
    return QString();
#endif
}

void updateToolsMenu(CommandContext& ctx, const QString& browserPath) {
    const bool present = !browserPath.isEmpty() && QFileInfo(browserPath).isFile();
    ctx.menu.setEnabled(QStringLiteral("mnuWebsites"), present);
    ctx.menu.setEnabled(QStringLiteral("mnuSearch"), ctx.form.SearchPos >= 1);
}

void mnuTools_Click(CommandContext& ctx) {
    updateToolsMenu(ctx, fixedBrowserPath());
}

} // namespace ed
