// The browser session against a real headless Chromium: pages with and without frames (from
// the same site, another site and local files), links, title, selection, window bounds, new and
// closed windows, a browser killed during a wait, and a browser the session starts itself.
// One browser per suite; all suites named Chromium* run in one process, one after another.

#include "ChromiumProcess.h"
#include "TestHttpServer.h"
#include "support/Fakes.h"

#include "app/SystemPorts.h"
#include "web/CdpClient.h"
#include "web/CdpConnector.h"
#include "web/Discovery.h"
#include "web/WaitLoop.h"
#include "web/WebSocketTransport.h"
#include "web/cIEObject.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;

namespace {

const QByteArray kFrameA = "<html><head></head><body>Frame A <a href=\"http://a1.example/\">1</a>"
                           "<a href=\"http://a2.example/\">2</a></body></html>";
const QByteArray kFrameB = "<html><head></head><body>Frame B <a href=\"http://b1.example/\">1</a>"
                           "</body></html>";
const QByteArray kFrameC = "<html><head></head><body>Frame C</body></html>";

QString innerHtml(const QByteArray& page) {
    QString s = QString::fromUtf8(page);
    return s.mid(6, s.size() - 6 - 7); // without <html> and </html>
}

void writeFile(const QString& path, const QByteArray& data) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(data);
}

// HTTP request to the endpoint: "PUT /json/new?..." opens a window, "/json/close/<id>" closes one.
void endpointRequest(const Endpoint& endpoint, const QString& pathAndQuery, bool put) {
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy::NoProxy);
    QUrl url = endpoint.httpUrl(QString());
    url.setPath(pathAndQuery.section(u'?', 0, 0));
    if (pathAndQuery.contains(u'?'))
        url.setQuery(pathAndQuery.section(u'?', 1));
    QNetworkRequest request(url);
    std::unique_ptr<QNetworkReply> reply(put ? manager.put(request, QByteArray())
                                             : manager.get(request));
    waitUntil([&] { return reply->isFinished(); }, 5000);
}

struct SessionServices {
    test::RecordingLogger log;
    MemoryClipboard clipboard;
    test::FakeLauncher launcher;
};

BrowserServices servicesFor(SessionServices& s, const QString& endpoint) {
    BrowserServices services(s.log, s.clipboard, s.launcher,
                             std::make_shared<CdpConnector>(endpoint));
    services.navigateWaitMs = 15000;
    services.browserCandidates = {};
    return services;
}

// Navigates and waits until the top document has loaded, whatever its frames do first.
void load(cIEObject& ie, const QString& url) {
    const QString main = ie.browser().targetId;
    const auto c =
        QObject::connect(&ie, &cIEObject::DocumentComplete, [&](const DocumentRef& d, QString&) {
            if (d.frameId == main)
                ie.CancelWait();
        });
    ie.NavigateToUrl(url, true);
    QObject::disconnect(c);
}

