#include "editor/FormLoad.h"

#include "app/Trap.h"
#include "editor/DocumentCommands.h"
#include "editor/LinkMenu.h"
#include "editor/Placement.h"
#include "editor/ViewCommands.h"
#include "util/Utility.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace ed {

QString newDocumentFolder(const QString& programFolder, const FolderCheck& writable,
                          const QString& documentsFolder, const QString& homeFolder) {
    if (writable(programFolder))
        return programFolder;
    if (!documentsFolder.isEmpty() && writable(documentsFolder))
        return documentsFolder;
    return homeFolder;
}

QString newDocumentFolder(const QString& programFolder) {
    return newDocumentFolder(
        programFolder,
        [](const QString& folder) {
            const QFileInfo info(folder);
            return info.isDir() && info.isWritable();
        },
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), QDir::homePath());
}

void Form_Load(CommandContext& ctx, QString commandLine) {
    QString searchText;
    bool search = false;
    trapped(ctx.log, "frmEdit", QStringLiteral("Form_Load"), [&] {
        GetLnksFromRegistry(ctx);
        if (!commandLine.isEmpty()) {
            if (commandLine.contains(u'~')) {
                const QStringList pieces = commandLine.split(u'~');
                commandLine = pieces[0];
                searchText = pieces.value(1).trimmed();
                search = !searchText.isEmpty();
            }
            // A relative name is taken from the folder the program was started in.
            const QString path = QFileInfo(commandLine).absoluteFilePath();
            adoptFileName(ctx, path);
            PutLinkOnMenu(ctx, path);
            if (!LoadNewFile(ctx, path)) {
                // Cancelled: an empty new document, never one named after the file not read.
                ctx.form.FileName = GetNewFile(ctx);
                ctx.window.setCaption(ctx.form.FileName);
            }
        } else {
            ctx.form.LastDir =
                ctx.settings.get(QStringLiteral("frmEdit"), QStringLiteral("Last Dir"), QString());
            if (ctx.form.LastDir.isEmpty())
                ctx.form.LastDir = newDocumentFolder(ctx.startUp.programFolder) + u'/';
            ctx.form.FileName = GetNewFile(ctx);
            ctx.window.setCaption(ctx.form.FileName);
        }
        ctx.form.RightMargin = settingToBool(ctx.settings.get(
            QStringLiteral("frmEdit"), QStringLiteral("Right Margin"), QStringLiteral("0")));
        if (ctx.form.RightMargin)
            ctx.run(QStringLiteral("mnuNoWrap"));
        SetFont(ctx);
        if (ctx.geometry)
            Placement(ctx.settings, ctx.log).AlignFF(*ctx.geometry, 0, 0, 5000, 4000, true, true);
        ctx.window.showWindow();
        ctx.run(QStringLiteral("mnuKeepOnTop"));
        if (search && ctx.searchQuietly)
            ctx.searchQuietly(searchText);
    });
}

void Form_Unload(CommandContext& ctx) {
    trapped(ctx.log, "frmEdit", QStringLiteral("Form_Unload"), [&] {
        if (ctx.geometry)
            Placement(ctx.settings, ctx.log).SaveFF(*ctx.geometry);
    });
}

} // namespace ed
