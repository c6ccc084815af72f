#include "textcmds/CountsDates.h"

#include "app/ErrorLogger.h"
#include "textcmds/Framework.h"

namespace ed {

namespace {

// Replaces the selection (or inserts at the caret) with `stamp`; the caret ends in front of it.
void putAtSelection(CommandContext& ctx, const QString& stamp) {
    const int start = ctx.edit.selStart();
    ctx.edit.replaceRange(start, ctx.edit.selLength(), stamp);
    ctx.edit.setSelStart(start);
    ctx.edit.setSelLength(0);
}

} // namespace

void mnuGetCharCount_Click(CommandContext& ctx) {
    const int selected = ctx.edit.selLength();
    const QString text = selected >= 1
                             ? QStringLiteral("Selected Character Count = %1").arg(selected)
                             : QStringLiteral("Character Count = %1").arg(ctx.edit.textLength());
    ctx.dialogs.messageBox(text, defaultTitle(), Buttons::Ok, Icon::Information);
}

void mnuShowLineCount_Click(CommandContext& ctx) {
    // Every piece between CR LFs counts, so a final CR LF adds an empty last line; an empty text
    // has no lines at all.
    const QByteArray text = ctx.edit.utf8();
    const qsizetype lines = text.isEmpty() ? 0 : countModelLines(text);
    ctx.dialogs.messageBox(QStringLiteral("Line Count = %1").arg(lines), defaultTitle(),
                           Buttons::Ok, Icon::None);
}

void mnuInsertDate_Click(CommandContext& ctx) {
    putAtSelection(ctx, localeShortDate(ctx.clock.now().date()));
}

void mnuInsertTime_Click(CommandContext& ctx) {
    putAtSelection(ctx, localeTime(ctx.clock.now().time()));
}

void mnuInsertDateTime_Click(CommandContext& ctx) {
    const QDateTime now = ctx.clock.now();
    putAtSelection(ctx,
                   localeShortDate(now.date()) + QStringLiteral(": ") + localeTime(now.time()));
}

} // namespace ed
