#pragma once
// One DevTools session over one connection: numbered requests, replies matched to their
// requests by id in whatever order they come, events handed on with the session they belong to
// (the page's own or one attached to it), and a time limit on every wait. A hung or vanished
// browser therefore ends a call with a RuntimeError instead of freezing the caller.

#include "web/CdpTransport.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

#include <functional>
#include <map>
#include <memory>

namespace ed::web {

class CdpClient : public QObject {
    Q_OBJECT
public:
    explicit CdpClient(std::unique_ptr<CdpTransport> transport, int callTimeoutMs = 10000,
                       QObject* parent = nullptr);
    ~CdpClient() override;

    // Connects and waits for the connection; throws RuntimeError when it fails or times out.
    void connectTo(const QUrl& url);
    bool isConnected() const;
    void close();

    // Sends `method` and waits for its reply; returns the reply's "result". Throws RuntimeError
    // when the browser answers with an error, closes the connection or does not answer in time.
    // `sessionId` addresses a session attached to this one ("" is the connection's own).
    // When `enough` is given and turns true before the reply comes (an event showed the request
    // took effect), the call returns an empty object and the reply is dropped.
    QJsonObject call(const QString& method, const QJsonObject& params = {},
                     const QString& sessionId = QString(),
                     const std::function<bool()>& enough = {});
    // Sends without waiting; the reply is dropped.
    void post(const QString& method, const QJsonObject& params = {},
              const QString& sessionId = QString());

    int callTimeoutMs() const { return timeoutMs_; }
    void setCallTimeoutMs(int ms) { timeoutMs_ = ms; }
    // Messages that could not be read (bad JSON, neither reply nor event) so far.
    int protocolFaults() const { return faults_; }

signals:
    void eventReceived(const QString& method, const QJsonObject& params, const QString& sessionId);
    // The connection ended after it was open.
    void connectionLost(const QString& reason);

private:
    struct Pending {
        QString method;
        QString sessionId;
        bool done = false;
        QJsonObject result;
        QString error;
    };

    int send(const QString& method, const QJsonObject& params, const QString& sessionId);
    void onText(const QString& text);
    void onClosed(const QString& reason);

    std::unique_ptr<CdpTransport> transport_;
    int timeoutMs_;
    int nextId_ = 1;
    int faults_ = 0;
    bool open_ = false;
    bool everOpened_ = false;
    QString closeReason_;
    std::map<int, Pending*> pending_;
    std::shared_ptr<bool> alive_;
};

} // namespace ed::web
