#include "web/WebSocketTransport.h"

#include <QNetworkProxy>

namespace ed::web {

WebSocketTransport::WebSocketTransport(QObject* parent) : CdpTransport(parent) {
    socket_.setProxy(QNetworkProxy::NoProxy);
    connect(&socket_, &QWebSocket::connected, this, [this] {
        reportedClosed_ = false;
        emit opened();
    });
    connect(&socket_, &QWebSocket::textMessageReceived, this, &CdpTransport::textReceived);
    connect(&socket_, &QWebSocket::stateChanged, this, &WebSocketTransport::onStateChanged);
}

WebSocketTransport::~WebSocketTransport() {
    socket_.disconnect(this);
    socket_.abort();
}

void WebSocketTransport::onStateChanged(QAbstractSocket::SocketState state) {
    if (state != QAbstractSocket::UnconnectedState || reportedClosed_)
        return;
    reportedClosed_ = true;
    QString reason = socket_.closeReason();
    if (reason.isEmpty())
        reason = socket_.errorString();
    emit closed(reason);
}

void WebSocketTransport::open(const QUrl& url) {
    reportedClosed_ = false;
    socket_.open(url);
}

void WebSocketTransport::sendText(const QString& text) {
    socket_.sendTextMessage(text);
}

void WebSocketTransport::close() {
    socket_.close();
}

bool WebSocketTransport::isOpen() const {
    return socket_.state() == QAbstractSocket::ConnectedState;
}

} // namespace ed::web
