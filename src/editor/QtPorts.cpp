#include "editor/QtPorts.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QVBoxLayout>

namespace ed {

QString QtDialogs::inputBox(const QString& prompt, const QString& title,
                            const QString& defaultAnswer) {
    QDialog dlg(parent_);
    dlg.setWindowTitle(title.isEmpty() ? defaultTitle() : title);
    auto* layout = new QVBoxLayout(&dlg);
    auto* label =
        new QLabel(QString(prompt).replace(QStringLiteral("\r\n"), QStringLiteral("\n")), &dlg);
    label->setWordWrap(true);
    auto* edit = new QLineEdit(defaultAnswer, &dlg);
    edit->selectAll();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dlg);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dlg, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dlg, &QDialog::reject);
    layout->addWidget(label);
    layout->addWidget(edit);
    layout->addWidget(buttons);
    dlg.setMinimumWidth(360);
    if (dlg.exec() != QDialog::Accepted)
        return QString();
    return edit->text();
}

Answer QtDialogs::messageBox(const QString& text, const QString& title, Buttons buttons,
                             Icon icon) {
    return ask(text, title, buttons, icon, Answer::Ok);
}

Answer QtDialogs::ask(const QString& text, const QString& title, Buttons buttons, Icon icon,
                      Answer defaultButton) {
    QMessageBox box(parent_);
    box.setWindowTitle(title.isEmpty() ? defaultTitle() : title);
    box.setText(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    switch (icon) {
    case Icon::None:
        box.setIcon(QMessageBox::NoIcon);
        break;
    case Icon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case Icon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case Icon::Exclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case Icon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    }
    switch (buttons) {
    case Buttons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case Buttons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case Buttons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    case Buttons::YesCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::Cancel);
        break;
    case Buttons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    }
    switch (defaultButton) {
    case Answer::Yes:
        box.setDefaultButton(QMessageBox::Yes);
        break;
    case Answer::No:
        box.setDefaultButton(QMessageBox::No);
        break;
    case Answer::Cancel:
        box.setDefaultButton(QMessageBox::Cancel);
        break;
    case Answer::Ok:
        break; // the platform's choice
    }
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Ok:
        return Answer::Ok;
    default:
        return buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    }
}

QString QtClipboard::text() const {
    return QApplication::clipboard()->text();
}
void QtClipboard::clear() {
    QApplication::clipboard()->clear();
}
void QtClipboard::setText(const QString& text) {
    QApplication::clipboard()->setText(text);
}

bool ActionMenuState::isEnabled(const QString& item) const {
    const QAction* a = action(item);
    return a ? a->isEnabled() : false;
}
void ActionMenuState::setEnabled(const QString& item, bool enabled) {
    if (QAction* a = action(item))
        a->setEnabled(enabled);
}
bool ActionMenuState::isChecked(const QString& item) const {
    const QAction* a = action(item);
    return a ? a->isChecked() : false;
}
void ActionMenuState::setChecked(const QString& item, bool checked) {
    if (QAction* a = action(item))
        a->setChecked(checked);
}

} // namespace ed
