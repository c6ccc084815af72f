#pragma once
// The send-mail form: delivery addresses, subject, sender, server and its security, sign-in,
// an attachment, Send and Cancel, and what became of each address. Sending runs on a worker
// thread, so the window stays responsive; Cancel stops between and during messages.

#include "app/SettingsStore.h"
#include "mail/MailTransport.h"
#include "mail/SendJob.h"

#include <QDialog>

#include <atomic>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QThread;

namespace ed::mail {

class PasswordStore;

class SendMailForm : public QDialog {
    Q_OBJECT
public:
    SendMailForm(AppSettings settings, QString body, std::shared_ptr<MailTransport> transport,
                 QWidget* parent = nullptr);
    ~SendMailForm() override;

    bool sending() const { return worker_ != nullptr; }
    // The text every message carries.
    const QString& body() const { return body_; }
    // Starts a send as the Send button does; false (with the reason shown) when the form's
    // fields stop it before anything is sent.
    bool send();

signals:
    void sendFinished();

protected:
    void reject() override;

private:
    void buildLayout();
    void loadSettings();
    void saveSettings();
    void loadAddressFile();
    void browseAttachment();
    void showResult(int index, const AddressResult& result);
    void finishSend();
    void cancelSend();
    void setFieldsEnabled(bool enabled);
    void askKeychain();
    bool buildRequest(SendRequest& request, QString& error);

    AppSettings settings_;
    QString body_;
    std::shared_ptr<MailTransport> transport_;
    PasswordStore* passwords_;
    std::atomic_bool cancel_{false};
    QThread* worker_ = nullptr;
    int failedCount_ = 0;
    int sentCount_ = 0;
    int total_ = 0;

    QPlainTextEdit* addresses_;
    QPushButton* load_;
    QLineEdit* subject_;
    QLineEdit* from_;
    QLineEdit* server_;
    QComboBox* security_;
    QLineEdit* user_;
    QLineEdit* password_;
    QLineEdit* attachment_;
    QPushButton* browse_;
    QCheckBox* includeAttachment_;
    QPushButton* sendButton_;
    QPushButton* cancelButton_;
    QProgressBar* progress_;
    QLabel* status_;
    QListWidget* results_;
};

} // namespace ed::mail
