#include "editor/Placement.h"

#include "app/Trap.h"

namespace ed {

namespace {
constexpr int kTwipsPerPixel = 15;
constexpr const char* kModule = "cUtility";

int readInt(AppSettings& s, const QString& section, const QString& key, int def) {
    bool ok = false;
    const int v = s.get(section, key, QString::number(def)).toInt(&ok);
    return ok ? v : def;
}
} // namespace

void Placement::SaveFF(FormGeometry& form) {
    trapped(log_, kModule, QStringLiteral("SaveFF"), [&] {
        const QString section = form.formName();
        settings_.save(section, QStringLiteral("NSWE_W"), QString::number(form.width()));
        settings_.save(section, QStringLiteral("NSWE_H"), QString::number(form.height()));
        settings_.save(section, QStringLiteral("NSWE_L"), QString::number(form.left()));
        settings_.save(section, QStringLiteral("NSWE_T"), QString::number(form.top()));
    });
}

void Placement::AlignFF(FormGeometry& form, int left, int top, int defaultWidth,
                        int defaultHeight, bool restoreWidth, bool restoreHeight) {
    trapped(log_, kModule, QStringLiteral("AlignFF"), [&] {
        const QString section = form.formName();
        const int cw = form.screenWidth();
        const int ch = form.screenHeight();
        int width = form.width();
        int height = form.height();
        if (restoreWidth)
            width = readInt(settings_, section, QStringLiteral("NSWE_W"), defaultWidth);
        if (restoreHeight)
            height = readInt(settings_, section, QStringLiteral("NSWE_H"), defaultHeight);
        // Centred by default, with the size the form is about to get.
        const int defLeft = left <= 0 ? cw / 2 - width / 2 : left;
        const int defTop = top <= 0 ? ch / 2 - height / 2 : top;
        int l = readInt(settings_, section, QStringLiteral("NSWE_L"), defLeft);
        int t = readInt(settings_, section, QStringLiteral("NSWE_T"), defTop);
        if (l >= cw)
            l = cw - width;
        if (t >= ch || t < 0)
            t = t < 0 ? 0 : ch - height;
        ArrangeFloatingForms(form, l, t, width, height);
    });
}

void Placement::ArrangeFloatingForms(FormGeometry& form, int left, int top, int width,
                                     int height) {
    trapped(log_, kModule, QStringLiteral("ArrangeFloatingForms"), [&] {
        const int cw = form.screenWidth();
        const int ch = form.screenHeight();
        if (width >= cw && height >= ch) {
            form.maximize();
            return;
        }
        // The whole window, and so its title bar, stays on the screen.
        width = qBound(1, width, cw);
        height = qBound(1, height, ch);
        left = qBound(0, left, cw - width);
        top = qBound(0, top, ch - height);
        form.setGeometry(left, top, width, height);
    });
}

void Placement::PutOnTop(FormGeometry& form) {
    trapped(log_, kModule, QStringLiteral("PutOnTop"), [&] {
        settings_.save(QStringLiteral("Window Position"), form.formName(), QStringLiteral("1"));
        form.setTopmost(true, form.left() / kTwipsPerPixel, form.top() / kTwipsPerPixel,
                        form.width() / kTwipsPerPixel, form.height() / kTwipsPerPixel);
    });
}

void Placement::TakeOffTop(FormGeometry& form) {
    trapped(log_, kModule, QStringLiteral("TakeOffTop"), [&] {
        settings_.save(QStringLiteral("Window Position"), form.formName(), QStringLiteral("0"));
        form.setTopmost(false, form.left() / kTwipsPerPixel, form.top() / kTwipsPerPixel,
                        form.width() / kTwipsPerPixel, form.height() / kTwipsPerPixel);
    });
}

bool Placement::WasIOnTop(FormGeometry& form) {
    return trappedValue(log_, kModule, QStringLiteral("WasIOnTop"), false, [&] {
        return settingToBool(
            settings_.get(QStringLiteral("Window Position"), form.formName(), QStringLiteral("0")));
    });
}

void mnuKeepOnTop_Click(CommandContext& ctx) {
    if (!ctx.geometry)
        throw RuntimeError("No window");
    Placement p(ctx.settings, ctx.log);
    if (ctx.menu.isChecked(QStringLiteral("mnuKeepOnTop"))) {
        ctx.menu.setChecked(QStringLiteral("mnuKeepOnTop"), false);
        p.TakeOffTop(*ctx.geometry);
    } else {
        ctx.menu.setChecked(QStringLiteral("mnuKeepOnTop"), true);
        p.PutOnTop(*ctx.geometry);
    }
}

} // namespace ed
