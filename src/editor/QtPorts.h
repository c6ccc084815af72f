#pragma once
// The window's adapters for the prompt, message box, clipboard and menu-state ports.

#include "app/Ports.h"

#include <QHash>

class QAction;
class QWidget;

namespace ed {

class QtDialogs : public Dialogs {
public:
    explicit QtDialogs(QWidget* parent) : parent_(parent) {}
    QString inputBox(const QString& prompt, const QString& title,
                     const QString& defaultAnswer) override;
    Answer messageBox(const QString& text, const QString& title, Buttons buttons,
                      Icon icon) override;
    Answer ask(const QString& text, const QString& title, Buttons buttons, Icon icon,
               Answer defaultButton) override;

private:
    QWidget* parent_;
};

class QtClipboard : public Clipboard {
public:
    QString text() const override;
    void clear() override;
    void setText(const QString& text) override;
};

class ActionMenuState : public MenuState {
public:
    void add(const QString& name, QAction* action) { actions_.insert(name, action); }
    QAction* action(const QString& name) const { return actions_.value(name, nullptr); }
    bool isEnabled(const QString& item) const override;
    void setEnabled(const QString& item, bool enabled) override;
    bool isChecked(const QString& item) const override;
    void setChecked(const QString& item, bool checked) override;

private:
    QHash<QString, QAction*> actions_;
};

} // namespace ed
