// The window assembled for real on the offscreen platform, over real temporary files.

#include "WindowFixture.h"
#include "editor/BusyWork.h"
#include "editor/LinkMenu.h"
#include "editor/WindowAdapters.h"

#include <QFile>
#include <QMenuBar>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

// `count` numbered lines ending in CR LF.
QByteArray numberedLines(int count, const QByteArray& text = "line ") {
    QByteArray out;
    for (int i = 0; i < count; ++i)
        out += text + QByteArray::number(i) + "\r\n";
    return out;
}

class WindowTest : public WindowFixture {
protected:
    // Opens a file holding `bytes`.
    void openFile(const QString& name, const QByteArray& bytes) {
        writeFile(path(name), bytes);
        open(path(name));
    }
    QByteArray read(const QString& name) const { return readFile(path(name)); }
    EditControl& edit() { return window_->editControl(); }
    void run(const QString& item) { window_->trigger(item); }
    bool enabled(const char* item) { return window_->menuState().isEnabled(item); }
    // Work under the busy indicator shows it at once; `cancel` presses Cancel there.
    void busyIndicator(bool cancel, int* shown = nullptr) {
        window_->busy().delayMs = 0;
        window_->busy().showBusy = [cancel, shown](std::function<void()> pressCancel) {
            if (shown)
                ++*shown;
            if (cancel)
                pressCancel();
        };
    }
};

TEST_F(WindowTest, MenuBarFollowsTheTable) {
    open();
    QStringList titles;
    for (QAction* a : window_->menuBar()->actions())
        titles << (a->isVisible() ? a->text() : QString());
    EXPECT_EQ(titles.join(""), "&File&Edit&Search&View&Web&Tools&Help");
    EXPECT_FALSE(enabled("mnuFindNext"));
    EXPECT_TRUE(window_->menuState().isChecked("mnuKeepOnTop")); // toggled on at every start
    EXPECT_TRUE(window_->windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_EQ(window_->windowTitle(), path("bin/Text-0.Txt"));
}

TEST_F(WindowTest, CommandLineFileOpensWithItsFullPathAndSearch) {
    writeFile(path("b.txt"), "one\r\nneedle two\r\n");
    open(path("b.txt") + "~ needle ");
    EXPECT_EQ(window_->windowTitle(), path("b.txt"));
    EXPECT_EQ(edit().text(), "one\r\nneedle two\r\n");
    EXPECT_EQ(edit().selStart(), 5);
    EXPECT_EQ(edit().selLength(), 6);
    EXPECT_TRUE(dialogs_.messages.empty());
}

// Each command is one step; a command that changes nothing adds none.
TEST_F(WindowTest, CommandsUndoneAndRedone) {
    openFile("doc.txt", "b\r\n a\r\nb\r\n");
    dialogs_.answers = {">"};
    run("mnuAddPrefix");
    run("mnuAddSuffix"); // cancelled
    run("mnuRemoveRepeats");
    EXPECT_EQ(edit().text(), ">b\r\n> a\r\n>\r\n");
    run("mnuUndo");
    EXPECT_EQ(edit().text(), ">b\r\n> a\r\n>b\r\n>\r\n");
    run("mnuUndo");
    EXPECT_EQ(edit().text(), "b\r\n a\r\nb\r\n");
    EXPECT_FALSE(enabled("mnuUndo"));
    run("mnuRedo");
    run("mnuRedo");
    EXPECT_EQ(edit().text(), ">b\r\n> a\r\n>\r\n");
}

// Opened and saved without an edit: the bytes come back with one line break of their own style.
TEST_F(WindowTest, SaveKeepsTheBytesAndAddsOneLineBreak) {
    QByteArray longLine(150000, 'x'); // past the length laid out without complex shaping
    for (qsizetype i = 0; i < longLine.size(); i += 9)
        longLine[i] = ' ';
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"a\nb\n", "\n"},
        {"a\r\nb", "\r\n"},
        {"", "\r\n"}, // no line break of its own: CR LF, as the batch runner writes
        {QByteArray("\0\x01\x80\xFF\r\n\n\rz\x7F", 10), "\n"},
        {"ok \xC3\x28 \xF0\x28\x8C\x28\r\n", "\r\n"},
        {"\xF0\x9F\x98\x80\r\n", "\r\n"},
        {QByteArray("\xFF\xFEh\0\r\0\n\0", 8), QByteArray("\r\0\n\0", 4)},
        {longLine, "\r\n"},
    };
    int n = 0;
    for (const auto& [bytes, eol] : cases) {
        const QString name = QStringLiteral("f%1.txt").arg(n++);
        openFile(name, bytes);
        run("mnuSave");
        EXPECT_EQ(read(name), bytes + eol) << name;
        EXPECT_TRUE(dialogs_.messages.empty()) << name;
    }
}

