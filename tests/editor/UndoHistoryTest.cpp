#include "editor/UndoHistory.h"

#include "app/TextBuffer.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;

namespace {

// Counts the replacements so a test can see how small they were.
class CountingBuffer : public TextBuffer {
public:
    using TextBuffer::TextBuffer;
    struct Call {
        int start, length;
        QString text;
    };
    std::vector<Call> calls;
    void replaceRange(int start, int length, const QString& text) override {
        calls.push_back({start, length, text});
        TextBuffer::replaceRange(start, length, text);
    }
};

QString randomText(std::mt19937& rng, int maxLen) {
    static const QString alphabet = QStringLiteral("ab \r\n\u00e9\U0001F600");
    QString s;
    const int n = int(rng() % unsigned(maxLen + 1));
    for (int i = 0; i < n; ++i)
        s += alphabet[int(rng() % unsigned(alphabet.size()))];
    return s;
}

// One random command: a local edit, or a whole-text rewrite like the line commands make.
QString randomEdit(std::mt19937& rng, const QString& doc) {
    switch (rng() % 4) {
    case 0: { // every line prefixed
        QString out = doc;
        return out.replace(QStringLiteral("\r\n"), QStringLiteral("\r\n> ")).prepend("> ");
    }
    case 1:
        return doc.toUpper();
    default: {
        const qsizetype at = doc.isEmpty() ? 0 : qsizetype(rng() % unsigned(doc.size() + 1));
        const qsizetype len = qsizetype(rng() % unsigned(doc.size() - at + 1));
        QString out = doc;
        return out.replace(at, len, randomText(rng, 6));
    }
    }
}

TEST(UndoHistory, RandomCommandsUndoneAndRedoneByteForByte) {
    std::mt19937 rng(11);
    for (int round = 0; round < 200; ++round) {
        std::vector<QString> states{randomText(rng, 40)};
        CountingBuffer edit(states.front());
        UndoHistory history;
        for (int i = 0; i < 12; ++i) {
            const QString next = randomEdit(rng, states.back());
            history.record(states.back(), next);
            if (next != states.back())
                states.push_back(next);
            edit.setText(next);
        }
        ASSERT_EQ(history.undoCount(), qsizetype(states.size() - 1));
        for (size_t i = states.size() - 1; i > 0; --i) {
            ASSERT_TRUE(history.undo(edit));
            ASSERT_EQ(edit.text(), states[i - 1]) << round << " undo to " << i - 1;
            EXPECT_EQ(edit.selLength(), 0);
            EXPECT_EQ(edit.selStart(), edit.calls.back().start);
        }
        EXPECT_FALSE(history.undo(edit));
        for (size_t i = 1; i < states.size(); ++i) {
            ASSERT_TRUE(history.redo(edit));
            ASSERT_EQ(edit.text(), states[i]) << round << " redo to " << i;
        }
        EXPECT_FALSE(history.redo(edit));
    }
}

TEST(UndoHistory, StoresOnlyTheChangedMiddle) {
    const QString big(100000, u'x');
    QString pasted = big;
    pasted.insert(50000, QStringLiteral("PASTE"));
    UndoHistory history;
    history.record(big, pasted);
    EXPECT_EQ(history.storedBytes(), 5); // one byte a character that fits in one

    CountingBuffer edit(pasted);
    edit.setSelStart(7);
    edit.setSelLength(3);
    ASSERT_TRUE(history.undo(edit));
    ASSERT_EQ(edit.calls.size(), 1u);
    EXPECT_EQ(edit.calls[0].start, 50000);
    EXPECT_EQ(edit.calls[0].length, 5);
    EXPECT_EQ(edit.calls[0].text, "");
    EXPECT_EQ(edit.selStart(), 50000);
    EXPECT_EQ(edit.selLength(), 0);
    EXPECT_EQ(edit.text(), big);

    // Repeated characters: the shared beginning and end never overlap.
    struct Case {
        QString before, after;
        qsizetype prefix, suffix;
    };
    for (const Case& c : {Case{"aa", "aaa", 2, 0}, Case{"abcabc", "abc", 3, 0},
                          Case{"abXcd", "abYcd", 2, 2}, Case{"", "new", 0, 0}}) {
        const CommonEnds e = commonEnds(c.before, c.after);
        EXPECT_EQ(e.prefix, c.prefix) << c.before.toStdString();
        EXPECT_EQ(e.suffix, c.suffix) << c.before.toStdString();
    }
    const QString longA = QString(9000, u'q') + "A" + QString(9000, u'q');
    const QString longB = QString(9000, u'q') + "BB" + QString(9000, u'q');
    const CommonEnds e = commonEnds(longA, longB);
    EXPECT_EQ(e.prefix, 9000);
    EXPECT_EQ(e.suffix, 9000);
}

TEST(UndoHistory, NoStepForNoChangeAndNewStepClearsRedo) {
    UndoHistory history;
    history.record("same", "same");
    EXPECT_FALSE(history.canUndo());

    TextBuffer edit("b");
    history.record("a", "b");
    history.record("b", "c");
    edit.setText("c");
    ASSERT_TRUE(history.undo(edit));
    EXPECT_TRUE(history.canRedo());
    history.record("b", "b"); // nothing changed: the redo step stays
    EXPECT_TRUE(history.canRedo());
    history.record("b", "d");
    edit.setText("d");
    EXPECT_FALSE(history.canRedo());
    EXPECT_EQ(history.storedBytes(), 4); // a->b and b->d, 2 bytes each
    ASSERT_TRUE(history.undo(edit));
    ASSERT_TRUE(history.undo(edit));
    EXPECT_EQ(edit.text(), "a");
}

TEST(UndoHistory, MemoryBoundDropsOldestFirst) {
    UndoHistory history(20); // bytes: 20 characters of this text
    TextBuffer edit;
    QString doc;
    for (const char* add : {"0123", "4567", "89ab", "cdef"}) { // each step costs 4 bytes
        const QString next = doc + add;
        history.record(doc, next);
        doc = next;
    }
    EXPECT_EQ(history.undoCount(), 4);
    EXPECT_EQ(history.storedBytes(), 16);
    history.record(doc, doc + "ghij");
    doc += "ghij";
    history.record(doc, doc + "klmn");
    doc += "klmn";
    EXPECT_EQ(history.undoCount(), 5);
    EXPECT_LE(history.storedBytes(), history.limitBytes());

    edit.setText(doc);
    int undone = 0;
    while (history.undo(edit))
        ++undone;
    EXPECT_EQ(undone, 5);
    EXPECT_EQ(edit.text(), "0123"); // the first step was forgotten

    history.setLimitBytes(8); // undone steps go too when nothing else is left
    EXPECT_EQ(history.redoCount(), 2);
    ASSERT_TRUE(history.redo(edit));
    EXPECT_EQ(edit.text(), "01234567");

    history.setLimitBytes(2);
    history.record("x", "a long replacement"); // bigger than the bound: not kept
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(history.storedBytes(), 0);
}

TEST(UndoHistory, TextBeyondOneByteACharacterComesBackExactly) {
    const QString before = QStringLiteral("caf\u00e9 \u20ac");
    const QString after = before + QStringLiteral("\U0001F600!") + QChar(0xD800);
    UndoHistory history;
    history.record(before, after);
    EXPECT_EQ(history.storedBytes(), 8); // four UTF-16 units, two bytes each
    TextBuffer edit(after);
    ASSERT_TRUE(history.undo(edit));
    EXPECT_EQ(edit.text(), before);
    ASSERT_TRUE(history.redo(edit));
    EXPECT_EQ(edit.text(), after);
}

TEST(UndoHistory, DocumentChangedBehindItsBackEmptiesIt) {
    UndoHistory history;
    history.record("abc", "abcdef");
    TextBuffer edit("ab"); // shorter than the step needs
    EXPECT_FALSE(history.undo(edit));
    EXPECT_EQ(edit.text(), "ab");
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
}

} // namespace
