#pragma once
// Web > Download Files: fetches the addresses listed in the document (the selection, else the
// whole text) into a folder the user picks, then says what came and what failed. The document
// is not changed.

#include "app/Command.h"
#include "web/Downloader.h"

#include <QString>
#include <QStringList>

namespace ed {

void mnuDownloadFiles_Click(CommandContext& ctx);

// The addresses of `text`: each line, trimmed, that begins with "http://", "https://" or
// "ftp://" (in any case). `skipped` counts the other lines that are not blank.
QStringList downloadAddresses(const QString& text, int& skipped);

// The remembered folder: section "frmEdit", key "Download Dir".
inline QString downloadDirKey() {
    return QStringLiteral("Download Dir");
}

// How long a file may go without data; tests shorten it.
inline web::DownloadOptions& downloadOptions() {
    static web::DownloadOptions options;
    return options;
}

} // namespace ed
