// The send-mail form's layout, its remembered fields and its worker thread.

#include "mail/SendMailForm.h"

#include "mail/PasswordStore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <QVBoxLayout>

namespace ed::mail {

namespace {

const QString kSection = QStringLiteral("frmSendMail");

QPushButton* namedButton(const QString& text, const QString& name, QWidget* parent) {
    auto* b = new QPushButton(text, parent);
    b->setObjectName(name);
    return b;
}

template <typename W> W* named(W* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

} // namespace

SendMailForm::SendMailForm(AppSettings settings, QString body,
                           std::shared_ptr<MailTransport> transport, QWidget* parent)
    : QDialog(parent), settings_(std::move(settings)), body_(std::move(body)),
      transport_(std::move(transport)), passwords_(new PasswordStore(this)) {
    setObjectName(QStringLiteral("frmSendMail"));
    setWindowTitle(QStringLiteral("Send Email"));
    buildLayout();
    loadSettings();
    askKeychain();
}

SendMailForm::~SendMailForm() {
    if (worker_) {
        cancel_ = true;
        worker_->wait();
        delete worker_;
    }
}

void SendMailForm::buildLayout() {
    addresses_ = named(new QPlainTextEdit(this), QStringLiteral("txtDelivery"));
    addresses_->setPlaceholderText(QStringLiteral("One address per line"));
    load_ = namedButton(QStringLiteral("Load..."), QStringLiteral("cmdLoad"), this);
    subject_ = named(new QLineEdit(this), QStringLiteral("txtSubject"));
    from_ = named(new QLineEdit(this), QStringLiteral("txtFrom"));
    server_ = named(new QLineEdit(this), QStringLiteral("txtServer"));
    security_ = named(new QComboBox(this), QStringLiteral("cboSecurity"));
    security_->addItems(
        {QStringLiteral("STARTTLS"), QStringLiteral("TLS"), QStringLiteral("None")});
    user_ = named(new QLineEdit(this), QStringLiteral("txtUserName"));
    password_ = named(new QLineEdit(this), QStringLiteral("txtPassword"));
    password_->setEchoMode(QLineEdit::Password);
    attachment_ = named(new QLineEdit(this), QStringLiteral("txtAttachment"));
    browse_ = namedButton(QStringLiteral("Browse..."), QStringLiteral("cmdBrowse"), this);
    includeAttachment_ = named(new QCheckBox(QStringLiteral("Include attachment"), this),
                               QStringLiteral("chkIncludeAttachment"));
    sendButton_ = namedButton(QStringLiteral("Send"), QStringLiteral("cmdSend"), this);
    cancelButton_ = namedButton(QStringLiteral("Cancel"), QStringLiteral("cmdCancel"), this);
    progress_ = named(new QProgressBar(this), QStringLiteral("prgSend"));
    progress_->setVisible(false);
    status_ = named(new QLabel(this), QStringLiteral("lblStatus"));
    status_->setWordWrap(true);
    results_ = named(new QListWidget(this), QStringLiteral("lstResults"));

    auto* addressRow = new QHBoxLayout;
    addressRow->addWidget(addresses_);
    addressRow->addWidget(load_, 0, Qt::AlignTop);
    auto* attachmentRow = new QHBoxLayout;
    attachmentRow->addWidget(attachment_);
    attachmentRow->addWidget(browse_);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("To:"), addressRow);
    form->addRow(QStringLiteral("Subject:"), subject_);
    form->addRow(QStringLiteral("From:"), from_);
    form->addRow(QStringLiteral("Server:"), server_);
    form->addRow(QStringLiteral("Security:"), security_);
    form->addRow(QStringLiteral("User name:"), user_);
    form->addRow(QStringLiteral("Password:"), password_);
    form->addRow(QStringLiteral("Attachment:"), attachmentRow);
    form->addRow(QString(), includeAttachment_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(sendButton_);
    buttons->addWidget(cancelButton_);
    auto* top = new QVBoxLayout(this);
    top->addLayout(form);
    top->addLayout(buttons);
    top->addWidget(progress_);
    top->addWidget(status_);
    top->addWidget(results_);

    sendButton_->setDefault(true);
    connect(sendButton_, &QPushButton::clicked, this, [this] { send(); });
    connect(cancelButton_, &QPushButton::clicked, this, &SendMailForm::reject);
    connect(load_, &QPushButton::clicked, this, &SendMailForm::loadAddressFile);
    connect(browse_, &QPushButton::clicked, this, &SendMailForm::browseAttachment);
    connect(user_, &QLineEdit::editingFinished, this, &SendMailForm::askKeychain);
    connect(server_, &QLineEdit::editingFinished, this, &SendMailForm::askKeychain);
}

void SendMailForm::loadSettings() {
    addresses_->setPlainText(
        settings_.get(kSection, QStringLiteral("SMAddresses")).split(u',').join(u'\n'));
    subject_->setText(settings_.get(kSection, QStringLiteral("SMSubject")));
    from_->setText(settings_.get(kSection, QStringLiteral("SMFrom")));
    server_->setText(
        settings_.get(kSection, QStringLiteral("SMServer"), QStringLiteral("localhost:587")));
    const int security = security_->findText(
        settings_.get(kSection, QStringLiteral("SMSecurity"), QStringLiteral("STARTTLS")));
    security_->setCurrentIndex(security < 0 ? 0 : security);
    user_->setText(settings_.get(kSection, QStringLiteral("SMUserName")));
    attachment_->setText(settings_.get(kSection, QStringLiteral("SMAttachment")));
    includeAttachment_->setChecked(settings_.get(kSection, QStringLiteral("SMIncludeAttachment"),
                                                 QStringLiteral("0")) == u"1");
}

void SendMailForm::saveSettings() {
    settings_.save(kSection, QStringLiteral("SMAddresses"),
                   splitAddresses(addresses_->toPlainText()).join(u','));
    settings_.save(kSection, QStringLiteral("SMSubject"), subject_->text());
    settings_.save(kSection, QStringLiteral("SMFrom"), from_->text());
    settings_.save(kSection, QStringLiteral("SMServer"), server_->text());
    settings_.save(kSection, QStringLiteral("SMSecurity"), security_->currentText());
    settings_.save(kSection, QStringLiteral("SMUserName"), user_->text());
    settings_.save(kSection, QStringLiteral("SMAttachment"), attachment_->text());
    settings_.save(kSection, QStringLiteral("SMIncludeAttachment"),
                   includeAttachment_->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
}

void SendMailForm::askKeychain() {
    if (!password_->text().isEmpty())
        return;
    passwords_->read(user_->text(), server_->text(), [this](const QString& password) {
        if (password_->text().isEmpty())
            password_->setText(password);
    });
}

void SendMailForm::loadAddressFile() {
    const QString dir = settings_.get(kSection, QStringLiteral("SMPreviousDir"));
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Load addresses"), dir,
                                     QStringLiteral("Text files (*.txt);;All files (*)"));
    if (path.isEmpty())
        return;
    settings_.save(kSection, QStringLiteral("SMPreviousDir"), QFileInfo(path).absolutePath());
    QStringList addresses;
    QString error;
    if (!readAddressFile(path, addresses, error)) {
        status_->setText(error);
        return;
    }
    addresses_->setPlainText(addresses.join(u'\n'));
}

void SendMailForm::browseAttachment() {
    const QString path = QFileDialog::getOpenFileName(
        this, QStringLiteral("Attachment"), QFileInfo(attachment_->text()).absolutePath());
    if (path.isEmpty())
        return;
    attachment_->setText(path);
    includeAttachment_->setChecked(true);
}

bool SendMailForm::buildRequest(SendRequest& r, QString& error) {
    r.addresses = splitAddresses(addresses_->toPlainText());
    r.subject = subject_->text();
    r.from = from_->text().trimmed();
    r.body = body_;
    if (!parseServer(server_->text(), 587, r.server.host, r.server.port, error))
        return false;
    const int security = security_->currentIndex();
    r.server.security = security == 1   ? Security::Tls
                        : security == 2 ? Security::None
                                        : Security::StartTls;
    r.server.user = user_->text().trimmed();
    r.server.password = password_->text();
    if (!r.server.user.isEmpty() && r.server.password.isEmpty()) {
        error = QStringLiteral("Enter the password of %1.").arg(r.server.user);
        return false;
    }
    if (includeAttachment_->isChecked()) {
        if (!loadAttachment(attachment_->text(), r.attachment, error))
            return false;
        r.hasAttachment = true;
    }
    error = checkRequest(r);
    return error.isEmpty();
}

bool SendMailForm::send() {
    if (worker_)
        return false;
    saveSettings();
    SendRequest request;
    QString error;
    if (!buildRequest(request, error)) {
        status_->setText(error);
        return false;
    }
    passwords_->write(request.server.user, server_->text(), request.server.password);
    results_->clear();
    cancel_ = false;
    failedCount_ = sentCount_ = 0;
    total_ = int(request.addresses.size());
    progress_->setRange(0, total_);
    progress_->setValue(0);
    progress_->setVisible(true);
    status_->setText(QStringLiteral("Sending..."));
    setFieldsEnabled(false);
    worker_ = QThread::create([this, request = std::move(request), transport = transport_] {
        runSend(request, *transport, cancel_, [this](int index, const AddressResult& result) {
            QMetaObject::invokeMethod(
                this, [this, index, result] { showResult(index, result); }, Qt::QueuedConnection);
        });
    });
    connect(worker_, &QThread::finished, this, &SendMailForm::finishSend, Qt::QueuedConnection);
    worker_->start();
    return true;
}

void SendMailForm::showResult(int index, const AddressResult& r) {
    QString line = r.address + QStringLiteral(": ") + statusWord(r.status);
    if (!r.reason.isEmpty() && r.status != AddressStatus::Cancelled)
        line += QStringLiteral(" (") + r.reason + u')';
    auto* item = new QListWidgetItem(line, results_);
    item->setData(Qt::UserRole, statusWord(r.status));
    if (r.status == AddressStatus::Sent)
        ++sentCount_;
    if (r.status == AddressStatus::Failed)
        ++failedCount_;
    progress_->setValue(index + 1);
}

void SendMailForm::finishSend() {
    if (!worker_)
        return;
    worker_->wait();
    delete worker_;
    worker_ = nullptr;
    progress_->setVisible(false);
    setFieldsEnabled(true);
    status_->setText(QStringLiteral("%1 of %2 sent, %3 failed%4.")
                         .arg(sentCount_)
                         .arg(total_)
                         .arg(failedCount_)
                         .arg(cancel_ ? QStringLiteral(", cancelled") : QString()));
    emit sendFinished();
}

void SendMailForm::cancelSend() {
    cancel_ = true;
    status_->setText(QStringLiteral("Cancelling..."));
}

void SendMailForm::reject() {
    if (worker_) {
        cancelSend();
        return;
    }
    QDialog::reject();
}

void SendMailForm::setFieldsEnabled(bool enabled) {
    for (QWidget* w : std::initializer_list<QWidget*>{addresses_, load_, subject_, from_, server_,
                                                      security_, user_, password_, attachment_,
                                                      browse_, includeAttachment_, sendButton_})
        w->setEnabled(enabled);
}

} // namespace ed::mail
