// The window keeps a person's files safe: a failed load never lets Save empty another file,
// unsaved changes are asked about, a recovery copy comes back after a crash, a file changed by
// another program is not overwritten blindly, and a Latin-1 file is not turned into UTF-8
// without asking. Offscreen, over real files.

#include "WindowFixture.h"
#include "editor/Recovery.h"

#include <QAction>
#include <QFile>
#include <QLabel>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace ed;
using namespace ed::test;

namespace {

class FileSafetyTest : public WindowFixture {
protected:
    FileSafetyTest() {
        qputenv("XDG_STATE_HOME", (dir_.path() + "/state").toLocal8Bit());
        writeFile(path("a.txt"), "first\r\n");
    }
    ~FileSafetyTest() override { qputenv("XDG_STATE_HOME", savedState_); }

    bool modifiedShown() {
        auto* label = window_->findChild<QLabel*>("lblModified");
        return label && !label->isHidden() && label->text() == "Modified";
    }
    bool asked(const QString& question) {
        for (const MessageEvent& m : dialogs_.messages)
            if (m.text == question)
                return true;
        return false;
    }
    void openWithDialog(const QString& name) { files_.openAnswers.push_back({path(name), 1}); }

    QByteArray savedState_ = qgetenv("XDG_STATE_HOME");
};

// A load that fails empties the document but leaves the caption on the last file: Save must
// not replace that file (nor the unreadable one) without asking, and No is the default.
TEST_F(FileSafetyTest, FailedLoadNeverLetsSaveReplaceAFile) {
    QDir().mkpath(path("folder.txt"));
    writeFile(path("deep.rtf"),
              QByteArray("{\\rtf1 ") + QByteArray(1200, '{') + "x" + QByteArray(1200, '}') + "}");
    struct Case {
        const char* bad;
        bool commandLine;
        const char* kept; // the file Save targets
    };
    const Case cases[] = {
        {"folder.txt", false, "a.txt"},
        {"deep.rtf", false, "a.txt"},
        {"deep.rtf", true, "deep.rtf"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bad);
        dialogs_ = FakeDialogs();
        const QByteArray before = readFile(path(c.kept));
        if (c.commandLine) {
            open(path(c.bad));
        } else {
            open(path("a.txt"));
            openWithDialog(c.bad);
            window_->trigger("mnuOpen");
        }
        ASSERT_EQ(window_->windowTitle(), path(c.kept));
        EXPECT_EQ(text(), "");
        window_->trigger("mnuSave");
        const QString question = "Replace " + path(c.kept) + " with this document?";
        EXPECT_TRUE(asked(question));
        EXPECT_EQ(dialogs_.defaults.value(question), Answer::No);
        EXPECT_EQ(readFile(path(c.kept)), before);
    }
}

// New documents, and the file the document came from, are saved without a question.
TEST_F(FileSafetyTest, SaveAsksOnlyAboutOtherExistingFiles) {
    open(path("a.txt"));
    type("x");
    window_->trigger("mnuSave");
    EXPECT_EQ(readFile(path("a.txt")), "xfirst\r\n\r\n");
    EXPECT_FALSE(modifiedShown());
    window_->trigger("mnuNew");
    type("new");
    window_->trigger("mnuSave");
    EXPECT_EQ(readFile(path("Text-0.Txt")), "new\n");
    EXPECT_TRUE(dialogs_.messages.empty());
}

// Each command that replaces the document or closes the window asks first when it is modified:
// Cancel stops it, No drops the changes, Yes saves them first.
TEST_F(FileSafetyTest, UnsavedChangesAreAskedAbout) {
    writeFile(path("b.txt"), "second\r\n");
    struct Case {
        const char* command;
        Answer answer;
        bool proceeds;
        QByteArray saved; // a.txt afterwards
    };
    const Case cases[] = {
        {"mnuNew", Answer::Cancel, false, "first\r\n"},
        {"mnuOpen", Answer::Cancel, false, "first\r\n"},
        {"mnuOpenSelect", Answer::Cancel, false, "first\r\n"},
        {"mnuLnk2", Answer::Cancel, false, "first\r\n"},
        {"close", Answer::Cancel, false, "first\r\n"},
        {"mnuExit", Answer::Cancel, false, "first\r\n"},
        {"mnuNew", Answer::No, true, "first\r\n"},
        {"mnuOpen", Answer::No, true, "first\r\n"},
        {"mnuLnk2", Answer::Yes, true, "typedfirst\r\n\r\n"},
        {"close", Answer::Yes, true, "typedfirst\r\n\r\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.command) + " " + std::to_string(int(c.answer)));
        writeFile(path("a.txt"), "first\r\n");
        dialogs_ = FakeDialogs();
        files_ = FakeFileDialogs();
        open(path("b.txt"));
        openWithDialog("a.txt");
        window_->trigger("mnuOpen"); // a.txt, with b.txt second on the recent list
        window_->show();
        type("typed");
        EXPECT_TRUE(modifiedShown());
        EXPECT_EQ(window_->windowTitle(), path("a.txt"));
        openWithDialog("b.txt");
        dialogs_.buttonAnswers = {c.answer};
        if (QString(c.command) == "close") {
            window_->close();
        } else if (QString(c.command) == "mnuLnk2") {
            window_->findChild<QAction*>("mnuLnk2")->trigger();
        } else {
            window_->trigger(c.command);
        }
        EXPECT_TRUE(asked("Save changes to " + path("a.txt") + "?"));
        const bool stillThere = text() == "typedfirst\r\n" && window_->isVisible();
        EXPECT_EQ(stillThere, !c.proceeds);
        EXPECT_EQ(readFile(path("a.txt")), c.saved);
        if (!c.proceeds) { // the typing can still be undone
            window_->trigger("mnuUndo");
            EXPECT_EQ(text(), "first\r\n");
        }
    }
}

// A recovery copy holds the path and the text, privately; at the next start a copy whose
// writer has ended is offered, and Yes brings the text back as an unsaved document. Save
// removes the copy.
TEST_F(FileSafetyTest, RecoveryCopyIsWrittenAndOfferedBack) {
    open(path("a.txt"));
    type("typed");
    window_->writeRecovery();
    window_->recovery().flush();
    const QString file = window_->recovery().currentFile();
    RecoveredDocument doc;
    ASSERT_TRUE(RecoveryStore::read(file, doc));
    EXPECT_EQ(doc.path, path("a.txt"));
    EXPECT_EQ(doc.text, "typedfirst\r\n");
    struct stat st {};
    ASSERT_EQ(::stat(QFile::encodeName(file).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    ASSERT_EQ(::stat(QFile::encodeName(window_->recovery().folder()).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);

    // The same copy as a crashed Editor leaves it: its writer is gone.
    const QString orphan = window_->recovery().folder() + "/crashed-999999999.recovery";
    QByteArray bytes = readFile(file);
    bytes.replace(QByteArray::number(QCoreApplication::applicationPid()) + "\n", "999999999\n");
    writeFile(orphan, bytes);
    for (Answer answer : {Answer::No, Answer::Yes}) {
        SCOPED_TRACE(int(answer));
        if (answer == Answer::Yes)
            writeFile(orphan, bytes);
        window_.reset();
        dialogs_ = FakeDialogs();
        dialogs_.buttonAnswers = {answer};
        open();
        ASSERT_EQ(dialogs_.messages.size(), 1u);
        EXPECT_TRUE(dialogs_.messages[0].text.startsWith("Recover the unsaved changes of " +
                                                         path("a.txt") + " from "));
        EXPECT_FALSE(QFile::exists(orphan));
        if (answer == Answer::No)
            continue;
        EXPECT_EQ(text(), "typedfirst\r\n");
        EXPECT_EQ(window_->windowTitle(), path("a.txt"));
        EXPECT_TRUE(modifiedShown());
        const QString mine = window_->recovery().currentFile();
        EXPECT_TRUE(QFile::exists(mine));
        dialogs_.buttonAnswers = {Answer::Yes}; // replace a.txt, which the text did not come from
        window_->trigger("mnuSave");
        window_->recovery().flush();
        EXPECT_EQ(readFile(path("a.txt")), "typedfirst\n\n"); // a new document's format
        EXPECT_FALSE(QFile::exists(mine));
    }
}

// Another program's change is never overwritten without a question (No the default); an
// unmodified document follows the file when the window is activated, a modified one asks.
TEST_F(FileSafetyTest, FileChangedByAnotherProgram) {
    open(path("a.txt"));
    writeFile(path("a.txt"), "changed elsewhere\r\n");
    window_->checkFileOnDisk();
    EXPECT_EQ(text(), "changed elsewhere\r\n");
    EXPECT_FALSE(modifiedShown());

    type("mine ");
    writeFile(path("a.txt"), "changed again\r\n");
    window_->checkFileOnDisk(); // asked; No keeps the changes
    EXPECT_EQ(text(), "mine changed elsewhere\r\n");
    window_->trigger("mnuSave");
    const QString question = path("a.txt") + " was changed by another program. Replace it?";
    EXPECT_TRUE(asked(question));
    EXPECT_EQ(dialogs_.defaults.value(question), Answer::No);
    EXPECT_EQ(readFile(path("a.txt")), "changed again\r\n");
    dialogs_.buttonAnswers = {Answer::Yes};
    window_->trigger("mnuSave");
    EXPECT_EQ(readFile(path("a.txt")), "mine changed elsewhere\r\n\r\n");
}

// A Latin-1 file that now holds a character Latin-1 cannot store: Cancel writes nothing,
// Yes writes UTF-8.
TEST_F(FileSafetyTest, Latin1FileIsNotTurnedIntoUtf8WithoutAsking) {
    writeFile(path("l.txt"), "caf\xe9\n");
    open(path("l.txt"));
    window_->trigger("mnuSave");
    EXPECT_EQ(readFile(path("l.txt")), "caf\xe9\n\n"); // still Latin-1, nothing asked
    EXPECT_TRUE(dialogs_.messages.empty());
    type("\u20ac");
    for (Answer answer : {Answer::Cancel, Answer::Yes}) {
        dialogs_.buttonAnswers = {answer};
        window_->trigger("mnuSave");
        EXPECT_TRUE(asked(path("l.txt") +
                          " holds characters that its encoding cannot store. Save it as UTF-8?"));
        EXPECT_EQ(readFile(path("l.txt")), answer == Answer::Yes ? QByteArray("\xe2\x82\xac"
                                                                              "caf\xc3\xa9\n\n")
                                                                 : QByteArray("caf\xe9\n\n"));
    }
}

} // namespace