TEST_F(WindowTest, SaveRtfSaveAsDeleteAndNew) {
    const QString text = QString::fromUtf8("Käse {braces} \\ back\r\n\tTab 😀");
    openFile("notes.txt", text.toUtf8());
    run("mnuSaveAsRTF");
    EXPECT_EQ(window_->windowTitle(), path("notes.rtf"));
    EXPECT_TRUE(read("notes.rtf").startsWith("{\\rtf1"));
    open(path("notes.rtf"));
    EXPECT_EQ(edit().text(), text);

    files_.saveAnswers.push_back({path("copy"), 2}); // Text files filter: ".txt" added
    run("mnuSaveAs");
    EXPECT_EQ(window_->context().form.FileName, path("copy.txt"));
    EXPECT_EQ(window_->windowTitle(), path("copy.txt"));
    EXPECT_EQ(files_.requests.back().filterIndex, 3); // proposed from the ".rtf" it had
    EXPECT_TRUE(QFile::exists(path("copy.txt")));

    dialogs_.buttonAnswers = {Answer::No};
    run("mnuDelete");
    EXPECT_TRUE(QFile::exists(path("copy.txt")));
    const QString question = "Are you sure you want to delete\r\n\r\n" + path("copy.txt") + " ?";
    EXPECT_EQ(dialogs_.messages.back().text, question);
    EXPECT_EQ(dialogs_.defaults.value(question), Answer::No); // Enter keeps the file
    dialogs_.buttonAnswers = {Answer::Yes};
    run("mnuDelete");
    EXPECT_FALSE(QFile::exists(path("copy.txt")));
    EXPECT_EQ(edit().text(), "");
    EXPECT_EQ(window_->windowTitle(), path("Text-0.Txt"));

    openFile("plain.rtf", "just text\n"); // named .rtf but holding none: opened as text
    EXPECT_EQ(edit().text(), "just text\r\n");
}

TEST_F(WindowTest, SaveAsAddsTheExtensionOfTheChosenFilter) {
    const struct {
        QString typed;
        int filter; // 1 = All files
        QString written;
    } cases[] = {
        {"people", 1, "people.csv"}, // All files: the document's own extension
        {"people", 2, "people.txt"},
        {"people.dat", 1, "people.dat"},
        {"list.dat", 2, "list.dat"},
    };
    for (const auto& c : cases) {
        openFile("people.csv", "name;age\n");
        files_.saveAnswers.push_back({path(c.typed), c.filter});
        run("mnuSaveAs");
        EXPECT_EQ(window_->context().form.FileName, path(c.written)) << c.typed << c.filter;
        EXPECT_TRUE(QFile::exists(path(c.written))) << c.written;
    }
}

TEST(WindowFilters, AllFilesFilterListsFilesWithoutADot) {
    EXPECT_EQ(toQtFilters("All files *.*|*.*|Text files *.txt|*.txt"),
              QStringList({"All files (*)", "Text files (*.txt)"}));
}

TEST_F(WindowTest, LinkMenuHoldsFullPaths) {
    open();
    PutLinkOnMenu(window_->context(), "rtf"); // what Save RTF of a name without "." saves
    EXPECT_EQ(window_->context().form.LinkItems[0], QDir::current().absoluteFilePath("rtf"));
}

TEST_F(WindowTest, FailedSaveLeavesTheOldFileAndTellsTheUser) {
    openFile("keep.txt", "old\n");
    edit().setText("new");
    // The folder is replaced by a file of the same name: nothing can be written there.
    window_->setCaption(path("keep.txt/inner.txt"));
    run("mnuSave");
    EXPECT_EQ(read("keep.txt"), "old\n");
    ASSERT_FALSE(dialogs_.messages.empty());
    EXPECT_EQ(dialogs_.messages.back().title, "Save failed");
}

TEST_F(WindowTest, RecentFilesNewestFirstAndMissingRemoved) {
    writeFile(path("b.txt"), "b");
    openFile("a.txt", "a");
    files_.openAnswers.push_back({path("b.txt"), 1});
    run("mnuOpen");
    EXPECT_EQ(edit().text(), "b");
    auto& links = window_->context().form.LinkItems;
    EXPECT_EQ(links[0], path("b.txt"));
    EXPECT_EQ(links[1], path("a.txt"));
    QFile::remove(path("a.txt"));
    QAction* second = window_->findChild<QAction*>("mnuLnk2");
    ASSERT_NE(second, nullptr);
    second->trigger();
    EXPECT_EQ(links[0], path("b.txt"));
    EXPECT_EQ(links[1], "");
    EXPECT_EQ(dialogs_.messages.back().title, "File not found");
}

TEST_F(WindowTest, LongCommandCanBeCancelledAndLeavesTheDocument) {
    openFile("big.txt", numberedLines(400000));
    const QString before = edit().text();
    int shown = 0;
    busyIndicator(true, &shown);
    dialogs_.answers = {"1"};
    run("mnuRemoveLinesContainingText");
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(edit().text(), before);
    EXPECT_FALSE(enabled("mnuUndo"));

    // Not cancelled: the same command gives its result, one undo step.
    busyIndicator(false);
    dialogs_.answers = {"1"};
    run("mnuRemoveLinesContainingText");
    const QString after = edit().text();
    EXPECT_TRUE(!after.contains("1") && after.contains("line 0"));
    run("mnuUndo");
    EXPECT_EQ(edit().text(), before);
    run("mnuRedo");
    EXPECT_EQ(edit().text(), after);
}

TEST_F(WindowTest, LongOpenCanBeCancelledAndLeavesTheDocumentAndItsName) {
    const QByteArray big = numberedLines(200000);
    writeFile(path("big.txt"), big);
    openFile("small.txt", "kept\r\n");
    int shown = 0;
    busyIndicator(true, &shown);
    files_.openAnswers.push_back({path("big.txt"), 1});
    run("mnuOpen");
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(edit().text(), "kept\r\n");
    EXPECT_EQ(window_->context().form.FileName, path("small.txt"));
    EXPECT_EQ(window_->windowTitle(), path("small.txt"));

    busyIndicator(false);
    files_.openAnswers.push_back({path("big.txt"), 1});
    run("mnuOpen");
    EXPECT_EQ(edit().text(), QString::fromLatin1(big));
    EXPECT_EQ(window_->windowTitle(), path("big.txt"));
    run("mnuSave");
    EXPECT_EQ(read("big.txt"), big + "\r\n");
}

} // namespace
