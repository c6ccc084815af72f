// The send-mail form, offscreen, sending to a local SMTP server.

#include "mail/SendMailForm.h"
#include "SmtpTestServer.h"
#include "mail/CurlTransport.h"
#include "support/Fakes.h"
#include "web/WaitLoop.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

#include <gtest/gtest.h>

namespace ed::test {
namespace {

class SendMailFormTest : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("EDITOR_NO_KEYCHAIN", "1");
        ASSERT_TRUE(server.started()) << "smtp_server.py did not start (python3-aiosmtpd?)";
        form = std::make_unique<mail::SendMailForm>(AppSettings(settings, "Editor"),
                                                    QString::fromUtf8("Grüße\r\nzwei\r\n"),
                                                    std::make_shared<mail::CurlTransport>());
        form->show();
    }
    template <typename W> W* field(const char* name) {
        W* w = form->findChild<W*>(name);
        EXPECT_NE(w, nullptr) << name;
        return w;
    }
    void fill(int port, const QString& addresses, const QString& security = "None") {
        field<QPlainTextEdit>("txtDelivery")->setPlainText(addresses);
        field<QLineEdit>("txtSubject")->setText("Hallo");
        field<QLineEdit>("txtFrom")->setText("me@example.com");
        field<QLineEdit>("txtServer")->setText(QStringLiteral("127.0.0.1:%1").arg(port));
        field<QComboBox>("cboSecurity")->setCurrentText(security);
    }
    // Clicks Send and waits for the send to end; the event loop keeps running meanwhile.
    bool sendAndWait() {
        field<QPushButton>("cmdSend")->click();
        return web::waitUntil([&] { return !form->sending(); }, 60000, 10);
    }
    QStringList results() {
        QStringList out;
        auto* list = field<QListWidget>("lstResults");
        for (int i = 0; i < list->count(); ++i)
            out << list->item(i)->data(Qt::UserRole).toString() + " " +
                       list->item(i)->text().section(':', 0, 0);
        return out;
    }
    QString setting(const char* key) {
        return settings.values.value(QStringLiteral("Editor|frmSendMail|%1").arg(key), "<none>");
    }

    SmtpTestServer server;
    MemorySettings settings;
    std::unique_ptr<mail::SendMailForm> form;
};

TEST_F(SendMailFormTest, SendsToEveryAddressAndRemembersTheFields) {
    fill(server.plainPort, "a@example.com\nb@example.com, c@example.com\nnonsense");
    field<QLineEdit>("txtUserName")->setText("");
    ASSERT_TRUE(sendAndWait());
    EXPECT_EQ(results(), QStringList({"sent a@example.com", "sent b@example.com",
                                      "sent c@example.com", "skipped nonsense"}));
    const auto messages = server.messages();
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[2].body, QString::fromUtf8("Grüße\r\nzwei\r\n").toUtf8());
    EXPECT_EQ(setting("SMSubject"), "Hallo");
    EXPECT_EQ(setting("SMServer"), QStringLiteral("127.0.0.1:%1").arg(server.plainPort));
    EXPECT_EQ(setting("SMPassword"), "<none>"); // a password is never stored
}

// Delivery addresses and the attachment are checked as the batch runner checks them.
TEST_F(SendMailFormTest, AUserWithoutPasswordSendsNothing) {
    fill(server.plainPort, "a@example.com");
    field<QLineEdit>("txtUserName")->setText("someone");
    field<QLineEdit>("txtPassword")->clear();
    EXPECT_FALSE(form->send());
    EXPECT_FALSE(form->sending());
    EXPECT_EQ(field<QLabel>("lblStatus")->text(), "Enter the password of someone.");
    EXPECT_TRUE(server.log().isEmpty());
}

TEST_F(SendMailFormTest, CancelEndsASendToASilentServer) {
    fill(server.hangPort, "a@example.com\nb@example.com");
    field<QPushButton>("cmdSend")->click();
    ASSERT_TRUE(form->sending());
    // The window keeps handling events while the worker waits on the server.
    web::waitUntil([] { return false; }, 300, 10);
    field<QPushButton>("cmdCancel")->click();
    ASSERT_TRUE(web::waitUntil([&] { return !form->sending(); }, 30000, 10));
    EXPECT_EQ(results(), QStringList({"cancelled a@example.com", "cancelled b@example.com"}));
    EXPECT_TRUE(form->isVisible()); // Cancel stopped the send, it did not close the form
}

TEST(SendEmailCommand, OpensTheFormOnTheSelectionElseTheWholeText) {
    qputenv("EDITOR_NO_KEYCHAIN", "1");
    for (const bool select : {false, true}) {
        Harness h("one\r\ntwo");
        if (select)
            h.select(5, 3);
        h.run("mnuSendAsEmail");
        mail::SendMailForm* form = nullptr;
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (w->objectName() == "frmSendMail" && w->isVisible())
                form = qobject_cast<mail::SendMailForm*>(w);
        }
        ASSERT_NE(form, nullptr);
        EXPECT_EQ(form->body(), select ? "two" : "one\r\ntwo");
        delete form;
    }
}

} // namespace
} // namespace ed::test
