// The browser session and the browser commands against a real headless Chromium, each way the
// program talks to it once: reading a page, every frame's load reported, harvesting addresses
// and numbers from a page and its frames of other sites, a browser killed during a wait, the
// batch runner, a site-list walk that starts its browser first, and the Web menu. All suites named
// Chromium* run in one process.

#include "ChromiumProcess.h"
#include "SteppedSiteTimer.h"
#include "TestHttpServer.h"
#include "support/Fakes.h"

#include "editor/MenuTable.h"
#include "web/BrowserPort.h"
#include "web/CdpConnector.h"
#include "web/Discovery.h"
#include "web/SiteList.h"
#include "web/WaitLoop.h"
#include "web/cIEObject.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>
#include <deque>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;

namespace {

// What the browser's first window shows; "" when it does not answer.
QString shownUrl(const Endpoint& endpoint) {
    try {
        const auto pages = listPages(endpoint, 2000);
        return pages && !pages->empty() ? pages->front().url : QString();
    } catch (const std::exception&) {
        return {};
    }
}

// Waits, the event loop running, until the browser's first window shows `url`.
::testing::AssertionResult shows(const Endpoint& endpoint, const QString& url) {
    QString shown;
    if (waitUntil([&] { return (shown = shownUrl(endpoint)) == url; }, 20000, 100))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "the browser shows " << shown << ", not " << url;
}

struct Ports {
    test::RecordingLogger log;
    MemoryClipboard clipboard;
    test::FakeLauncher launcher;
};

BrowserServices servicesFor(Ports& p, const QString& endpoint) {
    BrowserServices services(p.log, p.clipboard, p.launcher,
                             std::make_shared<CdpConnector>(endpoint));
    services.navigateWaitMs = 15000;
    services.browserCandidates = {};
    return services;
}

// A command harness whose browser port talks to the browser at `endpoint`.
struct WebHarness {
    explicit WebHarness(const QString& endpoint) {
        h.setSetting("frmEdit", "Browser Endpoint", endpoint);
        port.browserCandidates = {};
        h.ctx.browser = &port;
        h.ctx.fileDialogs = &files;
    }
    ~WebHarness() {
        for (const auto& e : h.log.errors)
            ADD_FAILURE() << e.location << ": " << e.detail;
    }
    test::Harness h;
    DevToolsBrowserPort port{AppSettings(h.settings, h.startUp.RegKeyAppName), h.log, h.clipboard,
                             h.launcher};
    test::FakeFileDialogs files;
};

// One browser and one site for each suite.
class ChromiumSession : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        browser_ = std::make_unique<test::ChromiumProcess>();
        server_ = std::make_unique<test::TestHttpServer>();
        test::TestHttpServer& s = *server_;
        s.serve("/plain.html", "<html><head><title>Home</title></head><body><p>Plain "
                               "page</p></body></html>");
        s.serve("/a.html", "<html><body>Frame A</body></html>");
        s.serve("/b.html", "<html><body>Frame B</body></html>");
        s.serve("/two.html", ("<html><body>Two <iframe src=\"a.html\"></iframe><iframe src=\"" +
                              s.otherSiteUrl("/b.html") + "\"></iframe></body></html>")
                                 .toUtf8());
        s.serve("/links.html", "<html><head><title>Links</title></head><body>"
                               "<a href=\"http://one.example/x\">one</a> "
                               "<a href=\"mailto:joe@example.com\">mail</a> "
                               "<a href=\"http://files.example/a.pdf\">pdf</a></body></html>");
        s.serve("/select.html",
                ("<html><body><p>Go to <span id=\"pick\">" + s.url("/plain.html") +
                 "</span></p><script>const r = document.createRange(); r.selectNodeContents("
                 "document.getElementById('pick')); getSelection().addRange(r);</script>"
                 "</body></html>")
                    .toUtf8());
        // Addresses in text, in mailto: links and in a frame of another site with a frame of
        // its own; hidden text is not harvested.
        s.serve("/contacts.html",
                ("<html><body><h1>Contacts</h1>"
                 "<p>Write to Sales@Example.com or support@example.org.</p>"
                 "<a href=\"mailto:first@example.com,second%40example.net?subject=Hi%20there\">"
                 "mail us</a> <a href=\"mailto:%46IRST@example.com\">again</a> "
                 "<p>Call (212) 555-0142 or +44 20 7946 0958. Fax: 212-555-0199</p>"
                 "<p style=\"display:none\">hidden@example.com 415-555-0100</p>"
                 "<iframe src=\"" +
                 s.otherSiteUrl("/frame.html") + "\"></iframe></body></html>")
                    .toUtf8());
        s.serve("/frame.html", ("<html><body><p>Frame: frame@example.org, +33 1 42 68 53 00</p>"
                                "<iframe src=\"" +
                                s.url("/nested.html") + "\"></iframe></body></html>")
                                   .toUtf8());
        s.serve("/nested.html", "<html><body>Nested: deep@example.net 1-415-555-2671"
                                "</body></html>");
    }
    static void TearDownTestSuite() {
        browser_.reset();
        server_.reset();
    }

    void SetUp() override {
        if (!browser_->problem().isEmpty())
            GTEST_SKIP() << browser_->problem().toStdString();
        ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
        ie_ = std::make_unique<cIEObject>(servicesFor(ports_, endpoint()));
        ASSERT_TRUE(ie_->InitializeObject());
    }
    void TearDown() override {
        for (const auto& e : ports_.log.errors)
            ADD_FAILURE() << e.location << ": " << e.detail;
    }

    QString url(const QString& path) const { return server_->url(path); }
    QString endpoint() const { return browser_->endpointText(); }
    void load(const QString& path) { ASSERT_TRUE(test::loadPage(*ie_, url(path))); }
    test::EditorRun batch(const QStringList& args, const QByteArray& document = {}) const {
        return test::runEditorBatch(args, document, {{"frmEdit/Browser Endpoint", endpoint()}});
    }

    inline static std::unique_ptr<test::ChromiumProcess> browser_;
    inline static std::unique_ptr<test::TestHttpServer> server_;
    Ports ports_;
    std::unique_ptr<cIEObject> ie_;
};

