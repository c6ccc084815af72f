#pragma once
// A browser window driven over the DevTools protocol: one WebSocket to the page target, with the
// page's frames of other sites reached through sessions attached to it on the same connection.
// Documents are read in an isolated script world of their frame, so the page's own scripts
// cannot change what is read and frames of any origin (file:// pages included) can be read.

#include "web/BrowserPage.h"
#include "web/CdpClient.h"
#include "web/CdpOptions.h"

#include <QHash>
#include <QJsonObject>
#include <QJsonValue>

#include <memory>

namespace ed::web {

class CdpPage : public BrowserPage {
public:
    // Connects to `window` and subscribes to its events; throws RuntimeError on failure.
    CdpPage(const BrowserHandle& window, const Endpoint& endpoint, const CdpOptions& options,
            std::unique_ptr<CdpTransport> transport = nullptr);
    ~CdpPage() override;

    void setEvents(Events events) override { events_ = std::move(events); }
    BrowserHandle handle() const override { return handle_; }
    bool isConnected() const override { return client_->isConnected(); }
    QString mainFrameId() const override { return mainFrameId_; }

    void navigate(const QString& url) override;

    int frameCount() override;
    DocumentRef topDocument() override { return {mainFrameId_}; }
    DocumentRef frameDocument(int index) override;
    QString documentHtml(const DocumentRef& document) override;
    QString documentText(const DocumentRef& document) override;
    QStringList documentLinks(const DocumentRef& document) override;
    QList<DocumentRef> allDocuments() override;

    QString locationUrl() override;
    QString locationName() override;
    QString selectionText() override;
    QByteArray savedPage(bool archive) override;

    CdpClient& client() { return *client_; }

private:
    void onEvent(const QString& method, const QJsonObject& params, const QString& sessionId);
    void onFrameNavigated(const QJsonObject& frame, const QString& sessionId);
    void rememberFrames(const QJsonObject& tree);
    QJsonObject targetInfo();

    // The session that holds `frameId` and a fresh isolated world in it.
    struct World {
        QString sessionId;
        int contextId = 0;
    };
    World isolatedWorld(const QString& frameId);
    // The script's result (a value, or a handle to an object) and the session that holds it.
    struct Evaluation {
        QJsonObject result;
        QString sessionId;
    };
    Evaluation evaluate(const DocumentRef& document, const QString& expression, bool byValue);
    QJsonValue evaluateValue(const DocumentRef& document, const QString& expression);
    QStringList allFrameIds();
    // The document of window.frames[index] of `parent`; throws when there is none.
    DocumentRef childFrame(const DocumentRef& parent, int index);
    void appendWithFrames(const DocumentRef& document, int depth, QList<DocumentRef>& out);

    std::unique_ptr<CdpClient> client_;
    BrowserHandle handle_;
    Endpoint endpoint_;
    CdpOptions options_;
    Events events_;
    QString mainFrameId_;
    QHash<QString, QString> frameUrls_;     // frame id -> address
    QHash<QString, QString> childSessions_; // frame (target) id -> attached session id
    bool navigationStarted_ = false;
};

} // namespace ed::web
