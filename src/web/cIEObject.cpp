#include "web/cIEObject.h"

#include "app/Trap.h"
#include "web/WaitLoop.h"
#include "web/WebText.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace ed::web {

namespace {

constexpr const char* kModule = "cIEObject";

[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}

} // namespace

QStringList defaultBrowserCandidates() {
#if defined(Q_OS_WIN)
    QStringList out;
    for (const char* env : {"ProgramFiles", "ProgramFiles(x86)", "LOCALAPPDATA"}) {
        const QString base = qEnvironmentVariable(env);
        if (base.isEmpty())
            continue;
        out << base + QStringLiteral("/Chromium/Application/chrome.exe")
            << base + QStringLiteral("/Google/Chrome/Application/chrome.exe")
            << base + QStringLiteral("/Microsoft/Edge/Application/msedge.exe");
    }
    return out;
#elif defined(Q_OS_MACOS)
    return {QStringLiteral("/Applications/Chromium.app/Contents/MacOS/Chromium"),
            QStringLiteral("/Applications/Google Chrome.app/Contents/MacOS/Google Chrome"),
            QStringLiteral("/Applications/Microsoft Edge.app/Contents/MacOS/Microsoft Edge")};
#else
    return {QStringLiteral("/usr/bin/chromium"),
            QStringLiteral("/usr/bin/chromium-browser"),
            QStringLiteral("/snap/bin/chromium"),
            QStringLiteral("/usr/bin/google-chrome"),
            QStringLiteral("/usr/bin/google-chrome-stable"),
            QStringLiteral("/usr/bin/microsoft-edge"),
            QStringLiteral("/usr/bin/microsoft-edge-stable")};
#endif
}

QString defaultProfileDir() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Editor/BrowserProfile");
}

QStringList launchArguments(quint16 port, const QString& profileDir) {
    return {QStringLiteral("--remote-debugging-port=%1").arg(port),
            QStringLiteral("--user-data-dir=%1").arg(QDir::toNativeSeparators(profileDir)),
            QStringLiteral("--no-first-run"),
            QStringLiteral("--disable-background-networking"),
            QStringLiteral("--disable-component-update"),
            QStringLiteral("--disable-sync")};
}

cIEObject::cIEObject(BrowserServices services, QObject* parent)
    : QObject(parent), services_(std::move(services)) {}

cIEObject::~cIEObject() {
    moIE_.reset();
    initialized_ = false;
}

BrowserHandle cIEObject::browser() const {
    return moIE_ ? moIE_->handle() : BrowserHandle();
}

BrowserPage& cIEObject::page() {
    if (!moIE_)
        fail(QStringLiteral("No browser window is attached."));
    return *moIE_;
}

void cIEObject::attach(const BrowserHandle& browser) {
    moIE_.reset();
    connectionLost_ = false;
    moIE_ = services_.connector->attach(browser);
    BrowserPage::Events events;
    events.documentComplete = [this](const DocumentRef& frame, QString& url) {
        onDocumentComplete(frame, url);
    };
    events.connectionLost = [this](const QString& reason) {
        connectionLost_ = true;
        connectionLostReason_ = reason;
    };
    moIE_->setEvents(std::move(events));
}

bool cIEObject::InitializeObject(const BrowserHandle& browser) {
    return trappedValue(
        services_.log, kModule, QStringLiteral("Function InitializeObject"), initialized_, [&] {
            const BrowserHandle target = browser.isEmpty() ? GetActiveBrowser(false) : browser;
            if (target.isEmpty()) {
                moIE_.reset();
            } else {
                attach(target);
                initialized_ = true;
            }
            return initialized_;
        });
}

void cIEObject::onDocumentComplete(const DocumentRef& frame, QString& url) {
    trapped(services_.log, kModule, QStringLiteral("Sub moIE_DocumentComplete"), [&] {
        if (mbWaiting_) {
            mbWaiting_ = false;
            if (moIE_ && moIE_->mainFrameId() == frame.frameId)
                mbCancelWait_ = true;
        }
        emit DocumentComplete(frame, url);
    });
}