class ChromiumSession : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        browser_ = std::make_unique<test::ChromiumProcess>();
        server_ = std::make_unique<test::TestHttpServer>();
        files_ = std::make_unique<QTemporaryDir>();
        test::TestHttpServer& s = *server_;
        s.serve("/plain.html", "<html><head><title>Home</title></head><body><p>Plain "
                               "page</p></body></html>");
        s.serve("/a.html", kFrameA);
        s.serve("/b.html", kFrameB);
        s.serve("/c.html", kFrameC);
        s.serve("/one.html", "<html><body>One <iframe src=\"a.html\"></iframe></body></html>");
        s.serve("/two.html", ("<html><body>Two <iframe src=\"a.html\"></iframe><iframe src=\"" +
                              s.otherSiteUrl("/b.html") + "\"></iframe></body></html>")
                                 .toUtf8());
        s.serve("/three.html", "<html><body><a href=\"http://top.example/\">top</a>"
                               "<iframe src=\"a.html\"></iframe><iframe src=\"b.html\"></iframe>"
                               "<iframe src=\"c.html\"></iframe></body></html>");
        s.serve("/frameset.html", ("<html><frameset cols=\"50%,50%\"><frame src=\"a.html\">"
                                   "<frame src=\"" +
                                   s.otherSiteUrl("/b.html") + "\"></frameset></html>")
                                      .toUtf8());
        s.serve("/links.html", "<html><head><title>Links</title></head><body>"
                               "<a href=\"http://one.example/x\">one</a> "
                               "<a href=\"mailto:joe@example.com\">mail</a> "
                               "<a href=\"https://three.example/y.pdf\">three</a></body></html>");
        s.serve("/select.html",
                "<html><body><p>Some <span id=\"pick\">picked words</span> here</p><script>"
                "const r = document.createRange(); r.selectNodeContents("
                "document.getElementById('pick')); getSelection().addRange(r);"
                "</script></body></html>");
        test::TestHttpServer::Answer never;
        never.never = true;
        s.serve("/slow.html", never);

        const QString dir = files_->path();
        writeFile(dir + "/a.html", kFrameA);
        writeFile(dir + "/b.html", kFrameB);
        writeFile(dir + "/index.html", "<html><body><iframe src=\"a.html\"></iframe>"
                                       "<iframe src=\"b.html\"></iframe></body></html>");
    }
    static void TearDownTestSuite() {
        browser_.reset();
        server_.reset();
        files_.reset();
    }

    void SetUp() override {
        if (!browser_->problem().isEmpty())
            GTEST_SKIP() << browser_->problem().toStdString();
        // A test may have closed the window; the others need one.
        const auto pages = listPages(browser_->endpoint(), 3000);
        if (!pages || pages->empty())
            endpointRequest(browser_->endpoint(), "/json/new?about:blank", true);
        ie_ = std::make_unique<cIEObject>(servicesFor(ports_, browser_->endpointText()));
        ASSERT_TRUE(ie_->InitializeObject());
    }

    QString url(const QString& path) const { return server_->url(path); }
    QStringList logged() const {
        QStringList out;
        for (const auto& e : ports_.log.errors)
            out << e.location + ": " + e.detail;
        return out;
    }

    static std::unique_ptr<test::ChromiumProcess> browser_;
    static std::unique_ptr<test::TestHttpServer> server_;
    static std::unique_ptr<QTemporaryDir> files_;
    SessionServices ports_;
    std::unique_ptr<cIEObject> ie_;
};

std::unique_ptr<test::ChromiumProcess> ChromiumSession::browser_;
std::unique_ptr<test::TestHttpServer> ChromiumSession::server_;
std::unique_ptr<QTemporaryDir> ChromiumSession::files_;

