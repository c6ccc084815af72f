#include "web/DownloadCommand.h"

#include "app/Trap.h"
#include "web/Downloader.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace ed {

namespace {

const QString kSection = QStringLiteral("frmEdit");
const QString kTitle = QStringLiteral("Download Files");

[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}

// The addresses of `text`: each line, trimmed, that begins with "http://", "https://" or
// "ftp://" (in any case). `skipped` counts the other lines that are not blank.
QStringList downloadAddresses(const QString& text, int& skipped) {
    static const QRegularExpression lineBreak(QStringLiteral("\r\n|\n|\r"));
    static const QRegularExpression address(QStringLiteral("^(https?|ftp)://"),
                                            QRegularExpression::CaseInsensitiveOption);
    QStringList out;
    skipped = 0;
    for (const QString& line : text.split(lineBreak)) {
        const QString trimmed = line.trimmed();
        if (address.match(trimmed).hasMatch())
            out << trimmed;
        else if (!trimmed.isEmpty())
            ++skipped;
    }
    return out;
}

} // namespace

void mnuDownloadFiles_Click(CommandContext& ctx) {
    const QString text = ctx.edit.selLength() > 0 ? ctx.edit.selText() : ctx.edit.text();
    int skipped = 0;
    const QStringList urls = downloadAddresses(text, skipped);
    if (urls.isEmpty()) {
        ctx.dialogs.messageBox(QStringLiteral("There is nothing to download: no line of the %1 "
                                              "begins with http://, https:// or ftp://.")
                                   .arg(ctx.edit.selLength() > 0 ? QStringLiteral("selection")
                                                                 : QStringLiteral("document")),
                               kTitle, Buttons::Ok, Icon::Exclamation);
        ctx.commandFailed = true;
        return;
    }
    if (!ctx.fileDialogs)
        fail(QStringLiteral("Download Files needs a folder dialog."));
    QString start = ctx.settings.get(kSection, downloadDirKey(), QString());
    if (start.isEmpty())
        start = ctx.form.LastDir;
    const QString chosen = ctx.fileDialogs->showFolder(QStringLiteral("Download Files to"), start);
    if (chosen.isEmpty())
        return;
    const QFileInfo info(chosen);
    if (!info.isDir())
        fail(QStringLiteral("The folder \"%1\" does not exist.").arg(chosen));
    const QString folder = QDir::toNativeSeparators(info.absoluteFilePath());
    ctx.settings.save(kSection, downloadDirKey(), folder);

    web::Downloader downloader(info.absoluteFilePath());
    const std::vector<web::DownloadResult> results = downloader.run(urls, ctx.progress);

    int downloaded = 0;
    QStringList failures;
    for (const web::DownloadResult& r : results) {
        if (r.ok())
            ++downloaded;
        else
            failures << QStringLiteral("%1: %2").arg(r.url, r.error);
    }
    const QString summary = QStringLiteral("Downloaded %1 of %2 files to %3.")
                                .arg(downloaded)
                                .arg(results.size())
                                .arg(folder);
    QString status = summary;
    if (skipped > 0)
        status += QStringLiteral(" %1 other %2 skipped.")
                      .arg(skipped)
                      .arg(skipped == 1 ? QStringLiteral("line") : QStringLiteral("lines"));
    ctx.window.showStatus(status);
    QStringList lines{summary};
    lines += failures;
    ctx.dialogs.messageBox(lines.join(u'\n'), kTitle, Buttons::Ok,
                           failures.isEmpty() ? Icon::Information : Icon::Exclamation);
    if (!failures.isEmpty())
        ctx.commandFailed = true;
}

} // namespace ed
