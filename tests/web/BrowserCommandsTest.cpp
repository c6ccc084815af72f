// The Load From IE commands, Navigate To Sel and the two desktop commands over a scripted
// browser: what reaches the document, the remembered condition, and what happens without a
// browser (also through the batch runner).

#include "ChromiumProcess.h"
#include "FakeBrowser.h"
#include "support/Fakes.h"

#include "web/BrowserCommands.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

using Browser = BrowserHarness;

TEST(BrowserCommands, LinksConditionallyKeepOnlyMatchingLinksIgnoringCase) {
    const std::pair<QString, QString> cases[] = {
        // the answer, and what is inserted at the end of "doc:"
        {"pdf", "http://files.example/A.PDF\r\n"},
        {"nowhere", ""},
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
        EXPECT_EQ(b.h.dialogs.shown(),
                  QStringList{"Enter text link must contain.|Enter rext|before"});
        EXPECT_EQ(b.h.setting("frmEdit", "Condition"), answer.isEmpty() ? "before" : answer);
        EXPECT_EQ(b.h.edit.text(), "doc:" + inserted);
        if (!answer.isEmpty()) {
            EXPECT_EQ(b.h.form.UndoText, "doc:");
        }
    }
}

// The HTML command reads the same way; the page's reading is in the real-browser tests.
TEST(BrowserCommands, TheTopDocumentsTextIsInsertedAtTheCaret) {
    Browser b("abcd");
    b.window().top = {"<body><p>Hi</p></body>", "Hi\r\nthere\r\n", {}};
    b.window().frames.push_back({"<p>frame</p>", "frame", {}}); // frames are not entered
    b.h.select(2, 1);                                           // a selection is not replaced
    b.h.run("mnuGetBrowserText");
    EXPECT_EQ(b.h.edit.text(), "abHi\r\nthere\r\ncd");
    EXPECT_EQ(b.h.form.UndoText, "abcd");
    EXPECT_TRUE(b.h.log.errors.empty());
}

// Every command that reads the browser attaches the same way: without a browser nothing is
// loaded and the status bar says why; a browser that fails midway is logged.
TEST(BrowserCommands, WithoutABrowserOrWhenItFailsNothingIsLoaded) {
    for (const QString item :
         {"mnuGetBrowserHtml", "mnuGetBrowserText", "mnuGetBrowserLinks", "mnuGetBrowserEmail",
          "mnuGetPhoneNumbers", "mnuGetFaxNumbers", "mnuNavigateToSel"}) {
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
        EXPECT_TRUE(none.h.log.errors.empty());

        Browser failing("abc");
        failing.window().failEverything = true;
        failing.h.run(item);
        EXPECT_EQ(failing.h.edit.text(), unchanged);
        ASSERT_EQ(failing.h.log.errors.size(), 1u);
        EXPECT_EQ(failing.h.log.errors[0].module, "cIEObject");
    }
    Harness h("abc"); // no browser port at all
    h.run("mnuGetBrowserHtml");
    EXPECT_EQ(h.edit.text(), "\r\nabc");
    ASSERT_EQ(h.window.statuses.size(), 1u);
    EXPECT_TRUE(h.window.statuses[0].startsWith("no browser found"));
    EXPECT_TRUE(h.log.errors.empty());
}

TEST(BrowserCommands, NavigateToSelSendsTheBrowserToItsSelection) {
    struct Case {
        QString selection, clipboardBefore;
        QStringList navigations;
    };
    const Case cases[] = {
        {"example.org/page", "", {"http://example.org/page"}},
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
        EXPECT_EQ(b.h.edit.assignments(), 0);
        EXPECT_TRUE(b.h.log.errors.empty());
    }
}

// Open Explorer and Open In Default Editor hand the folder or file to the desktop; when that
// cannot be done (nothing to open, no handler on the system) the status bar says why and the
// error is logged under the command's name.
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
        const QStringList reached = h.launcher.explored + h.launcher.opened;
        EXPECT_EQ(reached, c.target.isEmpty() ? QStringList() : QStringList{c.target});
        if (c.named.isEmpty()) {
            EXPECT_TRUE(h.log.errors.empty());
            EXPECT_TRUE(h.window.statuses.isEmpty());
            continue;
        }
        ASSERT_EQ(h.log.errors.size(), 1u);
        EXPECT_EQ(h.log.errors[0].location, QString::fromLatin1(c.item) + "_Click");
        EXPECT_TRUE(h.log.errors[0].detail.contains(c.named))
            << h.log.errors[0].detail.toStdString();
        ASSERT_EQ(h.window.statuses.size(), 1);
        EXPECT_TRUE(h.window.statuses[0].contains(c.named)) << h.window.statuses[0].toStdString();
    }
}

TEST(BrowserBatch, WithoutABrowserTheStatusSaysWhereItLooked) {
    ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
    const QString endpoint = QStringLiteral("127.0.0.1:%1").arg(freeLoopbackPort());
    const EditorRun r = runEditorBatch({"--apply", "GetBrowserHtml", "--report"}, "abc\n",
                                       {{"frmEdit/Browser Endpoint", endpoint}});
    EXPECT_EQ(r.exitCode, 0) << r.report.join('\n');
    EXPECT_EQ(r.out, "\nabc\n");
    EXPECT_TRUE(r.report.join('\n').contains("status: no browser found at " + endpoint +
                                             "; start one with "))
        << r.report.join('\n');
}

} // namespace
