#include "TestHttpServer.h"

#include <QTcpSocket>

#include <memory>

namespace ed::test {

TestHttpServer::TestHttpServer() {
    server_.listen(QHostAddress::LocalHost, 0);
    connect(&server_, &QTcpServer::newConnection, this, &TestHttpServer::onConnection);
}

QString TestHttpServer::url(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port()).arg(path);
}

QString TestHttpServer::otherSiteUrl(const QString& path) const {
    return QStringLiteral("http://localhost:%1%2").arg(port()).arg(path);
}

void TestHttpServer::serve(const QString& path, const QByteArray& body,
                           const QByteArray& contentType) {
    Answer a;
    a.body = body;
    a.contentType = contentType;
    answers_.insert(path, a);
}

void TestHttpServer::onConnection() {
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
        socket->setParent(this);
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        auto pending = std::make_shared<QByteArray>();
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket, pending] {
            QByteArray& buffer = *pending;
            buffer += socket->readAll();
            if (!buffer.contains("\r\n\r\n"))
                return;
            const QList<QByteArray> requestLine = buffer.left(buffer.indexOf("\r\n")).split(' ');
            QString path = requestLine.size() > 1 ? QString::fromUtf8(requestLine[1]) : "/";
            path = path.left(path.indexOf(u'?') >= 0 ? path.indexOf(u'?') : path.size());
            buffer.clear();
            requests_[path] += 1;
            const auto it = answers_.constFind(path);
            Answer a;
            if (it == answers_.cend()) {
                a.status = 404;
                a.body = "not found";
                a.contentType = "text/plain";
            } else {
                a = *it;
            }
            if (a.never)
                return;
            const QByteArray reason = a.status == 200 ? "OK" : "Error";
            QByteArray response = "HTTP/1.1 " + QByteArray::number(a.status) + ' ' + reason +
                                  "\r\nContent-Type: " + a.contentType +
                                  "\r\nContent-Length: " + QByteArray::number(a.body.size()) +
                                  "\r\nConnection: close\r\n\r\n" + a.body;
            socket->write(response);
            socket->disconnectFromHost();
        });
    }
}

} // namespace ed::test