TEST_F(ChromiumSession, APageWithoutFramesIsReadOnceItHasLoaded) {
    QElapsedTimer clock;
    clock.start();
    ie_->NavigateToUrl(url("/plain.html"), true);
    EXPECT_LT(clock.elapsed(), 10000) << "the wait ends with the page's own load";
    EXPECT_EQ(ie_->GetBrowserHTML(),
              "<head><title>Home</title></head><body><p>Plain page</p></body>");
    EXPECT_EQ(ie_->GetBrowserText(), "Plain page");
    EXPECT_EQ(ie_->GetSiteTitle(false), "Home");
    EXPECT_EQ(ie_->GetSiteUrl(), url("/plain.html"));
}

TEST_F(ChromiumSession, EveryFrameReportsItsOwnUrlWhenComplete) {
    QStringList urls;
    const auto c = QObject::connect(ie_.get(), &cIEObject::DocumentComplete,
                                    [&](const DocumentRef&, QString& u) { urls << u; });
    load("/two.html");
    const QStringList expected = {url("/two.html"), url("/a.html"),
                                  server_->otherSiteUrl("/b.html")};
    // A frame of another site may finish after the top document on a busy machine.
    auto all = [&] {
        return std::all_of(expected.begin(), expected.end(),
                           [&](const QString& u) { return urls.contains(u); });
    };
    waitUntil(all, 10000, 50);
    QObject::disconnect(c);
    for (const QString& u : expected)
        EXPECT_TRUE(urls.contains(u)) << u << " not in " << urls.join(' ');
}

