// The browser commands over a scripted browser, one table per family: the port and the session's
// launch, Load From IE and Navigate To Sel, the desktop commands, Navigate to / Search / Save web
// page, and the site-list walk on a timer that ticks when the test says so.

#include "FakeBrowser.h"
#include "SteppedSiteTimer.h"
#include "support/Fakes.h"

#include "web/BrowserCommands.h"
#include "web/BrowserPort.h"
#include "web/SiteList.h"
#include "web/WebMenuCommands.h"
#include "web/cIEObject.h"

#include <QDir>
#include <QTimer>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;
using namespace ed::web;

namespace {

using Browser = BrowserHarness;

QStringList listOf(const QString& s) {
    return s.isEmpty() ? QStringList() : QStringList{s};
}

// Another computer's browser is refused, never attached to nor started.
TEST(BrowserPort, RefusesOtherComputers) {
    MemorySettings settings;
    Harness h;
    DevToolsBrowserPort port{AppSettings(settings, "App"), h.log, h.clipboard, h.launcher};
    port.browserCandidates = {};
    settings.write("App", browserSettingsSection(), browserPathKey(), "/opt/chrome/google-chrome");
    settings.write("App", browserSettingsSection(), browserEndpointKey(), "192.168.1.20:9222");
    EXPECT_TRUE(noBrowserMessage(port).contains("192.168.1.20:9222")) << noBrowserMessage(port);
    const auto ie = port.createSession();
    EXPECT_TRUE(ie->GetActiveBrowser(true).isEmpty());
    EXPECT_FALSE(ie->InitializeObject());
    ASSERT_FALSE(h.log.errors.empty());
    EXPECT_TRUE(h.log.errors[0].detail.contains("refused"));
    EXPECT_TRUE(h.launcher.started.empty());
}

// A directory or a missing file is never taken for the browser; a set path wins.
TEST(IEObject, BrowserPathIsTheSetPathThenTheFirstThatExists) {
    const QString dir = makeTempDir();
    writeFile(dir + "/chrome", "");
    QDir().mkpath(dir + "/adir");
    Browser b;
    BrowserServices services = b.port.services();
    services.browserCandidates = {dir + "/missing", dir + "/adir", dir + "/chrome"};
    EXPECT_EQ(cIEObject(services).InternetExplorerPath(), dir + "/chrome");
    services.browserPath = "/opt/chromium/chrome";
    EXPECT_EQ(cIEObject(services).InternetExplorerPath(), "/opt/chromium/chrome");
    services.browserPath.clear();
    services.browserCandidates = {dir + "/missing"};
    EXPECT_EQ(cIEObject(services).InternetExplorerPath(), "");
}

// The browser gets a profile of its own; one that cannot be started or never answers is logged.
TEST(IEObject, LaunchUsesItsOwnProfileAndFailuresAreLogged) {
    const struct {
        QString path;
        bool starts, answers;
        const char* detail; // "" : the browser is found
    } cases[] = {
        {"/usr/bin/chromium", true, true, ""},
        {"", true, false, "Browser Path"},
        {"/usr/bin/chromium", false, false, "could not be started"},
        {"/usr/bin/chromium", true, false, "did not answer at 127.0.0.1:9222"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.detail);
        Browser b;
        b.port.connector->browserOpen = false;
        b.h.launcher.result = c.starts;
        BrowserServices services = b.port.services();
        services.browserPath = c.path;
        services.launchWaitMs = c.answers ? 5000 : 200;
        QTimer poll; // the browser answers once it was started
        QObject::connect(&poll, &QTimer::timeout, [&] {
            b.port.connector->browserOpen = c.answers && !b.h.launcher.started.empty();
        });
        poll.start(10);
        EXPECT_EQ(cIEObject(services).GetActiveBrowser(true).isEmpty(), !c.answers);
        if (c.answers) {
            ASSERT_EQ(b.h.launcher.started.size(), 1u);
            EXPECT_TRUE(b.h.launcher.started[0].arguments.contains("--user-data-dir=" +
                                                                   services.profileDir));
            EXPECT_TRUE(QDir(services.profileDir).exists());
            EXPECT_TRUE(b.h.log.errors.empty());
            continue;
        }
        ASSERT_EQ(b.h.log.errors.size(), 1u);
        EXPECT_TRUE(b.h.log.errors[0].detail.contains(QString::fromUtf8(c.detail)))
            << b.h.log.errors[0].detail;
    }
}

TEST(BrowserCommands, LinksConditionallyKeepOnlyMatchingLinksIgnoringCase) {
    const std::pair<QString, QString> cases[] = {
        // the answer, and what is inserted at the end of "doc:"
        {"pdf", "http://files.example/A.PDF\r\n"},
        {"", ""}, // cancelled: the condition stays
    };
    for (const auto& [answer, inserted] : cases) {
        SCOPED_TRACE(answer.toStdString());
        Browser b("doc:");
        b.window().top.links = {"http://one.example/x", "mailto:joe@example.com",
                                "http://files.example/A.PDF", "http://files.example/a.htm"};
        b.h.setSetting("frmEdit", "Condition", "before");
        b.h.select(4, 0);
        if (!answer.isEmpty())
            b.h.dialogs.answers = {answer};
        b.h.run("mnuGetBrowserLinksConditional");
        EXPECT_EQ(b.h.setting("frmEdit", "Condition"), answer.isEmpty() ? "before" : answer);
        EXPECT_EQ(b.h.edit.text(), "doc:" + inserted);
    }
}

// Without a browser nothing is loaded and the status bar says why; one that fails midway is
// logged.
TEST(BrowserCommands, WithoutABrowserOrWhenItFailsNothingIsLoaded) {
    for (const QString item : {"mnuGetBrowserHtml", "mnuGetBrowserEmail", "mnuNavigateToSel"}) {
        SCOPED_TRACE(item.toStdString());
        // An empty text goes in at the caret, followed by InsertText's line break.
        const QString unchanged = item == "mnuNavigateToSel" ? "abc" : "\r\nabc";
        Browser none("abc");
        none.port.connector->browserOpen = false;
        none.h.clipboard.setText("example.org");
        none.h.run(item);
        EXPECT_EQ(none.h.edit.text(), unchanged);
        EXPECT_EQ(none.h.window.statuses, QStringList{noBrowserMessage(none.port)});
        EXPECT_TRUE(none.window().navigations.isEmpty());

        Browser failing("abc");
        failing.window().failEverything = true;
        failing.h.run(item);
        EXPECT_EQ(failing.h.edit.text(), unchanged);
        EXPECT_EQ(failing.h.log.errors.size(), 1u);
    }
    Harness h("abc"); // no browser port at all
    h.run("mnuGetBrowserHtml");
    EXPECT_EQ(h.edit.text(), "\r\nabc");
    EXPECT_EQ(h.window.statuses.size(), 1);
}

// Nothing selected in the page: whatever the clipboard held is used.
TEST(BrowserCommands, NavigateToSelFallsBackToTheClipboard) {
    for (const QString held : {"held.example", ""}) {
        Browser b("the document");
        b.h.clipboard.setText(held);
        b.h.run("mnuNavigateToSel");
        EXPECT_EQ(b.window().navigations, listOf(held.isEmpty() ? "" : "http://" + held));
        EXPECT_EQ(b.h.edit.assignments(), 0);
    }
}

// The folder or file goes to the desktop; when it cannot (nothing to open, no handler) the
// status bar says why and the error is logged under the command's name.
TEST(BrowserCommands, FolderAndFileGoToTheDesktopOrSayWhyNot) {
    const QString dir = makeTempDir();
    writeFile(dir + "/doc.txt", "");
    const struct {
        const char* item;
        QString lastDir, fileName;
        bool handler;   // the desktop has a program for it
        QString target; // what reached the desktop; "" for nothing
        QString named;  // in the message and the logged detail; "" when it went through
    } cases[] = {
        {"mnuExplorer", dir + "/", dir + "/doc.txt", true, dir + "/", ""},
        {"mnuLoadinwebbrowser", dir + "/", dir + "/doc.txt", true, dir + "/doc.txt", ""},
        {"mnuLoadinwebbrowser", dir + "/", dir + "/doc.txt", false, dir + "/doc.txt", "No program"},
        {"mnuExplorer", dir + "/gone/", dir + "/doc.txt", true, "", dir + "/gone/"},
        // an untitled document never saved
        {"mnuLoadinwebbrowser", dir + "/", dir + "/Text-0.Txt", true, "", "Text-0.Txt"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " " + c.fileName.toStdString());
        Harness h;
        h.launcher.result = c.handler;
        h.form.LastDir = c.lastDir;
        h.form.FileName = c.fileName;
        h.run(c.item);
        EXPECT_EQ(h.launcher.explored + h.launcher.opened, listOf(c.target));
        EXPECT_EQ(h.log.errors.size(), c.named.isEmpty() ? 0u : 1u);
        EXPECT_EQ(h.window.statuses.size(), c.named.isEmpty() ? 0 : 1);
        if (c.named.isEmpty() || h.log.errors.empty() || h.window.statuses.isEmpty())
            continue;
        EXPECT_EQ(h.log.errors[0].location, QString::fromLatin1(c.item) + "_Click");
        EXPECT_TRUE(h.log.errors[0].detail.contains(c.named) &&
                    h.window.statuses[0].contains(c.named))
            << h.log.errors[0].detail.toStdString();
    }
}

// With no browser answering, one is started with the address last (a switch arrives as an
// address); a mail address goes to the desktop as one text whatever it holds.
TEST(WebMenuCommands, NavigateToAndSearchStartABrowserOrHandMailToTheDesktop) {
    const QString hostile = "a;b$(touch x)'q\"@example.com";
    const struct {
        QString item, answer;
        QString started; // the started browser's last argument
        QString opened;  // what the desktop is handed
    } cases[] = {
        {"mnuNaviagetTo", hostile, "", "mailto:" + hostile + "?Subject=Hello"},
        {"mnuNaviagetTo", "--renderer-cmd-prefix=/x", "http://--renderer-cmd-prefix=/x", ""},
        {"mnuSearchGoogle", "100%s", "http://search.example/find?100%25s", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        Browser b;
        b.port.program = "/opt/browser/chromium";
        b.port.connector->browserOpen = false;
        b.h.setSetting("frmEdit", "Web Search Url", "search.example/find?%s");
        b.h.dialogs.answers = {c.answer};
        b.h.run(c.item);
        QStringList started;
        for (const auto& s : b.h.launcher.started)
            started << s.program + " " + s.arguments.last();
        EXPECT_EQ(started, listOf(c.started.isEmpty() ? "" : "/opt/browser/chromium " + c.started));
        EXPECT_EQ(b.h.launcher.opened, listOf(c.opened));
        EXPECT_TRUE(b.window().navigations.isEmpty() && b.h.log.errors.empty());
    }
}

// The page's title, made safe, is the proposed name; the extension picks the form; a folder
// that does not exist is logged and nothing is claimed.
TEST(WebMenuCommands, SaveWebPageWritesTheChosenFormAndSaysSo) {
    const QString dir = makeTempDir();
    struct Case {
        QString title;
        FileDialogResult chosen;
        QString proposed;
        QString written; // the file written, "" when none
        QByteArray bytes;
    };
    const Case cases[] = {
        {"Report: Q1/Q2?", {dir + "/r.mhtml", 1}, "Report_ Q1_Q2_", dir + "/r.mhtml", "ARCHIVE"},
        {"Home", {dir + "/h.HTML", 1}, "Home", dir + "/h.HTML", "<p>top</p>"},
        {"Home", {dir + "/h2", 2}, "Home", dir + "/h2.html", "<p>top</p>"},
        {"http://example.com/", {dir + "/u.mhtml", 1}, "page", dir + "/u.mhtml", "ARCHIVE"},
        {"Home", {dir + "/missing/p.mhtml", 1}, "Home", "", ""},
        {"Home", {}, "Home", "", ""}, // cancelled
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.chosen.fileName.toStdString());
        Browser b;
        b.window().title = c.title;
        b.window().archive = "ARCHIVE";
        b.window().top.html = "<p>top</p>";
        if (!c.chosen.fileName.isEmpty())
            b.files.saveAnswers.push_back(c.chosen);
        b.h.run("mnuSaveWebPage");
        ASSERT_EQ(b.files.requests.size(), 1u);
        EXPECT_EQ(b.files.requests[0].fileName, c.proposed);
        const bool failed = c.written.isEmpty() && !c.chosen.fileName.isEmpty();
        EXPECT_EQ(b.h.log.errors.size(), failed ? 1u : 0u);
        if (failed && !b.h.log.errors.empty()) {
            EXPECT_TRUE(b.h.log.errors[0].detail.contains("missing/p.mhtml"));
        }
        if (c.written.isEmpty()) {
            EXPECT_TRUE(b.h.window.statuses.isEmpty());
            continue;
        }
        EXPECT_EQ(readFile(c.written), c.bytes);
        EXPECT_EQ(b.h.window.statuses.size(), 1);
    }
}

struct Walk {
    explicit Walk(const QString& text) : h(text) {
        h.ctx.browser = &port;
        h.ctx.siteList = &state;
        timer->onTick([this] { tmrSiteList_Timer(h.ctx); });
    }
    Harness h;
    FakeBrowserPort port{h.log, h.clipboard, h.launcher};
    SiteListState state{std::make_unique<SteppedSiteTimer>()};
    SiteTimer* timer = state.tmrSiteList.get();