TEST_F(ChromiumSession, PageWithoutFramesWaitsForItsOwnLoad) {
    QElapsedTimer clock;
    clock.start();
    ie_->NavigateToUrl(url("/plain.html"), true);
    EXPECT_LT(clock.elapsed(), 10000);
    EXPECT_EQ(ie_->FrameCount(), -1);
    const QString html = ie_->GetBrowserHTML();
    EXPECT_EQ(html, "<head><title>Home</title></head><body><p>Plain page</p></body>");
    EXPECT_EQ(ie_->GetHTMLFromAllFrames(), html);
    EXPECT_EQ(ie_->GetTextFromAllFrames(), "Plain page");
    EXPECT_TRUE(ie_->GetFrame(0).isEmpty());
    EXPECT_EQ(ie_->GetSiteTitle(true), ">Home");
    EXPECT_EQ(ie_->GetSiteTitle(false), "Home");
    EXPECT_EQ(ie_->GetSiteUrl(), url("/plain.html"));
    EXPECT_EQ(ie_->Get_HtmlTag_Content("<p>", "</p>", ""), QStringList{">Plain page"});
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, OneFrameIsReadFromTheTopDocument) {
    load(*ie_, url("/one.html"));
    EXPECT_EQ(ie_->FrameCount(), 0);
    EXPECT_TRUE(ie_->GetFrame(0).isEmpty());
    const QString all = ie_->GetHTMLFromAllFrames();
    EXPECT_TRUE(all.contains("<iframe src=\"a.html\"></iframe>")) << all.toStdString();
    EXPECT_EQ(all, ie_->GetBrowserHTML());
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, TwoFramesOfTwoSitesAreJoinedWithNothingBetween) {
    load(*ie_, url("/two.html"));
    EXPECT_EQ(ie_->FrameCount(), 1);
    EXPECT_EQ(ie_->GetHTMLFromAllFrames(), innerHtml(kFrameA) + innerHtml(kFrameB));
    EXPECT_EQ(ie_->GetTextFromAllFrames(), "Frame A 12Frame B 1");
    const DocumentRef first = ie_->GetFrame(0);
    ASSERT_FALSE(first.isEmpty());
    EXPECT_EQ(ie_->GetBrowserHTML(first), innerHtml(kFrameA));
    EXPECT_EQ(ie_->GetLinksOnWebPage(first),
              (QStringList{"http://a1.example/", "http://a2.example/"}));
    EXPECT_TRUE(ie_->GetFrame(1).isEmpty());
    // The frame of the other site has a process of its own; its links are read there.
    EXPECT_EQ(ie_->GetLinksOnAllFrames(false), QStringList{"http://b1.example/"});
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, AFramedPageWaitsUntilTheCapUnlessCancelled) {
    // Frames finish before the page: the first document complete is not the top one.
    BrowserServices services = servicesFor(ports_, browser_->endpointText());
    services.navigateWaitMs = 1500;
    cIEObject ie(services);
    ASSERT_TRUE(ie.InitializeObject());
    QElapsedTimer clock;
    clock.start();
    ie.NavigateToUrl(url("/two.html"), true);
    EXPECT_GE(clock.elapsed(), 1490);
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, ThreeFramesServeAllButTheLast) {
    load(*ie_, url("/three.html"));
    EXPECT_EQ(ie_->FrameCount(), 2);
    EXPECT_FALSE(ie_->GetFrame(1).isEmpty());
    EXPECT_EQ(ie_->GetBrowserText(ie_->GetFrame(1)), "Frame B 1");
    EXPECT_TRUE(ie_->GetFrame(2).isEmpty());
    EXPECT_EQ(ie_->GetHTMLFromAllFrames(),
              innerHtml(kFrameA) + innerHtml(kFrameB) + innerHtml(kFrameC));
    // Each frame overwrites the list; the last frame has no links, so frame B's stay.
    EXPECT_EQ(ie_->GetLinksOnAllFrames(false), QStringList{"http://b1.example/"});
    EXPECT_EQ(ie_->GetLinksOnAllFrames(true), QStringList{"http://top.example/"});
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, FramesetFramesAreRead) {
    load(*ie_, url("/frameset.html"));
    EXPECT_EQ(ie_->FrameCount(), 1);
    EXPECT_EQ(ie_->GetTextFromAllFrames(), "Frame A 12Frame B 1");
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, FramesOfLocalFilesAreRead) {
    load(*ie_, QUrl::fromLocalFile(files_->path() + "/index.html").toString());
    EXPECT_EQ(ie_->FrameCount(), 1);
    EXPECT_EQ(ie_->GetHTMLFromAllFrames(), innerHtml(kFrameA) + innerHtml(kFrameB));
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, LinksKeepTheirIndexAndBareHostsGetHttp) {
    // "127.0.0.1:<port>/links.html" has no protocol: "http://" is put in front.
    load(*ie_, url("/links.html").mid(7));
    EXPECT_EQ(ie_->GetSiteUrl(), url("/links.html"));
    EXPECT_EQ(ie_->GetLinksOnWebPage(),
              (QStringList{"http://one.example/x", "", "https://three.example/y.pdf"}));
    EXPECT_EQ(ie_->GetLinksOnAllFrames(false),
              (QStringList{"http://one.example/x", "mailto:joe@example.com",
                           "https://three.example/y.pdf"}));
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, SelectionIsCopiedThroughTheClipboard) {
    ports_.clipboard.setText("held before");
    load(*ie_, url("/plain.html"));
    EXPECT_EQ(ie_->CopySelection(), "held before");
    load(*ie_, url("/select.html"));
    EXPECT_EQ(ie_->CopySelection(), "picked words");
    EXPECT_EQ(ports_.clipboard.text(), "picked words");
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, WindowBoundsAreSet) {
    ie_->IETop(40);
    ie_->IELeft(30);
    ie_->IEWidth(700);
    ie_->IEHeight(500);
    CdpClient probe(std::make_unique<WebSocketTransport>());
    probe.connectTo(QUrl(ie_->browser().webSocketUrl));
    const QJsonObject bounds = probe.call("Browser.getWindowForTarget")["bounds"].toObject();
    EXPECT_EQ(bounds["top"].toInt(), 40);
    EXPECT_EQ(bounds["left"].toInt(), 30);
    EXPECT_EQ(bounds["width"].toInt(), 700);
    EXPECT_EQ(bounds["height"].toInt(), 500);
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, StopEndsALoadThatNeverFinishes) {
    load(*ie_, url("/plain.html"));
    bool topComplete = false;
    const QString main = ie_->browser().targetId;
    QObject::connect(ie_.get(), &cIEObject::DocumentComplete,
                     [&](const DocumentRef& d, QString&) { topComplete |= d.frameId == main; });
    ie_->NavigateToUrl(url("/slow.html"), false);
    waitUntil([&] { return server_->requestsFor("/slow.html") > 0; }, 5000, 20);
    ie_->IEStop();
    EXPECT_TRUE(waitUntil([&] { return topComplete; }, 5000));
    EXPECT_EQ(ie_->GetSiteUrl(), url("/plain.html"));
    EXPECT_TRUE(logged().isEmpty()) << logged().join('\n').toStdString();
}

