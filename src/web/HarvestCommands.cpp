#include "web/HarvestCommands.h"

#include "editor/ClipboardCommands.h"
#include "web/ActiveSession.h"
#include "web/BrowserPort.h"
#include "web/cIEObject.h"

#include <memory>

namespace ed {

namespace {

const QString kSection = QStringLiteral("frmEdit");

QString asLines(const QStringList& entries) {
    QString text;
    for (const QString& entry : entries) {
        text += entry;
        text += QStringLiteral("\r\n");
    }
    return text;
}

QString askRemembered(CommandContext& ctx, const QString& prompt, const QString& title,
                      const QString& key, const QString& defaultValue) {
    const QString answer =
        ctx.dialogs.inputBox(prompt, title, ctx.settings.get(kSection, key, defaultValue));
    if (!answer.isEmpty())
        ctx.settings.save(kSection, key, answer);
    return answer;
}

} // namespace

bool askStartAndStopTags(CommandContext& ctx, const QString& title, QString& start, QString& stop) {
    start = askRemembered(ctx, QStringLiteral("Enter the start tag."), title,
                          QStringLiteral("GetHtmlTagsStart"), QStringLiteral("<a>"));
    if (start.isEmpty())
        return false;
    stop = askRemembered(ctx, QStringLiteral("Enter the stop tag."), title,
                         QStringLiteral("GetHtmlTagsStop"), QStringLiteral("</a>"));
    return !stop.isEmpty();
}

void mnuGetBrowserEmail_Click(CommandContext& ctx) {
    const auto ie = openSession(ctx);
    InsertText(ctx, ie ? asLines(ie->CollectEmail()) : QString());
}

void mnuGetPhoneNumbers_Click(CommandContext& ctx) {
    const auto ie = openSession(ctx);
    InsertText(ctx, ie ? asLines(ie->CollectPhoneNumbers(false)) : QString());
}

void mnuGetFaxNumbers_Click(CommandContext& ctx) {
    const auto ie = openSession(ctx);
    InsertText(ctx, ie ? asLines(ie->CollectPhoneNumbers(true)) : QString());
}

void mnuAnyTagContent_Click(CommandContext& ctx) {
    QString start, stop;
    if (!askStartAndStopTags(ctx, QStringLiteral("Any Tag Content"), start, stop))
        return;
    const auto ie = openSession(ctx);
    InsertText(ctx, ie ? asLines(ie->Get_HtmlTag_Content(start, stop, QString())) : QString());
}

} // namespace ed
