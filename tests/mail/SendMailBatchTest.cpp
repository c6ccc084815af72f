// Editor --apply SendAsEmail against a local SMTP server: what arrives, what is reported, and
// the exit status.

#include "SmtpTestServer.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

namespace ed::test {
namespace {

class SendMailBatch : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
        ASSERT_TRUE(server.started()) << "smtp_server.py did not start (python3-aiosmtpd?)";
    }
    QStringList mailArgs(int port, const QStringList& fields) const {
        QStringList args{"--apply",
                         "SendAsEmail",
                         "--report",
                         "--field",
                         "from=me@example.com",
                         "--field",
                         QStringLiteral("server=127.0.0.1:%1").arg(port)};
        for (const QString& f : fields)
            args << "--field" << f;
        return args;
    }
    SmtpTestServer server;
};

TEST_F(SendMailBatch, DeliversOneMessagePerValidAddress) {
    const QString dir = makeTempDir();
    writeFile(dir + "/list.txt", "a@example.com\r\nreject@example.com\r\nnot an address\r\n"
                                 "\r\nb@example.com\r\n");
    QByteArray attachment("%PDF-1.4\n");
    for (int i = 0; i < 256; ++i)
        attachment += char(i);
    writeFile(dir + "/report.pdf", attachment);
    const QString subject = QString::fromUtf8("Grüße aus Köln — ") + QString(40, u'é') + "!";
    const QByteArray body =
        "Hällo\r\n.a dot starts this line\r\n" + QByteArray(200, 'x') + " \t\r\nend = 1";

    const EditorRun run = runEditorBatch(
        mailArgs(server.plainPort, {"to=" + dir + "/list.txt", "subject=" + subject,
                                    "security=none", "attachment=" + dir + "/report.pdf"}),
        body);

    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.report, QStringList({"sent: a@example.com",
                                       "failed: reject@example.com: 550 5.1.1 no such mailbox here",
                                       "skipped: not an address", "sent: b@example.com"}));
    const auto messages = server.messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].rcpt, QStringList{"a@example.com"});
    EXPECT_EQ(messages[1].rcpt, QStringList{"b@example.com"});
    EXPECT_NE(messages[0].messageId, messages[1].messageId);
    for (const ReceivedMessage& m : messages) {
        EXPECT_EQ(m.to, m.rcpt.value(0));
        EXPECT_EQ(m.subject, subject);
        EXPECT_EQ(m.body, body);
        EXPECT_FALSE(m.date.isEmpty());
        ASSERT_EQ(m.attachments.size(), 1u);
        EXPECT_EQ(m.attachments[0].fileName, "report.pdf");
        EXPECT_EQ(m.attachments[0].type, "application/pdf");
        EXPECT_EQ(m.attachments[0].bytes, attachment);
    }
}

TEST_F(SendMailBatch, ServerTroubleIsReportedPerAddress) {
    struct Case {
        int port;
        QString fields; // separated by spaces
        const char* password;
        QString report; // the one report line starts with this; "sent" exits 0, else 1
    };
    const Case cases[] = {
        {server.authPort, "security=none user=user", "secret", "sent: a@example.com"},
        {server.authPort, "security=none user=user", "wrong",
         "failed: a@example.com: 535 5.7.8 Authentication credentials invalid"},
        {server.authPort, "security=starttls user=user", "secret",
         "failed: a@example.com: the server does not offer STARTTLS"},
        {server.closedPort, "security=none", "", "failed: a@example.com: "},
        {server.hangPort, "security=none timeout=1", "",
         "failed: a@example.com: the server stopped answering"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.report.toStdString());
        qputenv("EDITOR_SMTP_PASSWORD", c.password);
        const EditorRun run = runEditorBatch(
            mailArgs(c.port, QStringList{"to=a@example.com"} + c.fields.split(u' ')), "text");
        EXPECT_EQ(run.exitCode, c.report.startsWith("sent") ? 0 : 1);
        ASSERT_EQ(run.report.size(), 1) << run.report.join('\n').toStdString();
        EXPECT_TRUE(run.report[0].startsWith(c.report)) << run.report[0].toStdString();
    }
    qunsetenv("EDITOR_SMTP_PASSWORD");
    // Only the right password and the wrong one were offered: without STARTTLS nothing was.
    const QStringList auth = server.log().filter("AUTH");
    EXPECT_EQ(auth.size(), 2) << server.log().join('\n').toStdString();
    EXPECT_EQ(server.messages().size(), 1u);
}

TEST_F(SendMailBatch, BadInputStopsBeforeAnythingIsSent) {
    const QString dir = makeTempDir();
    writeFile(dir + "/empty.txt", "\r\n  \r\n");
    const struct {
        QStringList fields;
        const char* message;
    } cases[] = {
        {{"to=" + dir + "/empty.txt", "security=none"}, "There is no delivery address."},
        {{"to=a@example.com", "security=none", "attachment=" + dir + "/missing.pdf"},
         "does not exist"},
        {{"to=a@example.com", "security=smoke"}, "security must be starttls, tls or none"},
        {{"to=a@example.com", "colour=red"}, "--field wants NAME=VALUE"},
        {{"to=a@example.com", "user=user"}, "EDITOR_SMTP_PASSWORD"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fields.join(' ').toStdString());
        const EditorRun run = runEditorBatch(mailArgs(server.plainPort, c.fields), "text");
        EXPECT_EQ(run.exitCode, 2);
        ASSERT_EQ(run.report.size(), 1);
        EXPECT_TRUE(run.report[0].contains(c.message)) << run.report[0].toStdString();
    }
    EXPECT_TRUE(server.log().isEmpty());
}

} // namespace
} // namespace ed::test
