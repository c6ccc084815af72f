#pragma once
// A loopback HTTP server for the browser tests: fixed answers by path, served from the test's
// own event loop (so it answers while the program under test waits).

#include <QByteArray>
#include <QHash>
#include <QTcpServer>

namespace ed::test {

class TestHttpServer : public QObject {
    Q_OBJECT
public:
    struct Answer {
        QByteArray body;
        QByteArray contentType = "text/html; charset=utf-8";
        int status = 200;
        bool never = false;                           // hold the connection and never answer
        QList<QPair<QByteArray, QByteArray>> headers; // more header lines
        // Send the header (with the whole body's length) and this many bytes of the body,
        // then hold the connection; -1 sends everything.
        qsizetype stallAfter = -1;
        qint64 declaredLength = -1; // the Content-Length sent; -1: the body's
    };

    TestHttpServer();
    quint16 port() const { return server_.serverPort(); }
    // "http://127.0.0.1:<port><path>"
    QString url(const QString& path) const;
    // "http://localhost:<port><path>": another site than url(), so its frames get a process
    // of their own.
    QString otherSiteUrl(const QString& path) const;

    void serve(const QString& path, const QByteArray& body,
               const QByteArray& contentType = "text/html; charset=utf-8") {
        Answer a;
        a.body = body;
        a.contentType = contentType;
        serve(path, a);
    }
    void serve(const QString& path, Answer answer) { answers_.insert(path, answer); }
    int requestsFor(const QString& path) const { return requests_.value(path); }
    // Every request so far, of any path.
    int requests() const;

private:
    void onConnection();

    QTcpServer server_;
    QHash<QString, Answer> answers_;
    QHash<QString, int> requests_;
};

} // namespace ed::test
