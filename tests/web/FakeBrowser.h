#pragma once
// A scripted browser for tests of the session object and of the commands built on it: pages are
// plain data, a navigation reports its frames loaded, and what the session did is recorded.

#include "web/BrowserPage.h"
#include "web/BrowserPort.h"

#include "support/Fakes.h"

#include <QStringList>

#include <memory>
#include <vector>

namespace ed::test {

struct FakeDocument {
    QString html;
    QString text;
    QStringList links;
    bool unreadable = false; // reading it fails as an access-denied frame would
};

// The state of the fake browser window, shared between the test and the page object.
struct FakeBrowserWindow {
    QString mainFrameId = QStringLiteral("main");
    FakeDocument top;
    std::vector<FakeDocument> frames; // frame i has the id "frame<i>"
    QString url = QStringLiteral("http://example.com/");
    QString title = QStringLiteral("Example");
    QString selection;
    QByteArray archive = "MHTML archive";
    bool failEverything = false; // every call throws, as with a browser that went away
    QStringList navigations;
    web::BrowserPage::Events events; // as set by the attached session
};

class FakePage : public web::BrowserPage {
public:
    explicit FakePage(std::shared_ptr<FakeBrowserWindow> window) : w_(std::move(window)) {}
    ~FakePage() override { w_->events = {}; }

    void setEvents(Events events) override { w_->events = std::move(events); }
    web::BrowserHandle handle() const override;
    bool isConnected() const override { return true; }
    QString mainFrameId() const override { return w_->mainFrameId; }
    void navigate(const QString& url) override;
    int frameCount() override { return int(window().frames.size()); }
    web::DocumentRef topDocument() override { return {w_->mainFrameId}; }
    web::DocumentRef frameDocument(int index) override;
    QString documentHtml(const web::DocumentRef& d) override { return document(d).html; }
    QString documentText(const web::DocumentRef& d) override { return document(d).text; }
    QStringList documentLinks(const web::DocumentRef& d) override { return document(d).links; }
    QString locationUrl() override { return window().url; }
    QString locationName() override { return window().title; }
    QString selectionText() override { return window().selection; }
    QByteArray savedPage(bool archive) override {
        return archive ? window().archive : window().top.html.toUtf8();
    }

private:
    // The window; throws when it is set to fail.
    const FakeBrowserWindow& window() const;
    const FakeDocument& document(const web::DocumentRef& ref) const;
    std::shared_ptr<FakeBrowserWindow> w_;
};

class FakeConnector : public web::BrowserConnector {
public:
    std::shared_ptr<FakeBrowserWindow> window = std::make_shared<FakeBrowserWindow>();
    bool browserOpen = true;

    QString endpointText() const override { return QStringLiteral("127.0.0.1:9222"); }
    web::Endpoint endpoint() const override { return {QStringLiteral("127.0.0.1"), 9222}; }
    web::BrowserHandle firstPage() override;
    std::unique_ptr<web::BrowserPage> attach(const web::BrowserHandle& handle) override;
};

// A browser port over one fake window, for tests of the browser commands. Its sessions start
// `program` when they have to start a browser.
class FakeBrowserPort : public BrowserPort {
public:
    FakeBrowserPort(Logger& log, Clipboard& clipboard, Launcher& launcher)
        : log_(log), clipboard_(clipboard), launcher_(launcher) {}
    std::shared_ptr<FakeConnector> connector = std::make_shared<FakeConnector>();
    QString program;
    int sessionsCreated = 0;

    std::unique_ptr<web::cIEObject> createSession() override;
    QString endpointDescription() const override { return connector->endpointText(); }
    QString startCommand() const override {
        return QStringLiteral("chromium --remote-debugging-port=9222");
    }
    QString endpointProblem() const override { return QString(); }

    web::BrowserServices services();

private:
    Logger& log_;
    Clipboard& clipboard_;
    Launcher& launcher_;
};

// A command harness whose browser port is a FakeBrowserPort (and whose file dialogs are scripted).
struct BrowserHarness {
    explicit BrowserHarness(const QString& text = QString()) : h(text) {
        h.ctx.browser = &port;
        h.ctx.fileDialogs = &files;
    }
    Harness h;
    FakeBrowserPort port{h.log, h.clipboard, h.launcher};
    FakeFileDialogs files;
    FakeBrowserWindow& window() { return *port.connector->window; }
};

} // namespace ed::test
