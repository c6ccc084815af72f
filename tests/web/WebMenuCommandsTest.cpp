// Navigate to, Search Google and Save web page over a scripted browser: where the browser is
// sent (or what it is started with when none answers), and what the save writes and says.

#include "FakeBrowser.h"
#include "support/Fakes.h"

#include "web/WebMenuCommands.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct Browser : BrowserHarness {
    Browser() { port.program = "/opt/browser/chromium"; }
};

// Where the answer goes: to the running browser, to a browser started with it last (a switch
// arrives as an address), or a mail address to the desktop as one text whatever it holds.
TEST(WebMenuCommands, NavigateToAndSearchSendTheBrowserOrStartOne) {
    const QString hostile = "a;b$(touch x)'q\"@example.com";
    const struct {
        QString item;
        QString searchUrl; // "" : the default
        QString answer;
        bool browserOpen;
        QString sent;   // where the running browser goes, or what a started one gets last
        QString opened; // what the desktop is handed
    } cases[] = {
        {"mnuNaviagetTo", "", "example.com/x", true, "http://example.com/x", ""},
        {"mnuNaviagetTo", "", " FTP://files.example/a ", true, "FTP://files.example/a", ""},
        {"mnuNaviagetTo", "", hostile, false, "", "mailto:" + hostile + "?Subject=Hello"},
        {"mnuNaviagetTo", "", "--renderer-cmd-prefix=/x", false, "http://--renderer-cmd-prefix=/x",
         ""},
        {"mnuSearchGoogle", "", "café au lait", true,
         "https://www.google.com/search?q=caf%C3%A9%20au%20lait", ""},
        {"mnuSearchGoogle", "https://search.example/?q=%s&also=%s", "a&b=c #1", true,
         "https://search.example/?q=a%26b%3Dc%20%231&also=a%26b%3Dc%20%231", ""},
        {"mnuSearchGoogle", "search.example/find?%s", "100%s", false,
         "http://search.example/find?100%25s", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        Browser b;
        b.port.connector->browserOpen = c.browserOpen;
        if (!c.searchUrl.isEmpty())
            b.h.setSetting("frmEdit", "Web Search Url", c.searchUrl);
        b.h.dialogs.answers = {c.answer};
        b.h.run(c.item);
        const QStringList sent = c.sent.isEmpty() ? QStringList() : QStringList{c.sent};
        EXPECT_EQ(b.window().navigations, c.browserOpen ? sent : QStringList());
        QStringList started;
        for (const auto& s : b.h.launcher.started)
            started << s.program + " " + s.arguments.last();
        EXPECT_EQ(started, c.browserOpen || c.sent.isEmpty()
                               ? QStringList()
                               : QStringList{"/opt/browser/chromium " + c.sent});
        EXPECT_EQ(b.h.launcher.opened, c.opened.isEmpty() ? QStringList() : QStringList{c.opened});
        const char* key = c.item == "mnuNaviagetTo" ? "Navigate To" : "Web Search";
        EXPECT_EQ(b.h.setting("frmEdit", key), c.answer);
        EXPECT_TRUE(b.h.log.errors.empty());
    }
}

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
        {"Home", {}, "Home", "", ""}, // cancelled
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.chosen.fileName.toStdString());
        Browser b;
        b.h.form.LastDir = dir + "/";
        b.window().title = c.title;
        b.window().archive = "ARCHIVE";
        b.window().top.html = "<p>top</p>";
        if (!c.chosen.fileName.isEmpty())
            b.files.saveAnswers.push_back(c.chosen);
        b.h.run("mnuSaveWebPage");
        ASSERT_EQ(b.files.requests.size(), 1u);
        EXPECT_EQ(b.files.requests[0].initialDir, dir + "/");
        EXPECT_EQ(b.files.requests[0].fileName, c.proposed);
        if (c.written.isEmpty()) {
            EXPECT_TRUE(b.h.window.statuses.isEmpty());
            continue;
        }
        EXPECT_EQ(readFile(c.written), c.bytes);
        EXPECT_EQ(
            b.h.window.statuses,
            QStringList{QStringLiteral("Saved %1 (%2 bytes)").arg(c.written).arg(c.bytes.size())});
        EXPECT_TRUE(b.h.log.errors.empty());
    }
}

TEST(WebMenuCommands, SaveWebPageIntoAMissingFolderIsLogged) {
    Browser b;
    b.files.saveAnswers.push_back({makeTempDir() + "/missing/p.mhtml", 1});
    b.h.run("mnuSaveWebPage");
    ASSERT_EQ(b.h.log.errors.size(), 1u);
    EXPECT_EQ(b.h.log.errors[0].location, "mnuSaveWebPage_Click");
    EXPECT_TRUE(b.h.log.errors[0].detail.contains("missing/p.mhtml"))
        << b.h.log.errors[0].detail.toStdString();
    EXPECT_TRUE(b.h.window.statuses.isEmpty());
}

} // namespace
