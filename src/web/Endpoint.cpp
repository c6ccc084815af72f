#include "web/Endpoint.h"

#include <QHostAddress>

namespace ed::web {

QString Endpoint::text() const {
    const QString h = host.contains(u':') ? u'[' + host + u']' : host;
    return h + u':' + QString::number(port);
}

QUrl Endpoint::httpUrl(const QString& path) const {
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(host);
    url.setPort(port);
    url.setPath(path);
    return url;
}

bool isLoopbackHost(const QString& host) {
    QString h = host;
    if (h.startsWith(u'[') && h.endsWith(u']'))
        h = h.mid(1, h.size() - 2);
    if (h.compare(u"localhost", Qt::CaseInsensitive) == 0)
        return true;
    QHostAddress address;
    if (!address.setAddress(h))
        return false;
    if (address.protocol() == QAbstractSocket::IPv6Protocol) {
        bool mapped = false;
        const quint32 v4 = address.toIPv4Address(&mapped);
        if (mapped)
            return (v4 >> 24) == 127;
    }
    return address.isLoopback();
}

namespace {
std::optional<Endpoint> fail(QString* error, const QString& message) {
    if (error)
        *error = message;
    return std::nullopt;
}
} // namespace

std::optional<Endpoint> parseEndpoint(const QString& text, QString* error) {
    const QString t = text.trimmed();
    QString host;
    QString port;
    if (t.startsWith(u'[')) {
        const qsizetype close = t.indexOf(u']');
        if (close < 0 || t.mid(close + 1, 1) != u":")
            return fail(error, QStringLiteral("The browser endpoint \"%1\" is not written as "
                                              "host:port (for example 127.0.0.1:9222).")
                                   .arg(text));
        host = t.mid(1, close - 1);
        port = t.mid(close + 2);
    } else {
        const qsizetype colon = t.lastIndexOf(u':');
        if (colon <= 0 || t.indexOf(u':') != colon)
            return fail(error, QStringLiteral("The browser endpoint \"%1\" is not written as "
                                              "host:port (for example 127.0.0.1:9222).")
                                   .arg(text));
        host = t.left(colon);
        port = t.mid(colon + 1);
    }
    bool ok = false;
    const uint n = port.toUInt(&ok);
    if (!ok || n < 1 || n > 65535)
        return fail(error,
                    QStringLiteral("The browser endpoint \"%1\" has no valid port (1 to 65535).")
                        .arg(text));
    if (!isLoopbackHost(host))
        return fail(error, QStringLiteral("The browser endpoint \"%1\" is refused: only an "
                                          "address on this computer (127.0.0.0/8, localhost or "
                                          "::1) is accepted.")
                               .arg(text));
    return Endpoint{host, quint16(n)};
}

QString checkLoopbackUrl(const QUrl& url) {
    if (!url.isValid() || url.host().isEmpty())
        return QStringLiteral("The browser handed out an unusable address \"%1\".")
            .arg(url.toString());
    if (!isLoopbackHost(url.host()))
        return QStringLiteral("The browser handed out the address \"%1\", which is not on this "
                              "computer; it is refused.")
            .arg(url.toString());
    return QString();
}

} // namespace ed::web
