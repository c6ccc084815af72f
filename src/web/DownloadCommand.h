#pragma once
// Web > Download Files: fetches the addresses listed in the document (the selection, else the
// whole text) into a folder the user picks, then says what came and what failed. The document
// is not changed.

#include "app/Command.h"

#include <QString>

namespace ed {

void mnuDownloadFiles_Click(CommandContext& ctx);

// The remembered folder: section "frmEdit", key "Download Dir".
inline QString downloadDirKey() {
    return QStringLiteral("Download Dir");
}

} // namespace ed
