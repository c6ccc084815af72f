#include "editor/LinkMenu.h"

#include "app/Trap.h"
#include "editor/DocumentCommands.h"

#include <QFileInfo>

namespace ed {

namespace {

const QString kSection = QStringLiteral("frmEdit");

QString key(int i) {
    return QStringLiteral("Link Menu Item ") + QString::number(i + 1);
}

void store(CommandContext& ctx, const QStringList& names) {
    for (int i = 0; i < kLinkCount; ++i) {
        const QString v = i < names.size() ? names[i] : QString();
        if (ctx.form.LinkItems[size_t(i)] != v || v.isEmpty()) {
            ctx.form.LinkItems[size_t(i)] = v;
            ctx.settings.save(kSection, key(i), v);
        }
    }
    ctx.window.refreshLinks();
}

QStringList current(const CommandContext& ctx) {
    QStringList names;
    for (const QString& n : ctx.form.LinkItems)
        if (!n.isEmpty())
            names << n;
    return names;
}

} // namespace

void GetLnksFromRegistry(CommandContext& ctx) {
    trapped(ctx.log, "frmEdit", QStringLiteral("Sub GetLnksFromRegistry"), [&] {
        QStringList names;
        for (int i = 0; i < kLinkCount; ++i) {
            const QString v = ctx.settings.get(kSection, key(i), QString());
            if (!v.isEmpty() && !names.contains(v))
                names << v;
        }
        for (int i = 0; i < kLinkCount; ++i)
            ctx.form.LinkItems[size_t(i)] = i < names.size() ? names[i] : QString();
        ctx.window.refreshLinks();
    });
}

void PutLinkOnMenu(CommandContext& ctx, const QString& fileName) {
    trapped(ctx.log, "frmEdit", QStringLiteral("Sub PutLinkOnMenu"), [&] {
        if (fileName.trimmed().isEmpty())
            return;
        // The list is used from any folder, so it holds full paths only.
        const QString full = QFileInfo(fileName).absoluteFilePath();
        QStringList names = current(ctx);
        names.removeAll(full);
        names.prepend(full);
        while (names.size() > kLinkCount)
            names.removeLast();
        store(ctx, names);
    });
}

void RemoveLinkFromMenu(CommandContext& ctx, const QString& fileName) {
    QStringList names = current(ctx);
    names.removeAll(fileName);
    store(ctx, names);
}

void mnuLnk_Click(CommandContext& ctx, int index) {
    trapped(ctx.log, "frmEdit", QStringLiteral("mnuLnk_Click"), [&] {
        if (index < 0 || index >= kLinkCount)
            return;
        const QString name = ctx.form.LinkItems[size_t(index)];
        if (name.isEmpty())
            return;
        if (!QFileInfo(name).isFile()) {
            ctx.dialogs.messageBox(QStringLiteral("The file\r\n%1\r\nno longer exists and was "
                                                  "taken off the list.")
                                       .arg(name),
                                   QStringLiteral("File not found"), Buttons::Ok,
                                   Icon::Exclamation);
            RemoveLinkFromMenu(ctx, name);
            return;
        }
        if (confirmDiscard(ctx))
            openInPlace(ctx, name);
    });
}

} // namespace ed
