#include "editor/HistoryCommands.h"

#include "editor/UndoHistory.h"

namespace ed {

void updateHistoryItems(CommandContext& ctx) {
    ctx.menu.setEnabled(QStringLiteral("mnuUndo"), ctx.history && ctx.history->canUndo());
    ctx.menu.setEnabled(QStringLiteral("mnuRedo"), ctx.history && ctx.history->canRedo());
}

namespace {

void takeStep(CommandContext& ctx, bool undo) {
    if (!ctx.history)
        return;
    if (const auto change = ctx.history->next(undo, ctx.edit.textLength())) {
        const int start = int(change->offset);
        const int length = int(change->length);
        bool made = true;
        if (ctx.replaceRangeCancellable)
            made = ctx.replaceRangeCancellable(start, length, change->text);
        else
            ctx.edit.replaceRange(start, length, change->text);
        if (made) {
            ctx.edit.setSelStart(start);
            ctx.edit.setSelLength(0);
            ctx.history->done(undo);
        }
    }
    updateHistoryItems(ctx);
}

} // namespace

void mnuUndo_Click(CommandContext& ctx) {
    takeStep(ctx, true);
}

void mnuRedo_Click(CommandContext& ctx) {
    takeStep(ctx, false);
}

} // namespace ed
