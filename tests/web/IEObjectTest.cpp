// The session object's own logic over a scripted browser: where addresses go, the wait, the
// title and tag contents, the browser program and its launch, errors logged with their
// labels.

#include "FakeBrowser.h"
#include "support/Fakes.h"
#include "web/cIEObject.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;
using ed::test::FakeDocument;

namespace {

struct Session {
    test::RecordingLogger log;
    MemoryClipboard clipboard;
    test::FakeLauncher launcher;
    test::FakeBrowserPort port{log, clipboard, launcher};
    test::FakeBrowserWindow& window = *port.connector->window;
    std::unique_ptr<cIEObject> ie;

    explicit Session(bool attach = true) : ie(std::make_unique<cIEObject>(port.services())) {
        if (attach) {
            EXPECT_TRUE(ie->InitializeObject(ie->GetActiveBrowser(false)));
        }
    }
    // A session that has to start its browser: none answers until the test says so.
    BrowserServices launching(const QString& path) {
        port.connector->browserOpen = false;
        BrowserServices services = port.services();
        services.browserPath = path;
        services.profileDir = test::makeTempDir() + "/profile";
        return services;
    }
    QStringList labels() const {
        QStringList out;
        for (const auto& e : log.errors)
            out << e.module + u'|' + e.location;
        return out;
    }
};

FakeDocument doc(const QString& html, QStringList links = {}) {
    return {html, QStringLiteral("text of ") + html, std::move(links), false};
}

TEST(IEObject, WithoutABrowserEverythingIsAQuietNoOp) {
    Session s(false);
    s.port.connector->browserOpen = false;
    EXPECT_TRUE(s.ie->GetActiveBrowser(false).isEmpty());
    EXPECT_FALSE(s.ie->InitializeObject());
    s.ie->NavigateToUrl("example.com", true);
    EXPECT_EQ(s.ie->GetBrowserHTML(), "");
    EXPECT_TRUE(s.ie->GetLinksOnWebPage().isEmpty());
    EXPECT_EQ(s.ie->Get_HtmlTag_Content("<b>", "</b>", "<b>x</b>"), QStringList{">x"});
    EXPECT_TRUE(s.launcher.opened.isEmpty());
    EXPECT_TRUE(s.log.errors.empty());
    EXPECT_EQ(s.window.attachCount, 0);
}

TEST(IEObject, AddressesGoToTheBrowserOrAsOneTextToTheMailProgram) {
    Session s;
    s.window.completeOnNavigate = {};
    for (const char* url : {"www.example.com", "mailto:joe@example.com", "joe@example.com",
                            "a;b$(touch x)'q\"@example.com"})
        s.ie->NavigateToUrl(url, false);
    EXPECT_EQ(s.window.navigations,
              (QStringList{"http://www.example.com", "mailto:joe@example.com"}));
    EXPECT_EQ(s.launcher.opened,
              (QStringList{"mailto:joe@example.com?Subject=Hello",
                           "mailto:a;b$(touch x)'q\"@example.com?Subject=Hello"}));
    EXPECT_TRUE(s.launcher.started.empty());
    EXPECT_TRUE(s.log.errors.empty());
    s.launcher.result = false;
    s.ie->NavigateToUrl("joe@example.com", false);
    EXPECT_EQ(s.labels(), QStringList{"cIEObject|Sub NavigateToUrl"});
}

TEST(IEObject, TheWaitEndsWithTheTopDocumentOrAtTheCap) {
    struct Case {
        QStringList completed; // frames reported loaded, in this order
        int capMs;
        bool toTheCap;
    };
    // A frame first: the top document's load is not trusted and the wait runs to the cap.
    const Case cases[] = {
        {{"frame0", "main"}, 400, true},
        {{"main", "frame0"}, 5000, false},
    };
    for (const Case& c : cases) {
        Session s;
        BrowserServices services = s.port.services();
        services.navigateWaitMs = c.capMs;
        cIEObject ie(services);
        ASSERT_TRUE(ie.InitializeObject());
        s.window.completeOnNavigate = c.completed;
        int events = 0;
        QObject::connect(&ie, &cIEObject::DocumentComplete,
                         [&](const DocumentRef&, QString&) { ++events; });
        QElapsedTimer clock;
        clock.start();
        ie.NavigateToUrl("example.com", true);
        EXPECT_EQ(events, c.toTheCap ? c.completed.size() : 1)
            << "the event loop ran while waiting";
        EXPECT_EQ(clock.elapsed() >= c.capMs - 10, c.toTheCap) << clock.elapsed();
        EXPECT_TRUE(s.log.errors.empty());
    }
}

TEST(IEObject, TitleAndTagContentComeFromTheHtml) {
    Session s;
    s.window.top = doc("<head><title>Home</title></head><body><i>one</i></body>");
    EXPECT_EQ(s.ie->GetSiteTitle(true), ">Home");
    EXPECT_EQ(s.ie->GetSiteTitle(false), "Example");
    EXPECT_EQ(s.ie->Get_HtmlTag_Content("<i>", "</i>", ""), QStringList{">one"});
    EXPECT_TRUE(s.log.errors.empty());

    s.window.top = doc("<b>hi</b>"); // shorter than 10 characters: no list at all
    EXPECT_TRUE(s.ie->Get_HtmlTag_Content("<b>", "</b>", "").isEmpty());
    EXPECT_EQ(s.ie->GetSiteTitle(true), "");
    EXPECT_EQ(s.labels(), QStringList{"cIEObject|Function GetSiteTitle"});
}

TEST(IEObject, FailingCallsAreLoggedWithTheirLabels) {
    Session s;
    s.window.failEverything = true;
    s.ie->NavigateToUrl("example.com", false);
    EXPECT_EQ(s.ie->GetBrowserText(), "");
    EXPECT_EQ(s.ie->CopySelection(), "");
    EXPECT_EQ(s.labels(),
              (QStringList{"cIEObject|Sub NavigateToUrl", "cIEObject|Function GetBrowserText",
                           "cIEObject|Function CopySelection"}));
}

TEST(IEObject, BrowserPathIsTheSetPathThenTheSettingThenTheFirstThatExists) {
    const QString dir = test::makeTempDir();
    test::writeFile(dir + "/chrome", "");
    test::writeFile(dir + "/edge", "");
    QDir().mkpath(dir + "/adir");
    Session s(false);
    BrowserServices services = s.port.services();
    services.browserCandidates = {dir + "/missing", dir + "/adir", dir + "/chrome", dir + "/edge"};
    {
        cIEObject ie(services);
        EXPECT_EQ(ie.InternetExplorerPath(), dir + "/chrome");
        ie.setInternetExplorerPath("/no/such/browser");
        EXPECT_EQ(ie.InternetExplorerPath(), "/no/such/browser");
    }
    services.browserPath = "/opt/chromium/chrome";
    EXPECT_EQ(cIEObject(services).InternetExplorerPath(), "/opt/chromium/chrome");
    services.browserPath.clear();
    services.browserCandidates = {dir + "/missing"};
    EXPECT_EQ(cIEObject(services).InternetExplorerPath(), "");
}

TEST(IEObject, LaunchStartsTheBrowserWithItsOwnProfileAndWaitsForIt) {
    Session s(false);
    BrowserServices services = s.launching("/usr/bin/chromium");
    services.launchWaitMs = 2000;
    cIEObject ie(services);
    // The browser answers on the third look after it was started.
    int looksAfterStart = 0;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (!s.launcher.started.empty() && ++looksAfterStart >= 3)
            s.port.connector->browserOpen = true;
    });
    poll.start(10);
    EXPECT_FALSE(ie.GetActiveBrowser(true).isEmpty());
    ASSERT_EQ(s.launcher.started.size(), 1u);
    EXPECT_EQ(s.launcher.started[0].program, "/usr/bin/chromium");
    EXPECT_EQ(s.launcher.started[0].arguments,
              (QStringList{"--remote-debugging-port=9222", "--user-data-dir=" + services.profileDir,
                           "--no-first-run", "--disable-background-networking",
                           "--disable-component-update", "--disable-sync"}));
    EXPECT_TRUE(QDir(services.profileDir).exists());
    EXPECT_TRUE(s.log.errors.empty());
}

TEST(IEObject, LaunchFailuresAreLogged) {
    struct Case {
        QString path;
        bool starts;
        const char* detail;
    } cases[] = {
        {"", true, "Browser Path"},
        {"/usr/bin/chromium", false, "could not be started"},
        {"/usr/bin/chromium", true, "did not answer at 127.0.0.1:9222"},
    };
    for (const Case& c : cases) {
        Session s(false);
        s.launcher.result = c.starts;
        BrowserServices services = s.launching(c.path);
        services.launchWaitMs = 200;
        EXPECT_TRUE(cIEObject(services).GetActiveBrowser(true).isEmpty());
        ASSERT_EQ(s.labels(), QStringList{"cIEObject|Function GetActiveBrowser"});
        EXPECT_TRUE(s.log.errors[0].detail.contains(QString::fromUtf8(c.detail)))
            << s.log.errors[0].detail;
    }
}

} // namespace
