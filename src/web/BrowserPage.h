#pragma once
// What the browser session needs from an attached browser window, and how it finds one.
// The DevTools adapter implements both over the protocol; tests use scripted ones.

#include "web/BrowserTypes.h"
#include "web/Endpoint.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <exception>
#include <functional>
#include <memory>

namespace ed::web {

// One attached browser window (a page target). Every call that reaches the browser throws
// RuntimeError when the browser fails, refuses or does not answer in time.
class BrowserPage {
public:
    struct Events {
        // A frame's document finished loading; `frame` is that frame's document.
        std::function<void(const DocumentRef& frame, QString& url)> documentComplete;
        // The connection to the browser ended.
        std::function<void(const QString& reason)> connectionLost;
    };

    virtual ~BrowserPage() = default;
    virtual void setEvents(Events events) = 0;
    virtual BrowserHandle handle() const = 0;
    virtual bool isConnected() const = 0;
    // The browser's own name: the id of its main frame, as documentComplete reports it.
    virtual QString mainFrameId() const = 0;

    virtual void navigate(const QString& url) = 0;

    // The top document's frames collection: its length, and the document of frame `index`
    // (throws when there is no such frame or its document cannot be read).
    virtual int frameCount() = 0;
    virtual DocumentRef topDocument() = 0;
    virtual DocumentRef frameDocument(int index) = 0;
    // documentElement.innerHTML / innerText, and the href of every entry of links.
    virtual QString documentHtml(const DocumentRef& document) = 0;
    virtual QString documentText(const DocumentRef& document) = 0;
    virtual QStringList documentLinks(const DocumentRef& document) = 0;
    // The top document, then the document of every frame in it, in the order of the frames
    // collection; a frame that cannot be read is left out. The browser adapter also walks the
    // frames of frames; this default reads one level.
    virtual QList<DocumentRef> allDocuments() {
        QList<DocumentRef> documents{topDocument()};
        const int n = frameCount();
        for (int i = 0; i < n; ++i) {
            try {
                documents << frameDocument(i);
            } catch (const std::exception&) {
                continue; // gone meanwhile, or not readable
            }
        }
        return documents;
    }

    virtual QString locationUrl() = 0;
    // The title, or the address when the page has none.
    virtual QString locationName() = 0;
    // The text the user selected in the page or one of its frames ("" when none).
    virtual QString selectionText() = 0;
    // The page as a single-file web archive (MHTML) or as its HTML alone.
    virtual QByteArray savedPage(bool archive) = 0;
};

// Finds browser windows at the endpoint and attaches to them.
class BrowserConnector {
public:
    virtual ~BrowserConnector() = default;
    // "127.0.0.1:9222", or the setting as written when it was refused.
    virtual QString endpointText() const = 0;
    // The endpoint; throws RuntimeError naming the problem when the setting was refused.
    virtual Endpoint endpoint() const = 0;
    // The first page target; empty when no browser answers at the endpoint.
    virtual BrowserHandle firstPage() = 0;
    virtual std::unique_ptr<BrowserPage> attach(const BrowserHandle& window) = 0;
};

} // namespace ed::web
