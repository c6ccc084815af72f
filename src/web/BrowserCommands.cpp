#include "web/BrowserCommands.h"

#include "app/Trap.h"
#include "editor/ClipboardCommands.h"
#include "web/ActiveSession.h"
#include "web/BrowserPort.h"
#include "web/cIEObject.h"

#include <QFileInfo>

#include <memory>

namespace ed {

namespace {

constexpr const char* kModule = "frmEdit";
const QString kSection = QStringLiteral("frmEdit");
const QString kCrLf = QStringLiteral("\r\n");

[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}

// The desktop commands say in the status bar why nothing opened; the trap logs it.
[[noreturn]] void failAndSay(CommandContext& ctx, const QString& message) {
    ctx.window.showStatus(message);
    fail(message);
}

} // namespace

void mnuGetBrowserHtml_Click(CommandContext& ctx) {
    const auto ie = openSession(ctx);
    InsertText(ctx, ie ? ie->GetBrowserHTML() : QString());
}

void mnuGetBrowserText_Click(CommandContext& ctx) {
    const auto ie = openSession(ctx);
    InsertText(ctx, ie ? ie->GetBrowserText() : QString());
}

void GetLinks(CommandContext& ctx, const QString& condition) {
    trapped(ctx.log, kModule, QStringLiteral("Sub GetLinks"), [&] {
        const auto ie = openSession(ctx);
        const QStringList links = ie ? ie->GetLinksOnWebPage() : QStringList();
        QString result;
        for (const QString& link : links) {
            if (!condition.isEmpty() && !link.contains(condition, Qt::CaseInsensitive))
                continue;
            result += link;
            result += kCrLf;
        }
        InsertText(ctx, result);
    });
}

void mnuGetBrowserLinks_Click(CommandContext& ctx) {
    GetLinks(ctx, QString());
}

void mnuGetBrowserLinksConditional_Click(CommandContext& ctx) {
    const QString previous = ctx.settings.get(kSection, conditionKey(), QString());
    const QString answer = ctx.dialogs.inputBox(QStringLiteral("Enter text link must contain."),
                                                QStringLiteral("Enter rext"), previous);
    if (answer.isEmpty())
        return;
    ctx.settings.save(kSection, conditionKey(), answer);
    GetLinks(ctx, answer);
}

void mnuNavigateToSel_Click(CommandContext& ctx) {
    if (!ctx.browser) {
        reportNoBrowser(ctx);
        return;
    }
    const std::unique_ptr<web::cIEObject> ie = ctx.browser->createSession();
    if (!ie->InitializeObject()) {
        reportNoBrowser(ctx);
        return;
    }
    const QString text = ie->CopySelection();
    if (!text.isEmpty())
        ie->NavigateToUrl(text, false);
}

void mnuExplorer_Click(CommandContext& ctx) {
    const QString folder = ctx.form.LastDir;
    if (folder.isEmpty())
        failAndSay(ctx, QStringLiteral("The document has no folder to open yet."));
    if (!QFileInfo(folder).isDir())
        failAndSay(ctx, QStringLiteral("The folder \"%1\" does not exist.").arg(folder));
    if (!ctx.launcher.explore(folder))
        failAndSay(ctx, QStringLiteral("No file manager could be opened on \"%1\".").arg(folder));
}

void mnuLoadinwebbrowser_Click(CommandContext& ctx) {
    const QString file = ctx.form.FileName;
    if (file.isEmpty())
        failAndSay(ctx, QStringLiteral("The document has no file name yet."));
    if (!QFileInfo(file).isFile())
        failAndSay(
            ctx,
            QStringLiteral("The file \"%1\" does not exist; save the document first.").arg(file));
    if (!ctx.launcher.open(file))
        failAndSay(ctx, QStringLiteral("No program could be opened on \"%1\".").arg(file));
}

} // namespace ed
