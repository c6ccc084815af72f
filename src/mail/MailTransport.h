#pragma once
// The port every sender of mail goes through: hands one finished message for one recipient to
// an SMTP server. The form, the batch command and the tests all use it.

#include <QByteArray>
#include <QString>

#include <functional>

namespace ed::mail {

enum class Security { StartTls, Tls, None };

struct SmtpServer {
    QString host;
    int port = 587;
    Security security = Security::StartTls;
    QString user; // "" sends no AUTH
    QString password;
    int connectTimeoutSeconds = 30;
    // The longest a server may stay silent before the send gives up.
    int idleTimeoutSeconds = 60;
};

struct SendOutcome {
    bool sent = false;
    bool cancelled = false;
    QString reason; // the server's reply or what went wrong, when not sent
};

class MailTransport {
public:
    virtual ~MailTransport() = default;
    // Sends `message` from `from` to `to`. `cancelled` is polled while it runs; returning true
    // ends the send at once without delivering.
    virtual SendOutcome send(const SmtpServer& server, const QString& from, const QString& to,
                             const QByteArray& message, const std::function<bool()>& cancelled) = 0;
};

// "host:port" (IPv6 in brackets) into host and port; "host" alone keeps `defaultPort`.
bool parseServer(const QString& text, int defaultPort, QString& host, int& port, QString& error);

} // namespace ed::mail
