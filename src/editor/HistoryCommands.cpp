#include "editor/HistoryCommands.h"

#include "editor/UndoHistory.h"

namespace ed {

void updateHistoryItems(CommandContext& ctx) {
    ctx.menu.setEnabled(QStringLiteral("mnuUndo"), ctx.history && ctx.history->canUndo());
    ctx.menu.setEnabled(QStringLiteral("mnuRedo"), ctx.history && ctx.history->canRedo());
}

void mnuUndo_Click(CommandContext& ctx) {
    if (ctx.history)
        ctx.history->undo();
    updateHistoryItems(ctx);
}

void mnuRedo_Click(CommandContext& ctx) {
    if (ctx.history)
        ctx.history->redo();
    updateHistoryItems(ctx);
}

} // namespace ed
