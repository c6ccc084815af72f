#pragma once
// Find..., Find Next and Replace... of the Search menu, the quiet search of the command line,
// and the Tools menu's opening handler (which also decides whether Find... is offered).

#include "app/Command.h"

#include <QString>
#include <QStringView>

namespace ed {

// Searches the document and selects the match. `startPos` is the 1-based position to continue
// from (Find Next passes &ctx.form.SearchPos); nullptr means "not given": then the clipboard's text
// is proposed in the prompt and the search starts at the beginning. `quiet` searches
// `searchText` at once, without prompt and without a message on a miss.
void FindText(CommandContext& ctx, QString& searchText, qint32* startPos, bool quiet);

// The body of Replace...: every occurrence of a text, matched exactly, replaced by another.
void ReplaceAllText(CommandContext& ctx);

void mnuSearch_Click(CommandContext& ctx);
void mnuFindNext_Click(CommandContext& ctx);
void mnuReplace_Click(CommandContext& ctx);

// Runs each time the Tools menu opens: "Open In Notepad" is offered only when the browser the
// program drives exists at its fixed place, and Find... only after a successful search.
void mnuTools_Click(CommandContext& ctx);
// The same with the file looked for given (an empty path exists nowhere).
void updateToolsMenu(CommandContext& ctx, const QString& fixedBrowserPath);
// The fixed place of that browser on this platform; empty where it cannot exist.
QString fixedBrowserPath();

} // namespace ed
