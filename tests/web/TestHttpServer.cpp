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

int TestHttpServer::requests() const {
    int n = 0;
    for (const int count : requests_)
        n += count;
    return n;
}

namespace {
QByteArray reasonPhrase(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 301:
        return "Moved Permanently";
    case 302:
        return "Found";
    case 404:
        return "Not Found";
    default:
        return "Error";
    }
}
} // namespace

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
            QByteArray response =
                "HTTP/1.1 " + QByteArray::number(a.status) + ' ' + reasonPhrase(a.status) +
                "\r\nContent-Type: " + a.contentType + "\r\nContent-Length: " +
                QByteArray::number(a.declaredLength >= 0 ? a.declaredLength : a.body.size());
            for (const auto& [name, value] : a.headers)
                response += "\r\n" + name + ": " + value;
            response += "\r\nConnection: close\r\n\r\n";
            if (a.stallAfter >= 0) {
                socket->write(response + a.body.left(a.stallAfter));
                return;
            }
            socket->write(response + a.body);
            socket->disconnectFromHost();
        });
    }
}

} // namespace ed::test
