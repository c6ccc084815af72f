#include "editor/WindowAdapters.h"

#include <QApplication>
#include <QFileDialog>
#include <QFontDialog>
#include <QGuiApplication>
#include <QMainWindow>
#include <QPointer>
#include <QScreen>
#include <QWidget>

namespace ed {

namespace {
constexpr int kTwips = 15;

FileDialogResult runFileDialog(QWidget* parent, const FileDialogRequest& r, bool save) {
    QFileDialog dlg(parent, r.title);
    dlg.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dlg.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    // Save itself asks before it replaces a file the document did not come from, after the
    // extension of the chosen filter was added; a second question here would be about a name
    // that may not even be the one written.
    dlg.setOption(QFileDialog::DontConfirmOverwrite, save);
    const QStringList filters = toQtFilters(r.filter);
    dlg.setNameFilters(filters);
    if (r.filterIndex >= 1 && r.filterIndex <= filters.size())
        dlg.selectNameFilter(filters[r.filterIndex - 1]);
    if (!r.initialDir.isEmpty())
        dlg.setDirectory(r.initialDir);
    if (!r.fileName.isEmpty())
        dlg.selectFile(r.fileName);
    FileDialogResult result;
    if (dlg.exec() != QDialog::Accepted || dlg.selectedFiles().isEmpty())
        return result;
    result.fileName = dlg.selectedFiles().first();
    result.filterIndex = int(filters.indexOf(dlg.selectedNameFilter())) + 1;
    return result;
}
} // namespace

QStringList toQtFilters(const QString& filter) {
    const QStringList parts = filter.split(u'|');
    QStringList out;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString label = parts[i];
        const QString pattern = parts[i + 1];
        if (label.endsWith(pattern))
            label.chop(pattern.size());
        // "*.*" means every file, also those without a dot in their name (Makefile, README).
        QStringList globs = pattern.split(u';', Qt::SkipEmptyParts);
        for (QString& g : globs)
            if (g == u"*.*")
                g = QStringLiteral("*");
        out << label.trimmed() + QStringLiteral(" (") + globs.join(u' ') + u')';
    }
    return out;
}

FileDialogResult QtFileDialogs::showOpen(const FileDialogRequest& r) {
    return runFileDialog(parent_, r, false);
}

FileDialogResult QtFileDialogs::showSave(const FileDialogRequest& r) {
    return runFileDialog(parent_, r, true);
}

FontSpec QtFileDialogs::showFont(const FontSpec& current) {
    QFont f(current.name);
    if (current.size > 0)
        f.setPointSizeF(current.size);
    f.setBold(current.bold);
    f.setItalic(current.italic);
    bool ok = false;
    // A cancelled dialog gives back the font it started with.
    const QFont chosen = QFontDialog::getFont(&ok, f, parent_);
    FontSpec s;
    s.name = chosen.family();
    s.size = chosen.pointSizeF();
    s.bold = chosen.bold();
    s.italic = chosen.italic();
    return s;
}

QString QtFileDialogs::showFolder(const QString& title, const QString& initialDir) {
    return QFileDialog::getExistingDirectory(parent_, title, initialDir);
}

QString WidgetGeometry::formName() const { return window_->objectName(); }
int WidgetGeometry::width() const { return window_->width() * kTwips; }
int WidgetGeometry::height() const { return window_->height() * kTwips; }
int WidgetGeometry::left() const { return window_->x() * kTwips; }
int WidgetGeometry::top() const { return window_->y() * kTwips; }

int WidgetGeometry::screenWidth() const {
    const QScreen* s = window_->screen() ? window_->screen() : QGuiApplication::primaryScreen();
    return s ? s->availableGeometry().width() * kTwips : 1024 * kTwips;
}

int WidgetGeometry::screenHeight() const {
    const QScreen* s = window_->screen() ? window_->screen() : QGuiApplication::primaryScreen();
    return s ? s->availableGeometry().height() * kTwips : 768 * kTwips;
}

bool WidgetGeometry::isMinimized() const { return window_->isMinimized(); }

void WidgetGeometry::setGeometry(int left, int top, int width, int height) {
    window_->resize(width / kTwips, height / kTwips);
    window_->move(left / kTwips, top / kTwips);
}

void WidgetGeometry::maximize() { window_->showMaximized(); }

void WidgetGeometry::setTopmost(bool topmost, int x, int y, int cx, int cy) {
    const bool visible = window_->isVisible();
    const QPointer<QWidget> focus = window_->focusWidget();
    window_->setWindowFlag(Qt::WindowStaysOnTopHint, topmost);
    window_->resize(cx, cy);
    window_->move(x, y);
    // Changing the flags hides the window (on this platform it is made anew): show it again,
    // active, with the keyboard focus where it was, in the document unless it was elsewhere.
    if (visible) {
        window_->show();
        window_->activateWindow();
        // Where the platform's window kept the focus, no activation follows that would make the
        // widgets active again: do it here.
        if (QGuiApplication::focusWindow() &&
            QGuiApplication::focusWindow() == window_->windowHandle())
            QApplication::setActiveWindow(window_);
        QWidget* target = focus;
        if (!target) {
            if (auto* main = qobject_cast<QMainWindow*>(window_))
                target = main->centralWidget();
        }
        if (target)
            target->setFocus(Qt::ActiveWindowFocusReason);
    }
}

} // namespace ed
