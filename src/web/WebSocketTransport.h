#pragma once
// The DevTools channel over a WebSocket, never through a proxy.

#include "web/CdpTransport.h"

#include <QWebSocket>

namespace ed::web {

class WebSocketTransport : public CdpTransport {
    Q_OBJECT
public:
    explicit WebSocketTransport(QObject* parent = nullptr);
    ~WebSocketTransport() override;

    void open(const QUrl& url) override;
    void sendText(const QString& text) override;
    void close() override;
    bool isOpen() const override;

private:
    void onStateChanged(QAbstractSocket::SocketState state);

    QWebSocket socket_;
    bool reportedClosed_ = false;
};

} // namespace ed::web
