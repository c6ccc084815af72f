#pragma once
// The File menu: new, open, save, save as, save as RTF, delete, and the document loader.

#include "app/Command.h"

namespace ed {

// The filter of the open and save dialogs, as the window sets it at load.
QString documentFilter();

QString GetNewFile(CommandContext& ctx);
// Loads `path` into the document. False only when the user cancelled a long load: the document
// is then as it was.
bool LoadNewFile(CommandContext& ctx, const QString& path);
// Open and the recent-files list: the link, the name and the load. A cancelled load leaves the
// document, its name and the caption as they were.
void openInPlace(CommandContext& ctx, const QString& path);
// Before the document is replaced or the window closes: asks whether to save unsaved changes.
// False when the command should stop (Cancel, or the save failed).
bool confirmDiscard(CommandContext& ctx);
// Adopts `path` as the document's name: FileName, caption, LastDir and its setting.
void adoptFileName(CommandContext& ctx, const QString& path, bool setCaption = true);

void mnuNew_Click(CommandContext& ctx);
void mnuOpen_Click(CommandContext& ctx);
void mnuOpenSelect_Click(CommandContext& ctx);
void mnuSave_Click(CommandContext& ctx);
void mnuSaveAsRTF_Click(CommandContext& ctx);
void mnuSaveAs_Click(CommandContext& ctx);
void mnuDelete_Click(CommandContext& ctx);
void mnuInsertTextFromFile_Click(CommandContext& ctx);
void mnuSetDefaultDir_Click(CommandContext& ctx);
void mnuWebsites_Click(CommandContext& ctx);

} // namespace ed
