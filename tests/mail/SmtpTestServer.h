#pragma once
// The local SMTP server of the mail tests (smtp_server.py on free loopback ports) and the
// messages it received, as the server's own MIME parser read them.

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <vector>

namespace ed::test {

struct ReceivedAttachment {
    QString fileName, type;
    QByteArray bytes;
};

struct ReceivedMessage {
    QStringList rcpt;
    QString to, subject, date, messageId;
    QByteArray body;
    std::vector<ReceivedAttachment> attachments;
};

class SmtpTestServer {
public:
    SmtpTestServer();
    ~SmtpTestServer();
    bool started() const { return plainPort > 0; }

    int plainPort = 0;  // no AUTH, rejects reject@example.com
    int authPort = 0;   // wants user "user", password "secret"
    int hangPort = 0;   // accepts and never answers
    int closedPort = 0; // nobody listens

    std::vector<ReceivedMessage> messages() const;
    // The EHLO, AUTH and STARTTLS lines clients sent ("EHLO host", "AUTH PLAIN user").
    QStringList log() const;

private:
    QTemporaryDir dir_;
    QProcess process_;
};

} // namespace ed::test
