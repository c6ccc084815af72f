// The window assembled for real on the offscreen platform, over real temporary files.

#include "editor/BusyWork.h"
#include "editor/EditorWindow.h"
#include "editor/PlainTextEditControl.h"
#include "support/Fakes.h"

#include <QFile>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

class WindowTest : public ::testing::Test {
protected:
    void open(const QString& commandLine = QString()) {
        runStartUp(startUp_, dir_.path() + "/bin/Editor", {});
        startUp_.CommandLine = commandLine;
        window_ = std::make_unique<EditorWindow>(startUp_);
        window_->setDialogs(&dialogs_);
        window_->setFileDialogs(&files_);
        window_->load();
    }
    QString path(const QString& name) const { return dir_.path() + "/" + name; }
    void write(const QString& name, const QByteArray& bytes) {
        QFile f(path(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    QByteArray read(const QString& name) {
        QFile f(path(name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
    }
    EditControl& edit() { return window_->editControl(); }
    void run(const QString& item) { window_->trigger(item); }

    QTemporaryDir dir_;
    StartUpState startUp_;
    FakeDialogs dialogs_;
    FakeFileDialogs files_;
    std::unique_ptr<EditorWindow> window_;
};

TEST_F(WindowTest, MenuBarFollowsTheTable) {
    open();
    QStringList titles;
    for (QAction* a : window_->menuBar()->actions())
        if (a->isVisible())
            titles << a->text();
    EXPECT_EQ(titles, QStringList({"File", "Edit", "Search", "View", "Web", "Tools", "Help"}));
    EXPECT_FALSE(window_->menuState().isEnabled("mnuFindNext"));
    EXPECT_TRUE(window_->menuState().isChecked("mnuKeepOnTop")); // toggled on at every start
    EXPECT_TRUE(window_->windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_EQ(window_->windowTitle(), window_->context().form.FileName);
    EXPECT_TRUE(window_->windowTitle().endsWith("/bin/Text-0.Txt"));
}

TEST_F(WindowTest, CommandLineFileOpensWithItsFullPathAndSearch) {
    write("b.txt", "one\r\nneedle two\r\n");
    open(path("b.txt") + "~ needle ");
    EXPECT_EQ(window_->windowTitle(), path("b.txt"));
    EXPECT_EQ(edit().text(), "one\r\nneedle two\r\n");
    EXPECT_EQ(edit().selStart(), 5);
    EXPECT_EQ(edit().selLength(), 6);
    EXPECT_TRUE(dialogs_.messages.empty());
}

TEST_F(WindowTest, ThreeCommandsUndoneAndRedone) {
    write("doc.txt", "b\r\n a\r\nb\r\n");
    open(path("doc.txt"));
    const QString original = edit().text();
    dialogs_.answers = {">"};
    run("mnuAddPrefix");
    run("mnuConvertToUpperCase");
    run("mnuRemoveRepeats");
    const QString done = edit().text();
    EXPECT_EQ(done, ">B\r\n> A\r\n>\r\n");
    std::vector<QString> states;
    for (int i = 0; i < 3; ++i) {
        states.push_back(edit().text());
        run("mnuUndo");
    }
    EXPECT_EQ(edit().text(), original);
    EXPECT_FALSE(window_->menuState().isEnabled("mnuUndo"));
    for (int i = 2; i >= 0; --i) {
        run("mnuRedo");
        EXPECT_EQ(edit().text(), states[size_t(i)]);
    }
    // A command that changes nothing adds no step.
    dialogs_.answers.clear();
    run("mnuAddSuffix"); // cancelled
    run("mnuUndo");
    EXPECT_EQ(edit().text(), states[1]);
}

TEST_F(WindowTest, SaveKeepsFormatAndAddsOneLineBreak) {
    struct Case {
        const char* name;
        QByteArray bytes;
        QByteArray afterSave;
    };
    QByteArray longLine(5 * 1024 * 1024, 'x');
    for (qsizetype i = 0; i < longLine.size(); i += 9)
        longLine[i] = ' ';
    const std::vector<Case> cases = {
        {"lf.txt", "a\nb\n", "a\nb\n\n"},
        {"crlf.txt", "a\r\nb", "a\r\nb\r\n"},
        {"latin.txt", "caf\xE9\n", "caf\xE9\n\n"},
        {"empty.txt", "", "\n"},
        {"binary.bin", QByteArray("\0\x01\x80\xFF\r\n\n\rz", 9),
         QByteArray("\0\x01\x80\xFF\r\n\n\rz\n", 10)},
        {"long.txt", longLine, longLine + "\n"},
    };
    for (const Case& c : cases) {
        write(c.name, c.bytes);
        open(path(c.name));
        run("mnuSave");
        EXPECT_EQ(read(c.name), c.afterSave) << c.name;
        EXPECT_TRUE(dialogs_.messages.empty()) << c.name;
    }
}

TEST_F(WindowTest, SaveRtfSaveAsDeleteAndNew) {
    write("notes.txt", "hello\r\nworld");
    open(path("notes.txt"));
    run("mnuSaveAsRTF");
    EXPECT_EQ(window_->windowTitle(), path("notes.rtf"));
    EXPECT_TRUE(read("notes.rtf").startsWith("{\\rtf1"));
    // Re-open the RTF: the same text comes back.
    open(path("notes.rtf"));
    EXPECT_EQ(edit().text(), "hello\r\nworld");

    files_.saveAnswers.push_back({path("copy"), 2}); // Text files filter: ".txt" added
    run("mnuSaveAs");
    EXPECT_EQ(window_->context().form.FileName, path("copy.txt"));
    EXPECT_EQ(window_->windowTitle(), path("copy.txt"));
    EXPECT_EQ(files_.requests.back().filterIndex, 3); // proposed from the ".rtf" it had
    EXPECT_TRUE(QFile::exists(path("copy.txt")));

    dialogs_.buttonAnswers = {Answer::No};
    run("mnuDelete");
    EXPECT_TRUE(QFile::exists(path("copy.txt")));
    EXPECT_EQ(dialogs_.messages.back().text,
              "Are you sure you want to delete\r\n\r\n" + path("copy.txt") + " ?");
    dialogs_.buttonAnswers = {Answer::Yes};
    run("mnuDelete");
    EXPECT_FALSE(QFile::exists(path("copy.txt")));
    EXPECT_EQ(edit().text(), "");
    EXPECT_EQ(window_->windowTitle(), path("Text-0.Txt"));
}

TEST_F(WindowTest, FailedSaveLeavesTheOldFileAndTellsTheUser) {
    write("keep.txt", "old\n");
    open(path("keep.txt"));
    edit().setText("new");
    // The folder is replaced by a file of the same name: nothing can be written there.
    window_->setCaption(path("keep.txt/inner.txt"));
    run("mnuSave");
    EXPECT_EQ(read("keep.txt"), "old\n");
    ASSERT_FALSE(dialogs_.messages.empty());
    EXPECT_EQ(dialogs_.messages.back().title, "Save failed");
}

TEST_F(WindowTest, RecentFilesNewestFirstAndMissingRemoved) {
    write("a.txt", "a");
    write("b.txt", "b");
    open(path("a.txt"));
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

} // namespace

namespace {

TEST_F(WindowTest, LongCommandCanBeCancelledAndLeavesTheDocument) {
    QByteArray big;
    for (int i = 0; i < 400000; ++i)
        big += "line " + QByteArray::number(i % 5000) + " of a long document\r\n";
    write("big.txt", big);
    open(path("big.txt"));
    const QString before = edit().text();
    int shown = 0;
    window_->busy().delayMs = 0;
    window_->busy().showBusy = [&](std::function<void()> cancel) {
        ++shown;
        cancel();
    };
    dialogs_.answers = {"1"};
    run("mnuRemoveLinesContainingText");
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(edit().text(), before);
    EXPECT_FALSE(window_->menuState().isEnabled("mnuUndo"));

    // Not cancelled: the same command gives its result, one undo step.
    window_->busy().showBusy = [&](std::function<void()>) { ++shown; };
    dialogs_.answers = {"1"};
    run("mnuRemoveLinesContainingText");
    EXPECT_NE(edit().text(), before);
    EXPECT_FALSE(edit().text().contains("1"));
    run("mnuUndo");
    EXPECT_EQ(edit().text(), before);
}

TEST_F(WindowTest, LongOpenCanBeCancelledAndLeavesTheDocumentAndItsName) {
    write("small.txt", "kept\r\n");
    QByteArray big;
    for (int i = 0; i < 200000; ++i)
        big += "line " + QByteArray::number(i) + "\r\n";
    write("big.txt", big);
    open(path("small.txt"));
    window_->busy().delayMs = 0;
    int shown = 0;
    window_->busy().showBusy = [&](std::function<void()> cancel) {
        ++shown;
        cancel();
    };
    files_.openAnswers.push_back({path("big.txt"), 1});
    run("mnuOpen");
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(edit().text(), "kept\r\n");
    EXPECT_EQ(window_->context().form.FileName, path("small.txt"));
    EXPECT_EQ(window_->windowTitle(), path("small.txt"));

    window_->busy().showBusy = [&](std::function<void()>) { ++shown; };
    files_.openAnswers.push_back({path("big.txt"), 1});
    run("mnuOpen");
    EXPECT_EQ(edit().text(), QString::fromLatin1(big));
    EXPECT_EQ(window_->windowTitle(), path("big.txt"));
    // Saved back unchanged, plus the one line break a save adds.
    run("mnuSave");
    EXPECT_EQ(read("big.txt"), big + "\r\n");
}

TEST_F(WindowTest, UndoOfALargeStepCanBeCancelled) {
    QByteArray big;
    for (int i = 0; i < 80000; ++i)
        big += "entry number " + QByteArray::number(i) + "\r\n";
    write("big.txt", big);
    open(path("big.txt"));
    const QString before = edit().text();
    ASSERT_GE(before.size(), PlainTextEditControl::kLargeText);
    dialogs_.answers = {"> "};
    run("mnuAddPrefix");
    const QString prefixed = edit().text();
    ASSERT_NE(prefixed, before);

    window_->busy().delayMs = 0;
    window_->busy().showBusy = [](std::function<void()> cancel) { cancel(); };
    run("mnuUndo");
    EXPECT_EQ(edit().text(), prefixed);
    EXPECT_TRUE(window_->menuState().isEnabled("mnuUndo"));

    window_->busy().showBusy = [](std::function<void()>) {};
    run("mnuUndo");
    EXPECT_EQ(edit().text(), before);
    run("mnuRedo");
    EXPECT_EQ(edit().text(), prefixed);
}

TEST_F(WindowTest, LargeResultOfAWindowCommandShowsTheBusyIndicator) {
    QByteArray big;
    for (int i = 0; i < 80000; ++i)
        big += "entry abc " + QByteArray::number(i) + "\r\n";
    write("big.txt", big);
    open(path("big.txt"));
    int shown = 0;
    window_->busy().delayMs = 0;
    window_->busy().showBusy = [&](std::function<void()> cancel) {
        ++shown;
        cancel(); // an assignment that is part of a command cannot be cancelled
    };
    dialogs_.answers = {"abc", "xyz"};
    run("mnuReplace");
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(edit().text(), QString::fromLatin1(big).replace("abc", "xyz"));
}

} // namespace
