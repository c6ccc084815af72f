// The undo history over a document of bytes: steps of commands and bursts of typing, many levels,
// the memory bound, and a document changed behind the history's back.

#include "editor/UndoHistory.h"
#include "editor/ViewStyles.h"

#include <gtest/gtest.h>

using namespace ed;

namespace {

// A document that records its own changes into the history, as the window's edit control does.
class Doc : public HistoryTarget {
public:
    explicit Doc(QByteArray text) : text(std::move(text)) {}
    QByteArray text;
    qsizetype caret = -1;
    UndoHistory* history = nullptr;

    void edit(qsizetype at, qsizetype length, const QByteArray& with, bool typed, qint64 ms = 0) {
        const QByteArray removed = text.mid(at, length);
        text.replace(at, length, with);
        history->record(ByteChange{at, removed, with, {}, {}}, typed, ms);
    }
    QByteArrayView historyBytes() const override { return text; }
    bool cancelNext = false;
    bool replaceHistoryBytes(qsizetype offset, qsizetype length, QByteArrayView with) override {
        if (std::exchange(cancelNext, false))
            return false;
        text.replace(offset, length, with.toByteArray());
        // The history ignores what its own replay reports.
        history->record(ByteChange{offset, {}, "noise", {}, {}}, false);
        return true;
    }
    void placeHistoryCaret(qsizetype offset) override { caret = offset; }
    void restoreHistoryStyles(const StyleSnapshot&) override {}
};

struct Fixture {
    Doc doc;
    UndoHistory history;
    explicit Fixture(QByteArray text, qsizetype limit = UndoHistory::kDefaultLimitBytes)
        : doc(std::move(text)), history(doc, limit) {
        doc.history = &history;
    }
};

TEST(UndoHistory, CommandsAreStepsManyLevelsDeep) {
    Fixture f("one two three");
    f.doc.edit(0, 3, "ONE", false); // a command of two changes
    f.doc.edit(8, 5, "3", false);
    f.history.close();
    f.doc.edit(4, 3, "\xc3\xa9", false);
    f.history.close();
    ASSERT_EQ(f.doc.text, "ONE \xc3\xa9 3");
    EXPECT_EQ(f.history.undoCount(), 2);

    ASSERT_TRUE(f.history.undo());
    EXPECT_EQ(f.doc.text, "ONE two 3");
    EXPECT_EQ(f.doc.caret, 4);
    ASSERT_TRUE(f.history.undo());
    EXPECT_EQ(f.doc.text, "one two three");
    EXPECT_EQ(f.doc.caret, 0);
    EXPECT_FALSE(f.history.undo());
    ASSERT_TRUE(f.history.redo());
    ASSERT_TRUE(f.history.redo());
    EXPECT_EQ(f.doc.text, "ONE \xc3\xa9 3");
    EXPECT_FALSE(f.history.redo());

    // A cancelled undo leaves the document and the step where they were.
    f.doc.cancelNext = true;
    EXPECT_FALSE(f.history.undo());
    EXPECT_EQ(f.doc.text, "ONE \xc3\xa9 3");
    EXPECT_EQ(f.history.undoCount(), 2);

    // A new change forgets what could be redone.
    ASSERT_TRUE(f.history.undo());
    f.doc.edit(0, 0, "x", false);
    EXPECT_FALSE(f.history.canRedo());

    // A document changed behind the history's back cannot be undone into.
    f.history.close();
    f.doc.text = "something else";
    EXPECT_FALSE(f.history.undo());
    EXPECT_EQ(f.doc.text, "something else");
    EXPECT_FALSE(f.history.canUndo());
}

TEST(UndoHistory, TypingIsOneStepPerBurst) {
    struct Case {
        const char* name;
        qsizetype secondAt; // where the second keystroke lands
        qint64 secondMs;
        int steps;
    };
    for (const Case& c : {Case{"typing on", 1, 100, 1}, Case{"after a pause", 1, 5000, 2},
                          Case{"elsewhere", 5, 100, 2}}) {
        SCOPED_TRACE(c.name);
        Fixture f("abcdefgh");
        f.doc.edit(0, 0, "x", true, 0);
        f.doc.edit(c.secondAt, 0, "y", true, c.secondMs);
        EXPECT_EQ(f.history.undoCount(), c.steps);
        while (f.history.undo()) {
        }
        EXPECT_EQ(f.doc.text, "abcdefgh");
    }
    // Backspace continues the burst; a command in between ends it.
    Fixture f("abc");
    f.doc.edit(3, 0, "d", true, 0);
    f.doc.edit(3, 1, "", true, 10);
    f.doc.edit(3, 0, "e", true, 20);
    EXPECT_EQ(f.history.undoCount(), 1);
    f.history.close();
    f.doc.edit(4, 0, "f", true, 30);
    EXPECT_EQ(f.history.undoCount(), 2);
    ASSERT_TRUE(f.history.undo());
    ASSERT_TRUE(f.history.undo());
    EXPECT_EQ(f.doc.text, "abc");
}

TEST(UndoHistory, KeepsWithinItsLimitByForgettingTheOldest) {
    Fixture f(QByteArray(100, 'a'), 250);
    for (int i = 0; i < 5; ++i) {
        f.doc.edit(0, 50, QByteArray(50, char('b' + i)), false);
        f.history.close();
    }
    EXPECT_LE(f.history.storedBytes(), 250);
    EXPECT_EQ(f.history.undoCount(), 2);
    f.history.setLimitBytes(100);
    EXPECT_EQ(f.history.undoCount(), 1);
    ASSERT_TRUE(f.history.undo());
    EXPECT_EQ(f.doc.text, QByteArray(50, 'e') + QByteArray(50, 'a'));
}

} // namespace
