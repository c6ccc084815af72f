#pragma once
// Edit > Undo and Redo: whole commands taken back and brought back, many levels deep.

#include "app/Command.h"

namespace ed {
void mnuUndo_Click(CommandContext& ctx);
void mnuRedo_Click(CommandContext& ctx);
// Enables Undo and Redo as the history allows.
void updateHistoryItems(CommandContext& ctx);
} // namespace ed
