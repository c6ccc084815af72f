#include "textcmds/Formatting.h"

#include "app/Trap.h"
#include "textcmds/RememberedAnswer.h"

namespace ed {

namespace {

// The saved font of the document ("Arial,9,False,False"), as the window applies it at load.
FontSpec savedFont(CommandContext& ctx) {
    const QStringList parts = ctx.settings
                                  .get(QStringLiteral("frmEdit"), QStringLiteral("Font"),
                                       QStringLiteral("Arial,9,False,False"))
                                  .split(u',');
    if (parts.size() < 4)
        throw RuntimeError("Subscript out of range: the saved font has fewer than four parts");
    FontSpec f;
    bool sizeOk = false, boldOk = false, italicOk = false;
    f.name = parts[0].trimmed().isEmpty() ? QStringLiteral("Arial") : parts[0].trimmed();
    f.size = parts[1].trimmed().toDouble(&sizeOk);
    f.bold = settingToBool(parts[2], &boldOk);
    f.italic = settingToBool(parts[3], &italicOk);
    if (!sizeOk || !boldOk || !italicOk)
        throw RuntimeError("Type mismatch: the saved font is not name,size,bold,italic");
    return f;
}

} // namespace

QList<double> sizeWave(double first, double largest) {
    if (!(largest > first))
        return {largest};
    QList<double> wave;
    double size = first;
    for (; size <= largest; size += 1)
        wave << size;
    for (size -= 2; size > first; size -= 1)
        wave << size;
    return wave;
}

void mnuFloatFont_Click(CommandContext& ctx) {
    const QString title = QStringLiteral("Float Font");
    const QString key = QStringLiteral("Max Size Font float");
    const auto answer =
        askRemembered(ctx, QStringLiteral("Largest font size?"), title, key, QStringLiteral("40"));
    if (!answer)
        return;
    const auto largest = wholeNumber(*answer, 1, 1638);
    if (!largest) {
        ctx.dialogs.messageBox(
            QStringLiteral("The largest size must be a whole number from 1 to 1638."), title,
            Buttons::Ok, Icon::Exclamation);
        return;
    }
    rememberAnswer(ctx, key, *answer);
    if (!ctx.view)
        return;
    const bool selection = ctx.edit.selLength() > 0;
    const int start = selection ? ctx.edit.selStart() : 0;
    const int length = selection ? ctx.edit.selLength() : ctx.edit.textLength();
    ctx.view->setSizeCycle(start, length,
                           sizeWave(ctx.view->documentFont().size, double(*largest)));
}

void mnuRemoveFormatting_Click(CommandContext& ctx) {
    const FontSpec font = savedFont(ctx);
    if (ctx.view)
        ctx.view->clearFormatting(font);
    ctx.edit.setSelStart(0);
}

} // namespace ed