TEST_F(ChromiumSession, TheBatchRunnerReadsLinksSavesThePageAndFollowsTheSelection) {
    load("/links.html");
    const test::EditorRun links = batch({"--apply", "GetBrowserLinks"});
    EXPECT_EQ(links.exitCode, 0) << links.report.join('\n');
    EXPECT_EQ(links.out, "http://one.example/x\r\n\r\nhttp://files.example/a.pdf\r\n\r\n");
    const QString saved = test::makeTempDir() + "/links.html";
    const test::EditorRun save = batch({"--apply", "SaveWebPage", "--answer", saved});
    EXPECT_EQ(save.exitCode, 0) << save.report.join('\n');
    EXPECT_TRUE(test::readFile(saved).contains("<a href=\"http://one.example/x\">one</a>"));

    load("/select.html");
    const test::EditorRun go = batch({"--apply", "NavigateToSel"}, "untouched\n");
    EXPECT_EQ(go.exitCode, 0) << go.report.join('\n');
    EXPECT_EQ(go.out, "untouched\n");
    EXPECT_TRUE(shows(browser_->endpoint(), url("/plain.html")));
}

TEST_F(ChromiumSession, TheWebMenuSendsTheBrowserAndSavesItsPageAsAnArchive) {
    server_->serve("/search.html", "<html><body>Results</body></html>");
    WebHarness w(endpoint());
    w.h.setSetting("frmEdit", "Web Search Url", url("/search.html?q=%s"));
    w.h.dialogs.answers = {url("/plain.html").mid(7)}; // without "http://"
    w.h.run("mnuNaviagetTo");
    EXPECT_TRUE(shows(browser_->endpoint(), url("/plain.html")));
    w.h.dialogs.answers = {"café & co"};
    w.h.run("mnuSearchGoogle");
    EXPECT_TRUE(shows(browser_->endpoint(), url("/search.html?q=caf%C3%A9%20%26%20co")));
    EXPECT_TRUE(w.h.launcher.started.empty() && w.h.launcher.opened.isEmpty());

    load("/plain.html");
    const QString file = test::makeTempDir() + "/home.mhtml";
    w.files.saveAnswers.push_back({file, 1});
    w.h.run("mnuSaveWebPage");
    ASSERT_EQ(w.files.requests.size(), 1u);
    EXPECT_EQ(w.files.requests[0].fileName, "Home"); // proposed under the page's title
    const QByteArray saved = test::readFile(file);
    EXPECT_TRUE(saved.contains("Snapshot-Content-Location: " + url("/plain.html").toUtf8()));
    EXPECT_TRUE(saved.contains("Plain page"));
    EXPECT_EQ(w.h.window.statuses,
              QStringList{QStringLiteral("Saved %1 (%2 bytes)").arg(file).arg(saved.size())});
}

using ChromiumHarvest = ChromiumSession;

TEST_F(ChromiumHarvest, ThePageAndEveryFrameAreHarvested) {
    load("/contacts.html"); // the top document completes once its frames have loaded
    const test::EditorRun email = batch({"--apply", "GetBrowserEmail"});
    EXPECT_EQ(email.exitCode, 0) << email.report.join('\n');
    EXPECT_EQ(email.out, "first@example.com\r\nsecond@example.net\r\nSales@Example.com\r\n"
                         "support@example.org\r\nframe@example.org\r\ndeep@example.net\r\n\r\n");

    const struct {
        const char* item;
        std::deque<QString> answers;
        QString inserted;
    } cases[] = {
        {"mnuGetPhoneNumbers",
         {},
         "(212) 555-0142\tNew York, NY\r\n+44 20 7946 0958\tLondon\r\n"
         "+33 1 42 68 53 00\tParis\r\n(415) 555-2671\tSan Francisco, CA\r\n"},
        {"mnuGetFaxNumbers", {}, "(212) 555-0199\tNew York, NY\r\n"},
        {"mnuAnyTagContent", {"<H1>", "</h1>"}, ">Contacts\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.item);
        WebHarness w(endpoint());
        w.h.dialogs.answers = c.answers;
        w.h.run(c.item);
        // On an empty document InsertText puts a line break after the text.
        EXPECT_EQ(w.h.edit.text(), c.inserted + "\r\n");
    }
}

TEST(ChromiumKilled, KillingTheBrowserEndsTheWaitAndIsLogged) {
    test::ChromiumProcess browser;
    if (!browser.problem().isEmpty())
        GTEST_SKIP() << browser.problem().toStdString();
    test::TestHttpServer server;
    test::TestHttpServer::Answer never;
    never.never = true;
    server.serve("/slow.html", never);
    Ports ports;
    cIEObject ie(servicesFor(ports, browser.endpointText()));
    ASSERT_TRUE(ie.InitializeObject());
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        if (server.requestsFor("/slow.html") > 0 && ++ticks == 5)
            browser.kill();
    });
    ticker.start(20);
    QElapsedTimer clock;
    clock.start();
    ie.NavigateToUrl(server.url("/slow.html"), true);
    EXPECT_LT(clock.elapsed(), 10000);
    EXPECT_GE(ticks, 5) << "the event loop kept running during the wait";
    ASSERT_EQ(ports.log.errors.size(), 1u);
    EXPECT_EQ(ports.log.errors[0].location, "Sub NavigateToUrl");
    EXPECT_TRUE(ports.log.errors[0].detail.contains("went away")) << ports.log.errors[0].detail;
}

