#pragma once
// The Edit menu's clipboard commands, Insert > ClipBoard Text, and the one-level insert buffer
// through which commands that produce text put it into the document.

#include "app/Command.h"

#include <QByteArray>
#include <QString>

namespace ed {

void mnuCut_Click(CommandContext& ctx);
void mnuCopy_Click(CommandContext& ctx);
void mnuPaste_Click(CommandContext& ctx);
void mnuSelectAll_Click(CommandContext& ctx);
void mnuLoadClipBoardText_Click(CommandContext& ctx);

// Inserts `text` at the caret, keeping the text before it in UndoText. At the very start of the
// document the inserted text is followed by CR LF; a selection is not replaced. An empty
// document first gets the kept text back (see UndoInsert).
void InsertText(CommandContext& ctx, const QString& text);

// A non-empty `text` (the document's bytes) is kept as UndoText; an empty one puts UndoText back
// as the whole document.
void UndoInsert(CommandContext& ctx, const QByteArray& text);

} // namespace ed
