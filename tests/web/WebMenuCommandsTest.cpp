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

TEST(WebMenuCommands, NavigateToSendsTheBrowserOrStartsOne) {
    struct Case {
        QString answer;
        bool browserOpen;
        QStringList navigations; // of the running browser
        QString started;         // the address a started browser gets last
        QString opened;          // what the desktop is handed
    };
    const Case cases[] = {
        {"example.com/x", true, {"http://example.com/x"}, "", ""},
        {" FTP://files.example/a ", true, {"FTP://files.example/a"}, "", ""},
        // A mail address goes to the desktop as one text, whatever it holds.
        {"a;b$(touch x)'q\"@example.com",
         false,
         {},
         "",
         "mailto:a;b$(touch x)'q\"@example.com?Subject=Hello"},
        // A switch typed as the address arrives at the browser it starts as an address.
        {"--renderer-cmd-prefix=/tmp/x", false, {}, "http://--renderer-cmd-prefix=/tmp/x", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        Browser b;
        b.port.connector->browserOpen = c.browserOpen;
        b.h.dialogs.answers = {c.answer};
        b.h.run("mnuNaviagetTo");
        EXPECT_TRUE(
            b.h.dialogs.shown().value(0).startsWith("Enter the address to go to.|Navigate to|"));
        EXPECT_EQ(b.h.setting("frmEdit", "Navigate To"), c.answer);
        EXPECT_EQ(b.window().navigations, c.navigations);
        EXPECT_EQ(b.h.launcher.opened, c.opened.isEmpty() ? QStringList() : QStringList{c.opened});
        if (c.started.isEmpty()) {
            EXPECT_TRUE(b.h.launcher.started.empty());
        } else {
            ASSERT_EQ(b.h.launcher.started.size(), 1u);
            EXPECT_EQ(b.h.launcher.started[0].program, "/opt/browser/chromium");
            EXPECT_EQ(b.h.launcher.started[0].arguments.last(), c.started);
        }
        EXPECT_TRUE(b.h.log.errors.empty());
    }
}

TEST(WebMenuCommands, SearchGoogleFillsTheSearchAddress) {
    struct Case {
        QString setting; // "" : the default
        QString answer;
        QString address;
    };
    const Case cases[] = {
        {"", "café au lait", "https://www.google.com/search?q=caf%C3%A9%20au%20lait"},
        {"https://search.example/?q=%s&also=%s", "a&b=c #1",
         "https://search.example/?q=a%26b%3Dc%20%231&also=a%26b%3Dc%20%231"},
        {"search.example/find?%s", "100%s", "http://search.example/find?100%25s"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        Browser b;
        if (!c.setting.isEmpty())
            b.h.setSetting("frmEdit", "Web Search Url", c.setting);
        b.h.dialogs.answers = {c.answer};
        b.h.run("mnuSearchGoogle");
        EXPECT_TRUE(b.h.dialogs.shown().value(0).startsWith("Search the web for?|Search Google|"));
        EXPECT_EQ(b.h.setting("frmEdit", "Web Search"), c.answer);
        EXPECT_EQ(b.window().navigations, QStringList{c.address});
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
