#pragma once
// The Load From IE commands (the page's HTML, text and links put into the document), Navigate To
// Sel, and the two Tools commands that hand the document's folder and file to the desktop.
// Each browser command uses one fresh session for one operation and inserts its result through
// InsertText, so that the insertion can be taken back. A browser that does not answer is no
// error: the commands insert an empty text or do nothing, and the status bar says where the
// program looked for a browser and how to start one.

#include "app/Command.h"

#include <QString>

namespace ed {

void mnuGetBrowserHtml_Click(CommandContext& ctx);
void mnuGetBrowserText_Click(CommandContext& ctx);
void mnuGetBrowserLinks_Click(CommandContext& ctx);
void mnuGetBrowserLinksConditional_Click(CommandContext& ctx);
void mnuNavigateToSel_Click(CommandContext& ctx);
void mnuExplorer_Click(CommandContext& ctx);
void mnuLoadinwebbrowser_Click(CommandContext& ctx);

// Inserts the web links of the browser's page, one a line (each followed by CR LF). With an
// empty `condition` every entry is taken, the empty ones of links that are not web links
// included; otherwise only entries that contain `condition`, compared without regard to case.
void GetLinks(CommandContext& ctx, const QString& condition);

// The remembered answer of Links Conditionally: section "frmEdit", key "Condition".
inline QString conditionKey() {
    return QStringLiteral("Condition");
}

} // namespace ed
