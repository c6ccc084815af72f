#pragma once
// A scripted browser for tests of the session object and of the commands built on it: pages
// are plain data, events are fired by hand or after a navigation, and everything the session
// asked for is recorded.

#include "web/BrowserPage.h"
#include "web/BrowserPort.h"

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
    bool connected = true;
    bool failEverything = false; // every call throws, as with a browser that went away

    // Frames reported as loaded after each navigation, in this order, 10 ms apart.
    QStringList completeOnNavigate{QStringLiteral("main")};

    // What the session did.
    QStringList navigations;
    int attachCount = 0;

    web::BrowserPage::Events events; // as set by the attached session
};

class FakePage : public web::BrowserPage {
public:
    explicit FakePage(std::shared_ptr<FakeBrowserWindow> window) : w_(std::move(window)) {}
    ~FakePage() override { w_->events = {}; }

    void setEvents(Events events) override { w_->events = std::move(events); }
    web::BrowserHandle handle() const override;
    bool isConnected() const override { return w_->connected; }
    QString mainFrameId() const override { return w_->mainFrameId; }
    void navigate(const QString& url) override;
    void stopLoading() override;
    void setWindowEdge(Edge edge, int pixels) override;
    int frameCount() override;
    web::DocumentRef topDocument() override;
    web::DocumentRef frameDocument(int index) override;
    QString documentHtml(const web::DocumentRef& document) override;
    QString documentText(const web::DocumentRef& document) override;
    QStringList documentLinks(const web::DocumentRef& document) override;
    QString locationUrl() override;
    QString locationName() override;
    QString selectionText() override;
    QByteArray savedPage(bool archive) override;

private:
    void check() const;
    const FakeDocument& document(const web::DocumentRef& ref) const;
    std::shared_ptr<FakeBrowserWindow> w_;
};

class FakeConnector : public web::BrowserConnector {
public:
    std::shared_ptr<FakeBrowserWindow> window = std::make_shared<FakeBrowserWindow>();
    bool browserOpen = true;
    QString endpointSetting = QStringLiteral("127.0.0.1:9222");

    QString endpointText() const override { return endpointSetting; }
    web::Endpoint endpoint() const override;
    web::BrowserHandle firstPage() override;
    std::unique_ptr<web::BrowserPage> attach(const web::BrowserHandle& handle) override;
};

// A browser port over one fake window, for tests of the browser commands.
class FakeBrowserPort : public BrowserPort {
public:
    FakeBrowserPort(Logger& log, Clipboard& clipboard, Launcher& launcher);
    std::shared_ptr<FakeConnector> connector = std::make_shared<FakeConnector>();
    int sessionsCreated = 0;

    std::unique_ptr<web::cIEObject> createSession() override;
    QString endpointDescription() const override { return connector->endpointSetting; }
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

} // namespace ed::test
