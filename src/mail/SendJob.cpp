// Sends one message per delivery address and collects what became of each.

#include "mail/SendJob.h"

#include "util/TextCodec.h"
#include "web/WebText.h"

#include <QFile>

#include <QRegularExpression>

namespace ed::mail {

bool parseServer(const QString& text, int defaultPort, QString& host, int& port, QString& error) {
    const QString t = text.trimmed();
    port = defaultPort;
    QString portText;
    if (t.startsWith(u'[')) {
        const qsizetype close = t.indexOf(u']');
        if (close < 0) {
            error = QStringLiteral("The server \"%1\" is not host:port.").arg(text);
            return false;
        }
        host = t.mid(1, close - 1);
        if (close + 1 < t.size()) {
            if (t.at(close + 1) != u':') {
                error = QStringLiteral("The server \"%1\" is not host:port.").arg(text);
                return false;
            }
            portText = t.mid(close + 2);
        }
    } else if (t.count(u':') == 1) {
        host = t.section(u':', 0, 0);
        portText = t.section(u':', 1);
    } else {
        host = t;
    }
    if (host.isEmpty() || host.contains(u' ') || host.contains(u'/') || host.contains(u'@')) {
        error = QStringLiteral("The server \"%1\" is not host:port.").arg(text);
        return false;
    }
    if (!portText.isNull()) {
        bool ok = false;
        port = portText.toInt(&ok);
        if (!ok || port < 1 || port > 65535) {
            error = QStringLiteral("The server's port \"%1\" is not a number from 1 to 65535.")
                        .arg(portText);
            return false;
        }
    }
    return true;
}

QStringList splitAddresses(const QString& text) {
    static const QRegularExpression separators(QStringLiteral("[\\r\\n,;]+"));
    QStringList out;
    for (const QString& piece : text.split(separators, Qt::SkipEmptyParts)) {
        const QString address = piece.trimmed();
        if (!address.isEmpty())
            out << address;
    }
    return out;
}

bool readAddressFile(const QString& path, QStringList& addresses, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error =
            QStringLiteral("The address list %1 cannot be read: %2").arg(path, file.errorString());
        return false;
    }
    addresses = splitAddresses(decodeText(file.readAll(), nullptr));
    return true;
}

bool isDeliverable(const QString& address) {
    return web::isThisEmailOrLink(address, false) == web::EmailAddress;
}

QString checkRequest(const SendRequest& r) {
    if (r.addresses.isEmpty())
        return QStringLiteral("There is no delivery address.");
    if (!isDeliverable(r.from))
        return QStringLiteral("The sender \"%1\" is not an e-mail address.").arg(r.from);
    if (r.server.host.isEmpty())
        return QStringLiteral("There is no mail server.");
    return {};
}

QString statusWord(AddressStatus status) {
    switch (status) {
    case AddressStatus::Sent:
        return QStringLiteral("sent");
    case AddressStatus::Skipped:
        return QStringLiteral("skipped");
    case AddressStatus::Failed:
        return QStringLiteral("failed");
    case AddressStatus::Cancelled:
        return QStringLiteral("cancelled");
    }
    return {};
}

std::vector<AddressResult> runSend(const SendRequest& r, MailTransport& transport,
                                   const std::atomic_bool& cancel,
                                   const std::function<void(int, const AddressResult&)>& onResult) {
    std::vector<AddressResult> results;
    const std::function<bool()> cancelled = [&cancel] { return cancel.load(); };
    for (int i = 0; i < r.addresses.size(); ++i) {
        AddressResult result;
        result.address = r.addresses[i];
        if (cancel.load()) {
            result.status = AddressStatus::Cancelled;
        } else if (!isDeliverable(result.address)) {
            result.status = AddressStatus::Skipped;
            result.reason = QStringLiteral("not an e-mail address");
        } else {
            MailMessage m;
            m.from = r.from;
            m.to = result.address;
            m.subject = r.subject;
            m.body = r.body;
            m.date = QDateTime::currentDateTime();
            m.messageId = makeMessageId(r.from);
            m.hasAttachment = r.hasAttachment;
            m.attachment = r.attachment;
            const SendOutcome o =
                transport.send(r.server, r.from, result.address, buildMime(m), cancelled);
            result.status = o.sent        ? AddressStatus::Sent
                            : o.cancelled ? AddressStatus::Cancelled
                                          : AddressStatus::Failed;
            result.reason = o.reason;
        }
        if (onResult)
            onResult(i, result);
        results.push_back(result);
    }
    return results;
}

} // namespace ed::mail
