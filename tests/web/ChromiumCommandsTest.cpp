// The browser commands against a real headless Chromium: the batch runner printing a page's
// links, HTML and text, Navigate To Sel, the site-list walk in the window, and a walk that has
// to start its browser first. One browser at a time; every browser started is killed.

#include "ChromiumProcess.h"
#include "SteppedSiteTimer.h"
#include "TestHttpServer.h"
#include "support/Fakes.h"

#include "app/SystemPorts.h"
#include "editor/EditorWindow.h"
#include "editor/MenuTable.h"
#include "editor/PlainTextEditControl.h"
#include "web/BrowserPort.h"
#include "web/CdpConnector.h"
#include "web/Discovery.h"
#include "web/SiteList.h"
#include "web/WaitLoop.h"
#include "web/cIEObject.h"

#include <QAction>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QStatusBar>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;

namespace {

void writeFile(const QString& path, const QByteArray& data) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(data);
}

// The address the browser's first window shows, "" when no browser answers.
QString shownUrl(const Endpoint& endpoint) {
    try {
        const auto pages = listPages(endpoint, 2000);
        return pages && !pages->empty() ? pages->front().url : QString();
    } catch (const std::exception&) {
        return QString();
    }
}

// Waits (the event loop running, so the test's server answers) until the browser shows `url`.
::testing::AssertionResult shows(const Endpoint& endpoint, const QString& url) {
    if (waitUntil([&] { return shownUrl(endpoint) == url; }, 20000, 100))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "the browser shows " << shownUrl(endpoint).toStdString()
                                         << ", not " << url.toStdString();
}

// Shows `url` in the browser at `endpoint` and waits until its page has loaded.
void showPage(const QString& endpoint, const QString& url) {
    test::RecordingLogger log;
    MemoryClipboard clipboard;
    test::FakeLauncher launcher;
    BrowserServices services(log, clipboard, launcher, std::make_shared<CdpConnector>(endpoint));
    services.navigateWaitMs = 15000;
    services.browserCandidates = {};
    cIEObject ie(services);
    ASSERT_TRUE(ie.InitializeObject());
    ie.NavigateToUrl(url, true);
    ASSERT_TRUE(log.errors.empty()) << log.errors[0].detail.toStdString();
}

struct BatchResult {
    int exitCode = -1;
    QString out, err;
};

// Runs the program's batch mode with its settings in a folder of their own, the browser
// endpoint set to `endpoint`.
BatchResult runEditor(const QString& endpoint, const QByteArray& document, QStringList args) {
    const QString dir = test::makeTempDir();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", dir + "/config");
    env.insert("LOGFILES", dir + "/logs");
    auto run = [&](const QStringList& arguments) {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(qEnvironmentVariable("EDITOR_BIN"), arguments);
        BatchResult r;
        if (!p.waitForStarted(30000))
            return r;
        // The event loop keeps running: the test's web server answers meanwhile.
        waitUntil([&] { return p.state() == QProcess::NotRunning; }, 60000, 20);
        if (p.state() != QProcess::NotRunning) {
            p.kill();
            p.waitForFinished(5000);
            return r;
        }
        r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
        r.out = QString::fromUtf8(p.readAllStandardOutput());
        r.err = QString::fromUtf8(p.readAllStandardError());
        return r;
    };
    const QString settingsFile = run({"--settings-path"}).out.trimmed();
    {
        QSettings settings(settingsFile, QSettings::IniFormat);
        settings.setValue("frmEdit/Browser Endpoint", endpoint);
    }
    writeFile(dir + "/doc.txt", document);
    return run(args << dir + "/doc.txt");
}

const QString kLinksPage = "/links.html";

