// The session object's own logic over a scripted browser: the wait, the title and tag contents,
// the browser program and its launch.

#include "FakeBrowser.h"
#include "support/Fakes.h"
#include "web/cIEObject.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;

namespace {

struct Session {
    test::RecordingLogger log;
    MemoryClipboard clipboard;
    test::FakeLauncher launcher;
    test::FakeBrowserPort port{log, clipboard, launcher};
    test::FakeBrowserWindow& window = *port.connector->window;

    // Services of a session that has to start its browser: none answers until the test says so.
    BrowserServices launching(const QString& path, int waitMs) {
        port.connector->browserOpen = false;
        BrowserServices services = port.services();
        services.browserPath = path;
        services.launchWaitMs = waitMs;
        return services;
    }
    QStringList labels() const {
        QStringList out;
        for (const auto& e : log.errors)
            out << e.module + u'|' + e.location;
        return out;
    }
};

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
    cIEObject ie(s.port.services());
    ASSERT_TRUE(ie.InitializeObject());
    s.window.top.html = "<head><title>Home</title></head><body><i>one</i></body>";
    EXPECT_EQ(ie.GetSiteTitle(true), ">Home");
    EXPECT_EQ(ie.GetSiteTitle(false), "Example");
    EXPECT_EQ(ie.Get_HtmlTag_Content("<i>", "</i>", ""), QStringList{">one"});
    EXPECT_TRUE(s.log.errors.empty());

    s.window.top.html = "<b>hi</b>"; // shorter than 10 characters: no list at all
    EXPECT_TRUE(ie.Get_HtmlTag_Content("<b>", "</b>", "").isEmpty());
    EXPECT_EQ(ie.GetSiteTitle(true), "");
    EXPECT_EQ(s.labels(), QStringList{"cIEObject|Function GetSiteTitle"});
}

TEST(IEObject, BrowserPathIsTheSetPathThenTheSettingThenTheFirstThatExists) {
    const QString dir = test::makeTempDir();
    test::writeFile(dir + "/chrome", "");
    test::writeFile(dir + "/edge", "");
    QDir().mkpath(dir + "/adir");
    Session s;
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
    Session s;
    const BrowserServices services = s.launching("/usr/bin/chromium", 2000);
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
        Session s;
        s.launcher.result = c.starts;
        EXPECT_TRUE(cIEObject(s.launching(c.path, 200)).GetActiveBrowser(true).isEmpty());
        ASSERT_EQ(s.labels(), QStringList{"cIEObject|Function GetActiveBrowser"});
        EXPECT_TRUE(s.log.errors[0].detail.contains(QString::fromUtf8(c.detail)))
            << s.log.errors[0].detail;
    }
}

} // namespace
