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

int TestHttpServer::requests() const {
    int n = 0;
    for (const int count : requests_)
        n += count;
    return n;
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
            const QString path = QString::fromUtf8(requestLine.value(1, "/")).section(u'?', 0, 0);
            buffer.clear();
            requests_[path] += 1;
            Answer a = answers_.value(path);
            if (!answers_.contains(path)) {
                a.status = 404;
                a.body = "not found";
            }
            if (a.never)
                return;
            const QByteArray reason = a.status == 200   ? "OK"
                                      : a.status == 404 ? "Not Found"
                                                        : "Other";
            QByteArray response =
                "HTTP/1.1 " + QByteArray::number(a.status) + ' ' + reason +
                "\r\nContent-Type: " + a.contentType + "\r\nContent-Length: " +
                QByteArray::number(a.declaredLength >= 0 ? a.declaredLength : a.body.size());
            for (const auto& [name, value] : a.headers)
                response += "\r\n" + name + ": " + value;
            response += "\r\nConnection: close\r\n\r\n";
            socket->write(response + (a.stallAfter < 0 ? a.body : a.body.left(a.stallAfter)));
            if (a.stallAfter < 0)
                socket->disconnectFromHost();
        });
    }
}

} // namespace ed::test