class ChromiumBatch : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        browser_ = std::make_unique<test::ChromiumProcess>();
        server_ = std::make_unique<test::TestHttpServer>();
        server_->serve(kLinksPage, "<html><head><title>Links</title></head><body>"
                                   "<a href=\"http://one.example/x\">one</a> "
                                   "<a href=\"mailto:joe@example.com\">mail</a> "
                                   "<a href=\"http://files.example/a.pdf\">pdf</a> "
                                   "<a href=\"http://files.example/a.htm\">htm</a></body></html>");
        server_->serve("/target.html", "<html><body>Target</body></html>");
        server_->serve("/select.html",
                       ("<html><body><p>Go to <span id=\"pick\">" + server_->url("/target.html") +
                        "</span></p><script>const r = document.createRange(); "
                        "r.selectNodeContents(document.getElementById('pick')); "
                        "getSelection().addRange(r);</script></body></html>")
                           .toUtf8());
    }
    static void TearDownTestSuite() {
        browser_.reset();
        server_.reset();
    }
    void SetUp() override {
        ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
        if (!browser_->problem().isEmpty())
            GTEST_SKIP() << browser_->problem().toStdString();
        showPage(browser_->endpointText(), server_->url(kLinksPage));
    }
    BatchResult run(const QStringList& args, const QByteArray& document = QByteArray()) {
        return runEditor(browser_->endpointText(), document, args);
    }

    static std::unique_ptr<test::ChromiumProcess> browser_;
    static std::unique_ptr<test::TestHttpServer> server_;
};

std::unique_ptr<test::ChromiumProcess> ChromiumBatch::browser_;
std::unique_ptr<test::TestHttpServer> ChromiumBatch::server_;

TEST_F(ChromiumBatch, LinksArePrintedOneALineWithAnEmptyLineForTheMailLink) {
    const BatchResult r = run({"--apply", "GetBrowserLinks"});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    // Inserted into the empty document, then the line break InsertText puts after it; an
    // empty document has no line-break style of its own, so the lines end in CR LF.
    EXPECT_EQ(r.out, "http://one.example/x\r\n\r\nhttp://files.example/a.pdf\r\n"
                     "http://files.example/a.htm\r\n\r\n");
    EXPECT_EQ(r.err, "");
}

TEST_F(ChromiumBatch, LinksConditionallyKeepTheLinksThatContainTheAnswer) {
    const BatchResult r = run({"--apply", "GetBrowserLinksConditional", "--answer", "PDF"});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "http://files.example/a.pdf\r\n\r\n");
}

TEST_F(ChromiumBatch, HtmlAndTextOfThePageAreInserted) {
    const BatchResult r =
        run({"--apply", "GetBrowserText", "--apply", "GetBrowserHtml"}, "end of document\n");
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    // Each went in at the start of the document, the last one first.
    EXPECT_TRUE(r.out.startsWith("<head><title>Links</title></head><body>")) << r.out.toStdString();
    EXPECT_TRUE(r.out.contains("</body>\none mail pdf htm\nend of document\n"))
        << r.out.toStdString();
}

TEST_F(ChromiumBatch, NavigateToSelSendsTheBrowserToTheSelectedAddress) {
    showPage(browser_->endpointText(), server_->url("/select.html"));
    const BatchResult r = run({"--apply", "NavigateToSel"}, "untouched\n");
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "untouched\n");
    EXPECT_TRUE(shows(browser_->endpoint(), server_->url("/target.html")));
}

TEST(BrowserBatch, WithoutABrowserTheStatusSaysWhereItLooked) {
    ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
    const QString endpoint = QStringLiteral("127.0.0.1:%1").arg(test::freeLoopbackPort());
    const BatchResult r = runEditor(endpoint, "abc\n", {"--apply", "GetBrowserHtml", "--report"});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "\nabc\n");
    EXPECT_TRUE(r.err.contains("status: no browser found at " + endpoint + "; start one with "))
        << r.err.toStdString();
}

