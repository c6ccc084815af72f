#include "editor/ProgressDialog.h"

#include <QProgressDialog>

namespace ed {

ProgressDialog::~ProgressDialog() {
    end();
}

QProgressDialog* ProgressDialog::dialog() const {
    return dialog_;
}

void ProgressDialog::begin(const QString& title, std::function<void()> cancel) {
    end();
    dialog_ = new QProgressDialog(parent_);
    dialog_->setWindowTitle(title);
    dialog_->setWindowModality(Qt::WindowModal);
    dialog_->setAutoClose(false);
    dialog_->setAutoReset(false);
    dialog_->setMinimumDuration(0);
    QObject::connect(dialog_, &QProgressDialog::canceled, dialog_,
                     [cancel = std::move(cancel)] { cancel(); });
    dialog_->show();
}

void ProgressDialog::update(const QString& text, int done, int total) {
    if (!dialog_)
        return;
    dialog_->setMaximum(total);
    dialog_->setValue(done);
    dialog_->setLabelText(text);
}

void ProgressDialog::end() {
    if (dialog_) {
        dialog_->disconnect();
        dialog_->hide();
        dialog_->deleteLater();
    }
    dialog_ = nullptr;
}

} // namespace ed