QString cIEObject::InternetExplorerPath() const {
    if (!msIEPath_.isEmpty())
        return msIEPath_;
    if (!services_.browserPath.isEmpty())
        return services_.browserPath;
    for (const QString& candidate : services_.browserCandidates) {
        const QFileInfo info(candidate);
        if (info.exists() && !info.isDir())
            return candidate;
    }
    return QString();
}

QStringList cIEObject::BrowserLaunchArguments() {
    const Endpoint endpoint = services_.connector->endpoint();
    QDir().mkpath(services_.profileDir);
    return services_.extraLaunchArguments + launchArguments(endpoint.port, services_.profileDir);
}

void cIEObject::launchBrowser() {
    const QString path = InternetExplorerPath();
    if (path.isEmpty())
        fail(QStringLiteral("No browser to start was found: set \"Browser Path\" to a Chromium, "
                            "Chrome or Edge program."));
    const Endpoint endpoint = services_.connector->endpoint();
    const QStringList arguments = BrowserLaunchArguments();
    if (!services_.launcher.startDetached(path, arguments))
        fail(QStringLiteral("The browser \"%1\" could not be started.").arg(path));
    const QDeadlineTimer deadline(services_.launchWaitMs);
    while (!deadline.hasExpired()) {
        try {
            if (!services_.connector->firstPage().isEmpty())
                return;
        } catch (const RuntimeError&) {
            // still starting
        }
        const int rest = int(deadline.remainingTime());
        waitUntil([] { return false; }, std::max(0, std::min(services_.launchPollMs, rest)));
    }
    fail(QStringLiteral("The browser started from \"%1\" did not answer at %2 within %3 s.")
             .arg(path, endpoint.text(), QString::number(services_.launchWaitMs / 1000.0)));
}

BrowserHandle cIEObject::GetActiveBrowser(bool launchIfNone) {
    return trappedValue(services_.log, kModule, QStringLiteral("Function GetActiveBrowser"),
                        BrowserHandle(), [&] {
                            BrowserHandle found = services_.connector->firstPage();
                            if (found.isEmpty() && launchIfNone) {
                                launchBrowser();
                                found = services_.connector->firstPage();
                            }
                            return found;
                        });
}

void cIEObject::NavigateToUrl(const QString& url, bool wait) {
    if (!initialized_)
        return;
    trapped(services_.log, kModule, QStringLiteral("Sub NavigateToUrl"), [&] {
        mbWaiting_ = wait;
        const NavigationTarget target = navigationTarget(url);
        if (target.mail) {
            if (!services_.launcher.open(target.text))
                fail(QStringLiteral("The mail program could not be opened for \"%1\".")
                         .arg(target.text));
            return;
        }
        page().navigate(target.text);
        if (!mbWaiting_)
            return;
        mbCancelWait_ = false;
        if (!waitUntil([this] { return mbCancelWait_ || connectionLost_; },
                       services_.navigateWaitMs))
            mbCancelWait_ = true; // the wait cap
        if (!mbCancelWait_ && connectionLost_)
            fail(QStringLiteral("The browser went away while \"%1\" was loading (%2).")
                     .arg(target.text, connectionLostReason_));
    });
}

void cIEObject::Navigate(const QString& address) {
    if (!initialized_)
        fail(QStringLiteral("No browser window is attached to go to \"%1\".").arg(address));
    page().navigate(browserAddress(address));
}

qint32 cIEObject::ProtocolTypes_Count() const {
    return qint32(protocolTypes().size());
}

QString cIEObject::ProtocolTypes_ListItem(qint32 index) const {
    return trappedValue(services_.log, kModule, QStringLiteral("Function ProtocolTypes_ListItem"),
                        QString(), [&] {
                            if (index < 0 || index >= ProtocolTypes_Count())
                                fail(QStringLiteral("Subscript out of range"));
                            return protocolTypes()[size_t(index)];
                        });
}

} // namespace ed::web