TEST_F(ChromiumSession, NewWindowsAreReportedAndCanBeCancelled) {
    QStringList opened;
    QObject::connect(ie_.get(), &cIEObject::NewWindow2, [&](BrowserHandle& w, bool& cancel) {
        opened << w.targetId;
        cancel = true;
    });
    endpointRequest(browser_->endpoint(), "/json/new?about:blank", true);
    ASSERT_TRUE(waitUntil([&] { return !opened.isEmpty(); }, 5000));
    auto stillThere = [&] {
        const auto pages = listPages(browser_->endpoint(), 3000);
        return pages && std::any_of(pages->begin(), pages->end(), [&](const BrowserHandle& p) {
                   return p.targetId == opened[0];
               });
    };
    EXPECT_TRUE(waitUntil([&] { return !stillThere(); }, 5000, 50));
}

TEST_F(ChromiumSession, ClosingTheWindowIsReported) {
    int closing = 0;
    QObject::connect(ie_.get(), &cIEObject::WindowClosing, [&] { ++closing; });
    endpointRequest(browser_->endpoint(), "/json/close/" + ie_->browser().targetId, false);
    EXPECT_TRUE(waitUntil([&] { return closing > 0; }, 5000));
    EXPECT_EQ(closing, 1);
    // The object stays attached; using it is an error that is logged.
    EXPECT_TRUE(ie_->Initialized());
    EXPECT_EQ(ie_->GetSiteUrl(), "");
    ASSERT_EQ(ports_.log.errors.size(), 1u);
    EXPECT_EQ(ports_.log.errors[0].location, "Function GetSiteUrl");
}

