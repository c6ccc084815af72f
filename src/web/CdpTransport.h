#pragma once
// The message channel under a DevTools session: text frames in and out over one connection.
// The WebSocket one talks to the browser; tests put a scripted one in its place.

#include <QObject>
#include <QString>
#include <QUrl>

namespace ed::web {

class CdpTransport : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~CdpTransport() override = default;

    // Starts connecting; ends in opened() or closed().
    virtual void open(const QUrl& url) = 0;
    virtual void sendText(const QString& text) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;

signals:
    void opened();
    void textReceived(const QString& text);
    // The connection failed or ended; `reason` says why when known.
    void closed(const QString& reason);
};

} // namespace ed::web