    QStringList& visited() { return port.connector->window->navigations; }
    bool enabled(const char* item) const { return h.menu.isEnabled(item); }
};

// Each line in turn (a blank one as about:blank, a mail address to the browser too), selected
// where it first occurs; a last piece without a line break is never visited.
TEST(SiteList, EachLineIsVisitedInTurnAndSelectedWhereItFirstOccurs) {
    const struct {
        QString text;
        QStringList visits, selections; // selections as "start|text"; none: not checked
    } cases[] = {
        {"http://a.example/\r\nhttp://b.example/\r\nhttp://c.example/",
         {"http://a.example/", "http://b.example/"},
         {"0|http://a.example/\r", "19|http://b.example/\r"}},
        {"http://only.example/", {"http://only.example/"}, {"0|http://only.example/"}},
        // Blanks around a line are not part of it; this one also stands inside line one.
        {"see b.example here\r\n  b.example  \r\n",
         {"http://see b.example here", "http://b.example"},
         {"0|see b.example here\r", "4|b.example "}},
        {"someone@example.com\r\n\r\n  \r\nz.example\r\n",
         {"http://someone@example.com", "about:blank", "about:blank", "http://z.example"},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        Walk w(c.text);
        w.h.run("mnuNavigateSiteList");
        EXPECT_TRUE(w.enabled("mnuPause") && w.enabled("mnuNextItem"));
        auto selection = [&] {
            return QString::number(w.h.edit.selStart()) + "|" + w.h.edit.selText();
        };
        QStringList selected{selection()};
        for (int tick = 0; tick < 6 && w.timer->enabled(); ++tick) {
            w.timer->fire();
            if (w.visited().size() > selected.size())
                selected << selection();
        }
        EXPECT_EQ(w.visited(), c.visits);
        if (!c.selections.isEmpty()) {
            EXPECT_EQ(selected, c.selections);
        }
        EXPECT_EQ(w.state.mlSiteIndex, 0);
        EXPECT_FALSE(w.timer->enabled() || w.enabled("mnuPause") || w.enabled("mnuNextItem"));
        EXPECT_TRUE(w.h.launcher.opened.isEmpty());
    }
}

TEST(SiteList, PauseStopsTheTimerNextItemStillStepsAndTheWalkGoesOn) {
    Walk w("a.example\r\nb.example\r\nc.example\r\n");
    w.h.run("mnuNavigateSiteList");
    w.h.run("mnuPause");
    w.h.run("mnuPause"); // a second Pause does not start the timer again
    EXPECT_FALSE(w.timer->enabled());
    w.h.run("mnuNextItem");
    EXPECT_EQ(w.visited(), (QStringList{"http://a.example", "http://b.example"}));
    EXPECT_FALSE(w.timer->enabled());
    w.h.run("mnuNavigateSiteList"); // goes on where the walk stopped
    EXPECT_EQ(w.visited().last(), "http://c.example");
    EXPECT_EQ(w.state.mlSiteIndex, 0);

    Walk idle(""); // an empty document starts nothing
    idle.h.run("mnuNavigateSiteList");
    EXPECT_FALSE(idle.timer->enabled() || idle.enabled("mnuPause"));
    EXPECT_EQ(idle.port.sessionsCreated, 0);
}

TEST(SiteList, ChangeTimingTakesOnlyNumbers) {
    const struct {
        QString answer; // "" = Cancel
        int interval;
        bool logged;
    } cases[] = {
        {" 2500 ", 2500, false}, {"&H10", 16, false},    {"", 32235, false},
        {"12abc", 32235, false}, {"70000", 32235, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        Walk w("a");
        if (!c.answer.isEmpty())
            w.h.dialogs.answers = {c.answer};
        w.h.run("mnuChangeTiming");
        EXPECT_EQ(w.timer->interval(), c.interval);
        EXPECT_EQ(w.h.log.errors.size(), c.logged ? 1u : 0u);
    }
}

// No browser: logged, the timer stops at the next tick, and Next Item goes on from the same line.
TEST(SiteList, ABrowserThatCannotBeStartedIsLoggedAndTheTimerStops) {
    Walk w("a.example\r\nb.example\r\n");
    w.port.connector->browserOpen = false; // and no program to start
    w.h.run("mnuNavigateSiteList");
    EXPECT_EQ(w.h.log.errors.size(), 1u);
    w.timer->fire();
    EXPECT_EQ(w.h.log.errors.size(), 2u);
    EXPECT_FALSE(w.timer->enabled());
    w.port.connector->browserOpen = true;
    w.h.run("mnuNextItem");
    EXPECT_EQ(w.visited(), QStringList{"http://a.example"});
}

} // namespace
