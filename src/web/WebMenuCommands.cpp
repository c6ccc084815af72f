#include "web/WebMenuCommands.h"

#include "app/Trap.h"
#include "textcmds/Framework.h"
#include "util/SafeFileWrite.h"
#include "web/ActiveSession.h"
#include "web/BrowserPort.h"
#include "web/DownloadNames.h"
#include "web/SiteList.h"
#include "web/WebText.h"
#include "web/cIEObject.h"

#include <QFileInfo>
#include <QUrl>

#include <memory>

namespace ed {

namespace {

const QString kSection = QStringLiteral("frmEdit");

[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}

// The file name the save dialog proposes: the page's title, when it has one of its own.
QString proposedName(web::cIEObject& ie) {
    const QString title = ie.GetSiteTitle(false).trimmed();
    const QString url = ie.GetSiteUrl();
    // A page without a title is named after its address.
    const QString withoutScheme = url.section(QStringLiteral("://"), 1);
    if (title == url || (!withoutScheme.isEmpty() && title == withoutScheme))
        return QStringLiteral("page");
    return web::safeFileName(title, QStringLiteral("page"));
}

} // namespace

QString webSearchAddress(const QString& pattern, const QString& query) {
    QString address = pattern;
    address.replace(QStringLiteral("%s"), QString::fromLatin1(QUrl::toPercentEncoding(query)));
    return address;
}

void mnuNaviagetTo_Click(CommandContext& ctx) {
    const std::optional<QString> answer =
        promptRemembered(ctx, QStringLiteral("Enter the address to go to."),
                         QStringLiteral("Navigate to"), QStringLiteral("Navigate To"), kSection);
    if (!answer)
        return;
    const web::NavigationTarget target = web::navigationTarget(answer->trimmed());
    if (target.mail) {
        if (!ctx.launcher.open(target.text))
            fail(QStringLiteral("The mail program could not be opened for \"%1\".")
                     .arg(target.text));
        return;
    }
    showInBrowser(ctx, target.text);
}

void mnuSearchGoogle_Click(CommandContext& ctx) {
    const std::optional<QString> answer =
        promptRemembered(ctx, QStringLiteral("Search the web for?"),
                         QStringLiteral("Search Google"), QStringLiteral("Web Search"), kSection);
    if (!answer)
        return;
    const QString pattern = ctx.settings.get(kSection, webSearchUrlKey(), defaultWebSearchUrl());
    showInBrowser(ctx, webSearchAddress(pattern, *answer));
}

void mnuSaveWebPage_Click(CommandContext& ctx) {
    if (!ctx.browser) {
        ctx.window.showStatus(noConnectionMessage());
        return;
    }
    const std::unique_ptr<web::cIEObject> ie = ctx.browser->createSession();
    const web::BrowserHandle active = ie->GetActiveBrowser(false);
    if (active.isEmpty() || !ie->InitializeObject(active)) {
        ctx.window.showStatus(noBrowserMessage(*ctx.browser));
        return;
    }
    if (!ctx.fileDialogs)
        fail(QStringLiteral("Saving the web page needs a file dialog."));
    FileDialogRequest request;
    request.title = QStringLiteral("Save web page");
    request.filter =
        QStringLiteral("Web archive *.mhtml|*.mhtml|Web page, HTML only *.html|*.html");
    request.filterIndex = 1;
    request.initialDir = ctx.form.LastDir;
    request.fileName = proposedName(*ie);
    request.defaultExtension = QStringLiteral("mhtml");
    const FileDialogResult chosen = ctx.fileDialogs->showSave(request);
    if (chosen.fileName.isEmpty())
        return;
    // The extension decides what is written; a name without one gets the chosen filter's.
    QString path = chosen.fileName;
    const QString suffix = QFileInfo(path).suffix().toLower();
    bool archive = chosen.filterIndex != 2;
    if (suffix == u"html" || suffix == u"htm")
        archive = false;
    else if (suffix == u"mhtml" || suffix == u"mht")
        archive = true;
    else
        path += archive ? QStringLiteral(".mhtml") : QStringLiteral(".html");
    const QByteArray bytes = ie->PageSnapshot(archive);
    QString error;
    if (!writeFileSafely(path, bytes, error))
        fail(error);
    ctx.window.showStatus(QStringLiteral("Saved %1 (%2 bytes)").arg(path).arg(bytes.size()));
}

} // namespace ed
