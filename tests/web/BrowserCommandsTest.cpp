// The Load From IE commands, Navigate To Sel and the two desktop commands over a scripted
// browser: what reaches the document, the remembered condition, and what happens without a
// browser.

#include "FakeBrowser.h"
#include "support/Fakes.h"

#include "editor/MenuTable.h"
#include "web/BrowserCommands.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

const QStringList kLinks = {"http://one.example/x", "mailto:joe@example.com",
                            "http://files.example/A.PDF", "http://files.example/a.htm"};

struct Browser {
    explicit Browser(const QString& text = QString()) : h(text) { h.ctx.browser = &port; }
    Harness h;
    FakeBrowserPort port{h.log, h.clipboard, h.launcher};
    FakeBrowserWindow& window() { return *port.connector->window; }
    QString condition() const { return h.setting("frmEdit", "Condition"); }
};

TEST(BrowserCommands, LinksKeepAnEmptyLineForTheMailLink) {
    Browser b;
    b.window().top.links = kLinks;
    b.h.run("mnuGetBrowserLinks");
    // Inserted at the start of an empty document: followed by the line break InsertText adds.
    EXPECT_EQ(b.h.edit.text(), "http://one.example/x\r\n\r\nhttp://files.example/A.PDF\r\n"
                               "http://files.example/a.htm\r\n\r\n");
    EXPECT_EQ(b.port.sessionsCreated, 1);
    EXPECT_TRUE(b.h.window.statuses.isEmpty());
    EXPECT_TRUE(b.h.log.errors.empty());
}

