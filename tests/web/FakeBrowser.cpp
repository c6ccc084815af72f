#include "FakeBrowser.h"

#include "app/Trap.h"
#include "support/Fakes.h"

#include <QTimer>

namespace ed::test {

namespace {
[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}
} // namespace

const FakeBrowserWindow& FakePage::window() const {
    if (w_->failEverything)
        fail(QStringLiteral("The browser closed the connection."));
    return *w_;
}

web::BrowserHandle FakePage::handle() const {
    return {w_->mainFrameId, w_->title, w_->url,
            QStringLiteral("ws://127.0.0.1:9222/devtools/page/") + w_->mainFrameId};
}

void FakePage::navigate(const QString& url) {
    window();
    w_->navigations << url;
    w_->url = url;
    // The top document reports itself loaded once the event loop runs.
    QTimer::singleShot(0, [weak = std::weak_ptr(w_)] {
        auto window = weak.lock();
        if (window && window->events.documentComplete) {
            QString url = window->url;
            window->events.documentComplete({window->mainFrameId}, url);
        }
    });
}

web::DocumentRef FakePage::frameDocument(int index) {
    if (index < 0 || index >= int(window().frames.size()))
        fail(QStringLiteral("The page has no frame %1.").arg(index));
    if (w_->frames[size_t(index)].unreadable)
        fail(QStringLiteral("Access is denied."));
    return {QStringLiteral("frame%1").arg(index)};
}

const FakeDocument& FakePage::document(const web::DocumentRef& ref) const {
    if (ref.frameId == window().mainFrameId)
        return w_->top;
    for (size_t i = 0; i < w_->frames.size(); ++i) {
        if (ref.frameId == QStringLiteral("frame%1").arg(i))
            return w_->frames[i];
    }
    fail(QStringLiteral("No document %1.").arg(ref.frameId));
}

web::BrowserHandle FakeConnector::firstPage() {
    return browserOpen ? FakePage(window).handle() : web::BrowserHandle();
}

std::unique_ptr<web::BrowserPage> FakeConnector::attach(const web::BrowserHandle&) {
    if (!browserOpen)
        fail(QStringLiteral("Could not connect to the browser."));
    return std::make_unique<FakePage>(window);
}

web::BrowserServices FakeBrowserPort::services() {
    web::BrowserServices s(log_, clipboard_, launcher_, connector);
    s.browserCandidates = {};
    s.browserPath = program;
    s.profileDir = makeTempDir() + "/profile";
    s.navigateWaitMs = 2000;
    s.launchWaitMs = 500;
    s.launchPollMs = 20;
    return s;
}

std::unique_ptr<web::cIEObject> FakeBrowserPort::createSession() {
    ++sessionsCreated;
    return std::make_unique<web::cIEObject>(services());
}

} // namespace ed::test