// A site-list walk over the harness's document with a browser port whose launcher starts the
// test Chromium at a free loopback endpoint.
struct SiteWalk {
    SiteWalk(test::Harness& h, const QString& profileDir)
        : endpoint(configure(h)), settings(h.settings, h.startUp.RegKeyAppName),
          port(settings, h.log, h.clipboard, launcher),
          walk(std::make_unique<test::SteppedSiteTimer>()),
          ctx(h.edit, h.dialogs, h.clipboard, settings, h.log, h.clock, launcher, h.menu, h.util,
              h.form, h.window, h.startUp) {
        port.profileDir = profileDir;
        ctx.browser = &port;
        ctx.siteList = &walk;
    }
    static Endpoint configure(test::Harness& h) {
        const Endpoint e{"127.0.0.1", test::freeLoopbackPort()};
        h.setSetting("frmEdit", "Browser Endpoint", e.text());
        h.setSetting("frmEdit", "Browser Path", test::testChromiumPath());
        return e;
    }
    void run(const char* item) { runMenuItem(*findMenuItem(item), ctx); }
    const Endpoint endpoint;
    const AppSettings settings;
    test::HeadlessLauncher launcher;
    DevToolsBrowserPort port;
    SiteListState walk;
    CommandContext ctx;
};

// A site-list line written as a browser switch reaches the browser the walk starts as an address:
// the switch would make the browser run a script before each page's renderer.
TEST(ChromiumSiteListLaunch, ALineWrittenAsASwitchArrivesAsAnAddress) {
    if (!QFileInfo(test::testChromiumPath()).isExecutable())
        GTEST_SKIP() << "no Chromium";
    const QString dir = test::makeTempDir();
    const QString script = dir + "/prefix.sh";
    const QString marker = dir + "/ran";
    test::writeFile(script, "#!/bin/sh\ntouch '" + marker.toUtf8() + "'\nexec \"$@\"\n");
    QFile::setPermissions(script, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const QString line = "--renderer-cmd-prefix=" + script;
    test::Harness h(line + "\r\n--user-data-dir=" + dir + "/other\r\n");
    SiteWalk w(h, dir + "/profile");

    w.run("mnuNavigateSiteList");
    ASSERT_EQ(w.launcher.started.size(), 1u);
    EXPECT_EQ(w.launcher.started[0].last(), "http://" + line);
    // The browser answers and has rendered its first page (renderers are started by then).
    QString shown;
    EXPECT_TRUE(waitUntil([&] { return !(shown = shownUrl(w.endpoint)).isEmpty(); }, 30000, 100));
    waitUntil([] { return false; }, 2000);
    EXPECT_FALSE(QFileInfo::exists(marker))
        << "the line became a switch; the browser shows " << shown;
    EXPECT_FALSE(QFileInfo::exists(dir + "/other"));
    EXPECT_TRUE(h.log.errors.empty()) << h.log.errors[0].detail;
}

} // namespace
