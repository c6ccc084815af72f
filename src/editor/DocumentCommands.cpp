#include "editor/DocumentCommands.h"

#include "app/Trap.h"
#include "editor/DocumentIO.h"
#include "editor/LinkMenu.h"
#include "editor/ViewCommands.h"
#include "util/Utility.h"

#include <QFile>
#include <QFileInfo>

namespace ed {

namespace {

const QString kSection = QStringLiteral("frmEdit");

DocumentFiles& files(CommandContext& ctx) {
    if (!ctx.files)
        throw RuntimeError("No document store");
    return *ctx.files;
}

QString folderOf(CommandContext& ctx, const QString& path) {
    return ctx.util.InStrRevGetBeginning(path, QStringLiteral("/"));
}

void tellSaveFailed(CommandContext& ctx, const QString& path, const QString& error) {
    ctx.dialogs.messageBox(
        QStringLiteral("The document was not saved to\r\n%1\r\n\r\n%2\r\n\r\nThe file on disk "
                       "was left as it was.")
            .arg(path, error),
        QStringLiteral("Save failed"), Buttons::Ok, Icon::Critical);
}

// The questions before a save may overwrite something the document did not come from. False
// when the save should not go ahead.
bool mayReplace(CommandContext& ctx, const QString& path, bool rtf) {
    DocumentFiles& store = files(ctx);
    if (store.origin() == path) {
        if (store.originChanged() &&
            ctx.dialogs.ask(
                QStringLiteral("%1 was changed by another program. Replace it?").arg(path),
                defaultTitle(), Buttons::YesNo, Icon::Exclamation, Answer::No) != Answer::Yes)
            return false;
    } else if (QFileInfo::exists(path) &&
               ctx.dialogs.ask(QStringLiteral("Replace %1 with this document?").arg(path),
                               defaultTitle(), Buttons::YesNo, Icon::Exclamation,
                               Answer::No) != Answer::Yes) {
        return false;
    }
    if (!rtf && !store.encodingFits()) {
        if (ctx.dialogs.ask(QStringLiteral("%1 holds characters that its encoding cannot store. "
                                           "Save it as UTF-8?")
                                .arg(path),
                            defaultTitle(), Buttons::YesCancel, Icon::Question,
                            Answer::Yes) != Answer::Yes)
            return false;
        store.useUtf8();
    }
    return true;
}

// Saves to `path`; false (after saying why) when nothing was written.
bool saveTo(CommandContext& ctx, const QString& path, bool rtf) {
    if (!mayReplace(ctx, path, rtf)) {
        ctx.window.showStatus(QStringLiteral("Not saved: %1 was left as it was").arg(path));
        return false;
    }
    QString error;
    if (!files(ctx).save(path, rtf, error)) {
        tellSaveFailed(ctx, path, error);
        throw RuntimeError(error.toStdString());
    }
    ctx.window.setModified(false);
    ctx.window.dropRecovery();
    return true;
}

} // namespace

bool confirmDiscard(CommandContext& ctx) {
    if (!ctx.window.isModified())
        return true;
    const QString path = ctx.window.caption().trimmed();
    switch (ctx.dialogs.ask(QStringLiteral("Save changes to %1?").arg(path), defaultTitle(),
                            Buttons::YesNoCancel, Icon::Question, Answer::Yes)) {
    case Answer::Yes: {
        bool saved = false;
        trapped(ctx.log, "frmEdit", QStringLiteral("Sub SaveBeforeClosing"),
                [&] { saved = saveTo(ctx, path, documentExtension(path) == u"rtf"); });
        return saved;
    }
    case Answer::No:
        ctx.window.setModified(false);
        ctx.window.dropRecovery();
        return true;
    default:
        return false;
    }
}

QString documentFilter() {
    return QStringLiteral(
        "All files *.*|*.*|Text files *.txt|*.txt|RTF text *.rtf|*.rtf|Html files "
        "*.htm|*.htm|Ini files *.ini|*.ini|Batch files *.bat|*.bat");
}

QString GetNewFile(CommandContext& ctx) {
    QString dir = ctx.form.LastDir;
    if (!dir.isEmpty() && !dir.endsWith(u'/'))
        dir += u'/';
    ctx.form.NewFileName = ctx.util.GetFreeFile(dir + QStringLiteral("Text-0.Txt"));
    return ctx.form.NewFileName;
}

void adoptFileName(CommandContext& ctx, const QString& path, bool setCaption) {
    ctx.form.FileName = path;
    if (setCaption)
        ctx.window.setCaption(path);
    ctx.form.LastDir = folderOf(ctx, path);
    ctx.settings.save(kSection, QStringLiteral("Last Dir"), ctx.form.LastDir);
}

bool LoadNewFile(CommandContext& ctx, const QString& path) {
    bool cancelled = false;
    trapped(ctx.log, "frmEdit", QStringLiteral("Sub LoadNewFile"), [&] {
        if (path.isEmpty())
            return;
        const QString ext =
            ctx.util.InStrRevGetEnding(path.trimmed(), QStringLiteral(".")).toLower();
        QString error;
        const bool rtf = ext == u"rtf";
        const auto result = files(ctx).load(path, rtf, error);
        if (result == DocumentFiles::LoadResult::Cancelled) {
            cancelled = true;
            ctx.window.showStatus(QStringLiteral("Opening %1 was cancelled").arg(path));
            return;
        }
        if (result == DocumentFiles::LoadResult::Failed) {
            ctx.window.showStatus(QStringLiteral("Could not open %1: %2").arg(path, error));
            throw RuntimeError(error.toStdString());
        }
        if (!rtf)
            SetFont(ctx);
        ctx.window.setCaption(path);
    });
    // Loaded or emptied by a failed load, the document holds nothing unsaved; a failed load
    // has no origin, so a later Save asks before replacing the file it names.
    if (!cancelled) {
        ctx.window.setModified(false);
        ctx.window.dropRecovery();
    }
    return !cancelled;
}

void openInPlace(CommandContext& ctx, const QString& path) {
    const QString name = ctx.form.FileName;
    const QString caption = ctx.window.caption();
    PutLinkOnMenu(ctx, path);
    adoptFileName(ctx, path, false);
    // The old text stays until the new one replaces it (a failed load empties the document).
    if (!LoadNewFile(ctx, path)) {
        ctx.form.FileName = name;
        ctx.window.setCaption(caption);
    }
}

namespace {
void startNewDocument(CommandContext& ctx) {
    ctx.edit.setText(QString());
    if (ctx.files)
        ctx.files->reset();
    ctx.form.FileName = GetNewFile(ctx);
    ctx.window.setCaption(ctx.form.FileName);
    ctx.window.setModified(false);
    ctx.window.dropRecovery();
}
} // namespace

void mnuNew_Click(CommandContext& ctx) {
    if (confirmDiscard(ctx))
        startNewDocument(ctx);
}

void mnuOpen_Click(CommandContext& ctx) {
    if (!ctx.fileDialogs)
        throw RuntimeError("No file dialog");
    if (!confirmDiscard(ctx)) {
        ctx.form.OpenSelectPending = false;
        return;
    }
    const QString quick = ctx.settings.get(kSection, QStringLiteral("FEQuickDir"), QString());
    FileDialogRequest req;
    req.filter = documentFilter();
    req.defaultExtension = QStringLiteral("txt");
    if (!quick.isEmpty() && ctx.form.OpenSelectPending) {
        req.initialDir = quick;
        ctx.form.OpenSelectPending = false;
    } else if (!ctx.form.KeepInitDirOnce) {
        req.initialDir = ctx.form.LastDir;
    } else {
        ctx.form.KeepInitDirOnce = false;
    }
    const FileDialogResult r = ctx.fileDialogs->showOpen(req);
    if (r.fileName.isEmpty())
        return;
    openInPlace(ctx, r.fileName);
}

void mnuOpenSelect_Click(CommandContext& ctx) {
    ctx.form.OpenSelectPending = true;
    mnuOpen_Click(ctx);
}

void mnuSave_Click(CommandContext& ctx) {
    const QString path = ctx.window.caption().trimmed();
    const QString ext = ctx.util.InStrRevGetEnding(path, QStringLiteral(".")).toLower();
    if (saveTo(ctx, path, ext == u"rtf"))
        ctx.window.showStatus(QStringLiteral("Saved %1").arg(path));
}

void mnuSaveAsRTF_Click(CommandContext& ctx) {
    const QString name =
        ctx.util.InStrRevGetBeginning(ctx.window.caption().trimmed(), QStringLiteral(".")) +
        QStringLiteral("rtf");
    ctx.window.setCaption(name);
    if (saveTo(ctx, name, true))
        PutLinkOnMenu(ctx, name);
}

void mnuSaveAs_Click(CommandContext& ctx) {
    if (!ctx.fileDialogs)
        throw RuntimeError("No file dialog");
    const FileSpecParts parts = ctx.util.GetFileSpecParts(ctx.form.FileName);
    static const QStringList kExtensions = {QString(),
                                            QStringLiteral("txt"),
                                            QStringLiteral("rtf"),
                                            QStringLiteral("htm"),
                                            QStringLiteral("ini"),
                                            QStringLiteral("bat")};
    FileDialogRequest req;
    req.filter = documentFilter();
    req.defaultExtension = QStringLiteral("txt");
    const qsizetype idx = kExtensions.indexOf(parts.extension.toLower());
    req.filterIndex = idx > 0 ? int(idx) + 1 : 0;
    req.initialDir = ctx.form.LastDir;
    req.fileName = parts.baseName;
    const FileDialogResult r = ctx.fileDialogs->showSave(req);
    QString name = r.fileName.trimmed();
    if (name.isEmpty())
        return;
    if (!QFileInfo(name).fileName().contains(u'.')) {
        // The extension of All files is the document's own: people.csv stays a .csv file.
        const QString ext = r.filterIndex <= 1 ? parts.extension
                            : r.filterIndex <= int(kExtensions.size())
                                ? kExtensions[r.filterIndex - 1]
                                : QString();
        if (!ext.isEmpty())
            name += u'.' + ext;
    }
    adoptFileName(ctx, name);
    // Save keeps its own trap: a failed save is logged as Save's and the name is still listed.
    trapped(ctx.log, "frmEdit", QStringLiteral("mnuSave_Click"), [&] { mnuSave_Click(ctx); });
    PutLinkOnMenu(ctx, name);
}

void mnuDelete_Click(CommandContext& ctx) {
    // Enter answers No: deleting takes a deliberate Yes.
    const Answer a =
        ctx.dialogs.ask(QStringLiteral("Are you sure you want to delete\r\n\r\n") +
                            ctx.form.FileName + QStringLiteral(" ?"),
                        QStringLiteral("Delete File?"), Buttons::YesNo, Icon::Critical, Answer::No);
    if (a != Answer::Yes)
        return;
    QFile f(ctx.form.FileName);
    if (!f.exists())
        throw RuntimeError(
            QStringLiteral("File not found: %1").arg(ctx.form.FileName).toStdString());
    if (!f.remove())
        throw RuntimeError(QStringLiteral("Cannot delete %1: %2")
                               .arg(ctx.form.FileName, f.errorString())
                               .toStdString());
    startNewDocument(ctx);
}

void mnuInsertTextFromFile_Click(CommandContext& ctx) {
    if (!ctx.fileDialogs)
        throw RuntimeError("No file dialog");
    FileDialogRequest req;
    req.filter = documentFilter();
    req.initialDir = ctx.form.LastDir;
    const FileDialogResult r = ctx.fileDialogs->showOpen(req);
    if (r.fileName.isEmpty())
        return;
    const QString text = ctx.util.LoadTextFile(r.fileName);
    // The file's text replaces the selection; the caret ends after it.
    const QString d = ctx.edit.text();
    const int s = ctx.edit.selStart();
    const int l = ctx.edit.selLength();
    ctx.edit.setText(d.left(s) + text + d.mid(s + l));
    ctx.edit.setSelStart(s + int(text.size()));
}

void mnuSetDefaultDir_Click(CommandContext& ctx) {
    if (!ctx.fileDialogs)
        throw RuntimeError("No file dialog");
    const QString current = ctx.settings.get(kSection, QStringLiteral("FEQuickDir"), QString());
    QString dir = ctx.fileDialogs->showFolder(QStringLiteral("Quick folder for Open (Select Dir)"),
                                              current.isEmpty() ? ctx.form.LastDir : current);
    if (dir.isEmpty())
        return;
    if (!dir.endsWith(u'/'))
        dir += u'/';
    ctx.settings.save(kSection, QStringLiteral("FEQuickDir"), dir);
    ctx.window.showStatus(QStringLiteral("Open (Select Dir) now starts in %1").arg(dir));
}

void mnuWebsites_Click(CommandContext& ctx) {
    // Only the document's own file goes to the desktop; without one there is nothing to open.
    if (ctx.form.FileName.isEmpty() || !QFileInfo(ctx.form.FileName).isFile() ||
        !ctx.launcher.open(ctx.form.FileName))
        throw RuntimeError("Cannot start the text editor");
}

} // namespace ed