// The window walking a site list in the test's browser.
class ChromiumSiteListWindow : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        browser_ = std::make_unique<test::ChromiumProcess>();
        server_ = std::make_unique<test::TestHttpServer>();
        for (const char* page : {"/start.html", "/1.html", "/2.html", "/3.html", "/4.html"})
            server_->serve(page, QByteArray("<html><body>Page ") + page + "</body></html>");
    }
    static void TearDownTestSuite() {
        browser_.reset();
        server_.reset();
    }
    void SetUp() override {
        if (!browser_->problem().isEmpty())
            GTEST_SKIP() << browser_->problem().toStdString();
        runStartUp(startUp_, dir_ + "/bin/Editor", {});
        window_ = std::make_unique<EditorWindow>(startUp_);
        window_->setDialogs(&dialogs_);
        window_->load();
        window_->context().settings.save(browserSettingsSection(), browserEndpointKey(),
                                         browser_->endpointText());
        showPage(browser_->endpointText(), server_->url("/start.html"));
    }

    QString url(int page) const { return server_->url(QStringLiteral("/%1.html").arg(page)); }
    void click(const char* item) { window_->menuState().action(item)->trigger(); }
    bool enabled(const char* item) { return window_->menuState().isEnabled(item); }
    SiteListState& walk() { return *window_->context().siteList; }
    QString selected() { return window_->editControl().selText(); }
    ::testing::AssertionResult shows(int page) { return ::shows(browser_->endpoint(), url(page)); }

    static std::unique_ptr<test::ChromiumProcess> browser_;
    static std::unique_ptr<test::TestHttpServer> server_;
    QString dir_ = test::makeTempDir();
    StartUpState startUp_;
    test::FakeDialogs dialogs_;
    std::unique_ptr<EditorWindow> window_;
};

std::unique_ptr<test::ChromiumProcess> ChromiumSiteListWindow::browser_;
std::unique_ptr<test::TestHttpServer> ChromiumSiteListWindow::server_;

TEST_F(ChromiumSiteListWindow, ThreeLinesAreVisitedInOrderThenTheWalkEnds) {
    window_->editControl().setText(url(1) + "\r\n" + url(2) + "\r\n" + url(3) + "\r\n");
    click("mnuNavigateSiteList");
    EXPECT_TRUE(shows(1));
    EXPECT_TRUE(selected().startsWith(url(1) + "\r")) << selected().toStdString();
    EXPECT_TRUE(walk().tmrSiteList->enabled());
    EXPECT_TRUE(enabled("mnuPause") && enabled("mnuNextItem") && enabled("mnuChangeTiming"));
    walk().tmrSiteList->fire();
    EXPECT_TRUE(shows(2));
    walk().tmrSiteList->fire();
    EXPECT_TRUE(shows(3));
    EXPECT_TRUE(selected().startsWith(url(3) + "\r")) << selected().toStdString();
    EXPECT_FALSE(walk().tmrSiteList->enabled());
    EXPECT_FALSE(enabled("mnuPause") || enabled("mnuNextItem") || enabled("mnuChangeTiming"));
    EXPECT_EQ(walk().mlSiteIndex, 0);
}

TEST_F(ChromiumSiteListWindow, WithoutAFinalLineBreakTheLastLineIsLeftOut) {
    window_->editControl().setText(url(1) + "\r\n" + url(2) + "\r\n" + url(3));
    click("mnuNavigateSiteList");
    EXPECT_TRUE(shows(1));
    walk().tmrSiteList->fire();
    EXPECT_TRUE(shows(2));
    EXPECT_FALSE(walk().tmrSiteList->enabled());
    EXPECT_FALSE(enabled("mnuNextItem"));
    EXPECT_EQ(walk().mlSiteIndex, 0);
}