TEST(BrowserCommands, LinksConditionallyKeepOnlyMatchingLinksIgnoringCase) {
    struct Case {
        QString answer;
        QString inserted; // at the end of "doc:"
    };
    const Case cases[] = {
        {"pdf", "http://files.example/A.PDF\r\n"},
        {"PDF", "http://files.example/A.PDF\r\n"},
        {"FILES.example", "http://files.example/A.PDF\r\nhttp://files.example/a.htm\r\n"},
        {"nowhere", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        Browser b("doc:");
        b.window().top.links = kLinks;
        b.h.setSetting("frmEdit", "Condition", "before");
        b.h.select(4, 0);
        b.h.dialogs.answers = {c.answer};
        b.h.run("mnuGetBrowserLinksConditional");
        ASSERT_EQ(b.h.dialogs.prompts.size(), 1u);
        EXPECT_EQ(b.h.dialogs.prompts[0].prompt, "Enter text link must contain.");
        EXPECT_EQ(b.h.dialogs.prompts[0].title, "Enter rext");
        EXPECT_EQ(b.h.dialogs.prompts[0].defaultAnswer, "before");
        EXPECT_EQ(b.condition(), c.answer);
        EXPECT_EQ(b.h.edit.text(), "doc:" + c.inserted);
        EXPECT_EQ(b.h.form.UndoText, "doc:");
    }
}

TEST(BrowserCommands, CancelledConditionLeavesSettingAndDocument) {
    Browser b("keep me");
    b.window().top.links = kLinks;
    b.h.setSetting("frmEdit", "Condition", "pdf");
    b.h.run("mnuGetBrowserLinksConditional"); // no answer queued: Cancel
    EXPECT_EQ(b.condition(), "pdf");
    EXPECT_EQ(b.h.edit.text(), "keep me");
    EXPECT_EQ(b.h.edit.assignments(), 0);
    EXPECT_EQ(b.port.sessionsCreated, 0);
}

TEST(BrowserCommands, HtmlAndTextOfTheTopDocumentAreInsertedAtTheCaret) {
    struct Case {
        const char* item;
        QString expected;
    };
    const Case cases[] = {{"mnuGetBrowserHtml", "ab<body><p>Hi</p></body>cd"},
                          {"mnuGetBrowserText", "abHi\r\nthere\r\ncd"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item);
        Browser b("abcd");
        b.window().top = {"<body><p>Hi</p></body>", "Hi\r\nthere\r\n", {}};
        b.window().frames.push_back({"<p>frame</p>", "frame", {}}); // frames are not entered
        b.h.select(2, 1);                                           // a selection is not replaced
        b.h.run(c.item);
        EXPECT_EQ(b.h.edit.text(), c.expected);
        EXPECT_EQ(b.h.form.UndoText, "abcd");
        EXPECT_TRUE(b.h.log.errors.empty());
    }
}

TEST(BrowserCommands, WithoutABrowserAnEmptyTextIsInsertedAndTheUserIsTold) {
    for (const char* item : {"mnuGetBrowserHtml", "mnuGetBrowserText", "mnuGetBrowserLinks"}) {
        SCOPED_TRACE(item);
        Browser b("abc");
        b.port.connector->browserOpen = false;
        b.h.run(item);
        // The empty text at the caret (0) is followed by InsertText's line break.
        EXPECT_EQ(b.h.edit.text(), "\r\nabc");
        EXPECT_EQ(b.h.form.UndoText, "abc");
        EXPECT_EQ(b.h.window.statuses, QStringList{noBrowserMessage(b.port)});
        EXPECT_TRUE(b.h.window.statuses[0].startsWith("no browser found at 127.0.0.1:9222; "
                                                      "start one with"));
        EXPECT_TRUE(b.h.log.errors.empty());
    }
}

TEST(BrowserCommands, WithoutAnyBrowserConnectionTheCommandsStillEndQuietly) {
    Harness h("abc");
    h.run("mnuGetBrowserHtml");
    EXPECT_EQ(h.edit.text(), "\r\nabc");
    h.clipboard.setText("example.org");
    h.run("mnuNavigateToSel");
    ASSERT_EQ(h.window.statuses.size(), 2u);
    EXPECT_TRUE(h.window.statuses[1].startsWith("no browser found"));
    EXPECT_TRUE(h.log.errors.empty());
}

TEST(BrowserCommands, ABrowserFailingMidwayIsLoggedAndInsertsNothingOfIt) {
    Browser b("abc");
    b.window().failEverything = true;
    b.h.run("mnuGetBrowserLinks");
    EXPECT_EQ(b.h.edit.text(), "\r\nabc");
    ASSERT_EQ(b.h.log.errors.size(), 1u);
    EXPECT_EQ(b.h.log.errors[0].module, "cIEObject");
    EXPECT_EQ(b.h.log.errors[0].location, "Function GetLinksOnWebPage");
}

TEST(BrowserCommands, NavigateToSelSendsTheBrowserToItsSelection) {
    struct Case {
        QString selection, clipboardBefore;
        QStringList navigations;
    };
    const Case cases[] = {
        {"example.org/page", "", {"http://example.org/page"}},
        {"https://example.org/", "old", {"https://example.org/"}},
        // Nothing selected: whatever the clipboard held is used.
        {"", "held.example", {"http://held.example"}},
        {"", "", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.selection.toStdString());
        Browser b("the document");
        b.window().selection = c.selection;
        b.h.clipboard.setText(c.clipboardBefore);
        b.h.run("mnuNavigateToSel");
        EXPECT_EQ(b.window().navigations, c.navigations);
        EXPECT_EQ(b.h.edit.text(), "the document");
        EXPECT_EQ(b.h.edit.assignments(), 0);
        EXPECT_TRUE(b.h.log.errors.empty());
    }
}

TEST(BrowserCommands, NavigateToSelWithoutABrowserDoesNothing) {
    Browser b("doc");
    b.port.connector->browserOpen = false;
    b.h.clipboard.setText("example.org");
    b.h.run("mnuNavigateToSel");
    EXPECT_TRUE(b.window().navigations.isEmpty());
    EXPECT_EQ(b.h.edit.assignments(), 0);
    EXPECT_EQ(b.h.window.statuses, QStringList{noBrowserMessage(b.port)});
}

TEST(BrowserCommands, FolderAndFileGoToTheDesktop) {
    Harness h;
    const QString dir = makeTempDir();
    QFile file(dir + "/doc.txt");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    h.form.LastDir = dir + "/";
    h.form.FileName = dir + "/doc.txt";
    h.run("mnuExplorer");
    h.run("mnuLoadinwebbrowser");
    EXPECT_EQ(h.launcher.explored, QStringList{dir + "/"});
    EXPECT_EQ(h.launcher.opened, QStringList{dir + "/doc.txt"});
    EXPECT_TRUE(h.log.errors.empty());
}

TEST(BrowserCommands, AMissingFolderOrFileIsAnErrorNamingIt) {
    Harness h;
    const QString dir = makeTempDir();
    h.form.LastDir = dir + "/gone/";
    h.form.FileName = dir + "/Text-0.Txt"; // an untitled document never saved
    h.run("mnuExplorer");
    h.run("mnuLoadinwebbrowser");
    EXPECT_TRUE(h.launcher.explored.isEmpty());
    EXPECT_TRUE(h.launcher.opened.isEmpty());
    ASSERT_EQ(h.log.errors.size(), 2u);
    EXPECT_EQ(h.log.errors[0].location, "mnuExplorer_Click");
    EXPECT_TRUE(h.log.errors[0].detail.contains(dir + "/gone/"));
    EXPECT_EQ(h.log.errors[1].location, "mnuLoadinwebbrowser_Click");
    EXPECT_TRUE(h.log.errors[1].detail.contains("Text-0.Txt"));
}

TEST(BrowserCommands, LoadCommandsRunWithoutTheWindowAndTheSiteListDoesNot) {
    for (const char* name : {"mnuGetBrowserHtml", "mnuGetBrowserText", "mnuGetBrowserLinks",
                             "mnuGetBrowserLinksConditional", "mnuNavigateToSel", "mnuExplorer",
                             "mnuLoadinwebbrowser"})
        EXPECT_TRUE(availableInBatch(*findMenuItem(name))) << name;
    for (const char* name : {"mnuNavigateSiteList", "mnuPause", "mnuNextItem", "mnuChangeTiming"}) {
        const MenuItemDecl* d = findMenuItem(name);
        EXPECT_TRUE(d->handler) << name;
        EXPECT_FALSE(availableInBatch(*d)) << name;
    }
}

} // namespace