TEST(ChromiumKilled, KillingTheBrowserEndsTheWaitAndIsLogged) {
    test::ChromiumProcess browser;
    if (!browser.problem().isEmpty())
        GTEST_SKIP() << browser.problem().toStdString();
    test::TestHttpServer server;
    test::TestHttpServer::Answer never;
    never.never = true;
    server.serve("/slow.html", never);
    SessionServices ports;
    BrowserServices services = servicesFor(ports, browser.endpointText());
    services.navigateWaitMs = 20000;
    cIEObject ie(services);
    ASSERT_TRUE(ie.InitializeObject());
    int closing = 0;
    QObject::connect(&ie, &cIEObject::WindowClosing, [&] { ++closing; });
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        ++ticks;
        if (server.requestsFor("/slow.html") > 0 && ticks > 5)
            browser.kill();
    });
    ticker.start(20);
    QElapsedTimer clock;
    clock.start();
    ie.NavigateToUrl(server.url("/slow.html"), true);
    EXPECT_LT(clock.elapsed(), 10000);
    EXPECT_GT(ticks, 5) << "the event loop kept running during the wait";
    EXPECT_EQ(closing, 1);
    ASSERT_EQ(ports.log.errors.size(), 1u);
    EXPECT_EQ(ports.log.errors[0].module, "cIEObject");
    EXPECT_EQ(ports.log.errors[0].location, "Sub NavigateToUrl");
    EXPECT_TRUE(ports.log.errors[0].detail.contains("went away"))
        << ports.log.errors[0].detail.toStdString();
}

// Kills the browser a test started through the program, from the pid its start script noted.
struct StartedBrowser {
    QString pidFile;
    ~StartedBrowser() {
        QFile f(pidFile);
        if (f.open(QIODevice::ReadOnly))
            test::killProcessGroupOf(f.readAll().trimmed().toLongLong());
    }
};

TEST(ChromiumLaunch, GetActiveBrowserStartsABrowserWithItsOwnProfile) {
    if (!QFileInfo(test::testChromiumPath()).isExecutable())
        GTEST_SKIP() << "no Chromium";
    const QString dir = test::makeTempDir();
    StartedBrowser started{dir + "/pid"};
    const QString script = dir + "/browser.sh";
    writeFile(script, ("#!/bin/sh\necho $$ > '" + started.pidFile + "'\nprintf '%s\\n' \"$@\" > '" +
                       dir + "/args'\nexec '" + test::testChromiumPath() + "' " +
                       test::headlessArguments().join(' ') + " \"$@\" 2>/dev/null\n")
                          .toUtf8());
    QFile::setPermissions(script, QFileDevice::ReadOwner | QFileDevice::ExeOwner);

    SessionServices ports;
    ProcessLauncher launcher;
    const quint16 port = test::freeLoopbackPort();
    BrowserServices services(
        ports.log, ports.clipboard, launcher,
        std::make_shared<CdpConnector>(QStringLiteral("127.0.0.1:%1").arg(port)));
    services.browserPath = script;
    services.profileDir = dir + "/profile";
    services.launchWaitMs = 30000;
    cIEObject ie(services);
    EXPECT_TRUE(ie.GetActiveBrowser(false).isEmpty());
    const BrowserHandle found = ie.GetActiveBrowser(true);
    ASSERT_FALSE(found.isEmpty()) << (ports.log.errors.empty()
                                          ? std::string()
                                          : ports.log.errors[0].detail.toStdString());
    EXPECT_TRUE(ie.InitializeObject(found));
    QFile args(dir + "/args");
    ASSERT_TRUE(args.open(QIODevice::ReadOnly));
    const QStringList given = QString::fromUtf8(args.readAll()).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(given, launchArguments(port, services.profileDir));
    EXPECT_TRUE(QDir(services.profileDir).exists());
    EXPECT_TRUE(ports.log.errors.empty());
}

} // namespace