TEST_F(ChromiumSiteListWindow, TheTimerWalksPauseStopsItAndNextItemSteps) {
    window_->editControl().setText(url(1) + "\r\n" + url(2) + "\r\n" + url(3) + "\r\n" + url(4) +
                                   "\r\n");
    click("mnuNavigateSiteList");
    EXPECT_TRUE(shows(1));
    dialogs_.answers = {"1500"};
    click("mnuChangeTiming");
    EXPECT_EQ(dialogs_.prompts.back().defaultAnswer, "32235");
    // The window's own timer takes the walk on.
    EXPECT_TRUE(shows(2));
    click("mnuPause");
    EXPECT_TRUE(window_->menuState().isChecked("mnuPause"));
    EXPECT_FALSE(walk().tmrSiteList->enabled());
    const qint32 pausedAt = walk().mlSiteIndex;
    click("mnuPause");
    EXPECT_FALSE(window_->menuState().isChecked("mnuPause"));
    EXPECT_FALSE(walk().tmrSiteList->enabled());
    click("mnuNextItem");
    EXPECT_EQ(walk().mlSiteIndex, pausedAt + 1);
    EXPECT_TRUE(shows(pausedAt + 1));
    EXPECT_TRUE(window_->statusBar()->currentMessage().isEmpty());
}

// Kills the browser the walk started, from the pid its start script noted.
struct StartedBrowser {
    QString pidFile;
    ~StartedBrowser() {
        QFile f(pidFile);
        if (f.open(QIODevice::ReadOnly))
            test::killProcessGroupOf(f.readAll().trimmed().toLongLong());
    }
};

class CountingLauncher : public ProcessLauncher {
public:
    std::vector<QStringList> started;
    bool startDetached(const QString& program, const QStringList& arguments) override {
        started.push_back(arguments);
        return ProcessLauncher::startDetached(program, arguments);
    }
};

TEST(ChromiumSiteListLaunch, WithoutABrowserTheWalkStartsOneAndTheNextTickNavigatesIt) {
    if (!QFileInfo(test::testChromiumPath()).isExecutable())
        GTEST_SKIP() << "no Chromium";
    test::TestHttpServer server;
    server.serve("/1.html", "<html><body>One</body></html>");
    server.serve("/2.html", "<html><body>Two</body></html>");
    const QString dir = test::makeTempDir();
    StartedBrowser started{dir + "/pid"};
    const QString script = dir + "/browser.sh";
    writeFile(script,
              ("#!/bin/sh\necho $$ > '" + started.pidFile + "'\nexec '" + test::testChromiumPath() +
               "' " + test::headlessArguments().join(' ') + " \"$@\" 2>/dev/null\n")
                  .toUtf8());
    QFile::setPermissions(script, QFileDevice::ReadOwner | QFileDevice::ExeOwner);

    test::Harness h(server.url("/1.html") + "\r\n" + server.url("/2.html") + "\r\n" +
                    server.url("/1.html") + "\r\n");
    const Endpoint endpoint{"127.0.0.1", test::freeLoopbackPort()};
    h.setSetting("frmEdit", "Browser Endpoint", endpoint.text());
    h.setSetting("frmEdit", "Browser Path", script);
    CountingLauncher launcher;
    DevToolsBrowserPort port(AppSettings(h.settings, h.startUp.RegKeyAppName), h.log, h.clipboard,
                             launcher);
    port.profileDir = dir + "/profile";
    SiteListState walk(std::make_unique<test::SteppedSiteTimer>());
    CommandContext ctx(h.edit, h.dialogs, h.clipboard,
                       AppSettings(h.settings, h.startUp.RegKeyAppName), h.log, h.clock, launcher,
                       h.menu, h.util, h.form, h.window, h.startUp);
    ctx.browser = &port;
    ctx.siteList = &walk;

    runMenuItem(*findMenuItem("mnuNavigateSiteList"), ctx);
    ASSERT_EQ(launcher.started.size(), 1u);
    EXPECT_EQ(launcher.started[0].last(), server.url("/1.html"));
    EXPECT_TRUE(launcher.started[0].contains(
        QStringLiteral("--remote-debugging-port=%1").arg(endpoint.port)));
    EXPECT_TRUE(shows(endpoint, server.url("/1.html")));

    runMenuItem(*findMenuItem("mnuNextItem"), ctx);
    EXPECT_EQ(launcher.started.size(), 1u) << "the running browser is used";
    EXPECT_TRUE(shows(endpoint, server.url("/2.html")));
    EXPECT_TRUE(h.log.errors.empty()) << h.log.errors[0].detail.toStdString();
}

} // namespace
