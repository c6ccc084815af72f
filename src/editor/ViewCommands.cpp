#include "editor/ViewCommands.h"

#include "app/Trap.h"

namespace ed {

namespace {
const QString kSection = QStringLiteral("frmEdit");

double toSize(const QString& s) {
    bool ok = false;
    const double v = s.trimmed().toDouble(&ok);
    if (!ok)
        throw RuntimeError("Type mismatch");
    return v;
}

bool toBool(const QString& s) {
    bool ok = false;
    const bool b = settingToBool(s, &ok);
    if (!ok)
        throw RuntimeError("Type mismatch");
    return b;
}

QString sizeText(double size) { return QString::number(size, 'g', 6); }
} // namespace

void ApplyFont(CommandContext& ctx, const QString& name, double size, bool bold, bool italic) {
    FontSpec f;
    f.name = name.trimmed().isEmpty() ? QStringLiteral("Arial") : name.trimmed();
    f.size = size;
    f.bold = bold;
    f.italic = italic;
    if (ctx.view)
        ctx.view->setSelectionFont(f);
}

void SetFont(CommandContext& ctx) {
    trapped(ctx.log, "frmEdit", QStringLiteral("Sub SetFont"), [&] {
        const QStringList parts =
            ctx.settings.get(kSection, QStringLiteral("Font"), QStringLiteral("Arial,9,False,False"))
                .split(u',');
        if (parts.size() < 4)
            throw RuntimeError("Subscript out of range");
        ctx.edit.setSelStart(0);
        ctx.edit.setSelLength(ctx.edit.textLength());
        ApplyFont(ctx, parts[0], toSize(parts[1]), toBool(parts[2]), toBool(parts[3]));
        ctx.edit.setSelStart(0);
        ctx.edit.setSelLength(0);
    });
}

void mnuChangeFont_Click(CommandContext& ctx) {
    if (!ctx.fileDialogs || !ctx.view)
        throw RuntimeError("No font dialog");
    const FontSpec chosen = ctx.fileDialogs->showFont(ctx.view->selectionFont());
    if (ctx.edit.selLength() == 0) {
        ctx.edit.setSelStart(0);
        ctx.edit.setSelLength(ctx.edit.textLength());
        ApplyFont(ctx, chosen.name, chosen.size, chosen.bold, chosen.italic);
        const QString name = chosen.name.trimmed().isEmpty() ? QStringLiteral("Arial") : chosen.name;
        ctx.settings.save(kSection, QStringLiteral("Font"),
                          name + u',' + sizeText(chosen.size) + u',' + boolToSetting(chosen.bold) +
                              u',' + boolToSetting(chosen.italic));
        ctx.edit.setSelStart(0);
        ctx.edit.setSelLength(0);
    } else {
        ApplyFont(ctx, chosen.name, chosen.size, chosen.bold, chosen.italic);
    }
}

void mnuNoWrap_Click(CommandContext& ctx) {
    const QString item = QStringLiteral("mnuNoWrap");
    const bool wasChecked = ctx.menu.isChecked(item);
    if (ctx.view)
        ctx.view->setRightMargin(wasChecked ? 0 : 50000);
    ctx.menu.setChecked(item, !wasChecked);
    ctx.form.RightMargin = !wasChecked;
    ctx.settings.save(kSection, QStringLiteral("Right Margin"), boolToSetting(!wasChecked));
}

void mnuExit_Click(CommandContext& ctx) { ctx.window.close(); }

void mnuAbout_Click(CommandContext& ctx) { ctx.window.showAbout(); }

} // namespace ed
