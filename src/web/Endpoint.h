#pragma once
// The DevTools endpoint of the browser: host and port on this computer. Only loopback hosts are
// accepted, so the program never drives a browser somewhere else on the network.

#include <QString>
#include <QUrl>

#include <optional>

namespace ed::web {

struct Endpoint {
    QString host; // "127.0.0.1", "localhost", "::1"
    quint16 port = 0;

    // "127.0.0.1:9222", "[::1]:9222"
    QString text() const;
    QUrl httpUrl(const QString& path) const;
};

inline QString defaultEndpointText() {
    return QStringLiteral("127.0.0.1:9222");
}

// 127.0.0.0/8, ::1 and "localhost".
bool isLoopbackHost(const QString& host);

// Parses "host:port" ("[::1]:port" for IPv6). On failure returns nothing and sets `error` to a
// message that names the problem.
std::optional<Endpoint> parseEndpoint(const QString& text, QString* error = nullptr);

// Empty when `url` (a ws:// address the endpoint handed out) points at a loopback host;
// otherwise the reason it is refused.
QString checkLoopbackUrl(const QUrl& url);

} // namespace ed::web
