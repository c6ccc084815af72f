#pragma once
// The window's file/font dialogs and its geometry, as ports.

#include "app/Command.h"

class QWidget;

namespace ed {

class QtFileDialogs : public FileDialogs {
public:
    explicit QtFileDialogs(QWidget* parent) : parent_(parent) {}
    FileDialogResult showOpen(const FileDialogRequest& request) override;
    FileDialogResult showSave(const FileDialogRequest& request) override;
    FontSpec showFont(const FontSpec& current) override;
    QString showFolder(const QString& title, const QString& initialDir) override;

private:
    QWidget* parent_;
};

// "All files *.*|*.*|Text files *.txt|*.txt" -> {"All files (*)", "Text files (*.txt)"}.
QStringList toQtFilters(const QString& filter);

class WidgetGeometry : public FormGeometry {
public:
    explicit WidgetGeometry(QWidget* window) : window_(window) {}
    QString formName() const override;
    int width() const override;
    int height() const override;
    int left() const override;
    int top() const override;
    int screenWidth() const override;
    int screenHeight() const override;
    bool isMinimized() const override;
    void setGeometry(int left, int top, int width, int height) override;
    void maximize() override;
    void setTopmost(bool topmost, int x, int y, int cx, int cy) override;

private:
    QWidget* window_;
};

} // namespace ed
