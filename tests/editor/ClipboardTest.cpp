// The clipboard commands and InsertText: text, selection and clipboard afterwards.

#include "editor/ClipboardCommands.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(Clipboard, CommandsChangeTextSelectionAndClipboard) {
    struct Case {
        const char* item;
        QString text;
        int selStart, selLength;
        QString clipboard, expected;
        int expStart, expLength;
        QString expClipboard;
    } cases[] = {
        {"mnuCut", "hello world", 0, 6, "old", "world", 0, 0, "hello "},
        {"mnuCut", "abc", 1, 0, "old", "abc", 1, 0, ""}, // nothing selected empties the clipboard
        // Positions count UTF-16 units: the emoji is two, the accented letter one.
        {"mnuCut", QStringLiteral("\u00e9\U0001F600ab"), 1, 3, "", QStringLiteral("\u00e9b"), 1, 0,
         QStringLiteral("\U0001F600a")},
        {"mnuCopy", "abc", 1, 1, "old", "abc", 1, 1, "b"},
        // The line break stays and the caret stands before the pasted text.
        {"mnuPaste", "ab", 1, 0, "x\r\n", "ax\r\nb", 1, 0, "x\r\n"},
        {"mnuPaste", "abcd", 1, 2, "X", "aXd", 1, 0, "X"},
        {"mnuPaste", "abcd", 0, 3, "", "d", 0, 0, ""},
        {"mnuSelectAll", "a\r\nb", 2, 0, "c", "a\r\nb", 0, 4, "c"},
        {"mnuLoadClipBoardText", "old", 1, 1, "new\r\n", "new\r\n", 0, 0, "new\r\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " on " + c.text.toStdString());
        Harness h(c.text);
        h.select(c.selStart, c.selLength);
        h.clipboard.setText(c.clipboard);
        h.run(c.item);
        EXPECT_EQ(h.edit.text(), c.expected);
        EXPECT_EQ(h.edit.selStart(), c.expStart);
        EXPECT_EQ(h.edit.selLength(), c.expLength);
        EXPECT_EQ(h.clipboard.text(), c.expClipboard);
    }
}

TEST(Clipboard, InsertTextGoesInAtTheCaretKeepingTheOldText) {
    struct Case {
        QString text, undoText; // before
        int selStart, selLength;
        QString expected, expUndoText;
    } cases[] = {
        {"old", "", 0, 0, "T\r\nold", "old"}, // at the start: a line break follows
        {"abcd", "", 1, 2, "aTbcd", "abcd"},  // the selection stays
        {QStringLiteral("\U0001F600z"), "", 2, 0, QStringLiteral("\U0001F600Tz"),
         QStringLiteral("\U0001F600z")},
        // An empty document first gets the kept text back, then T goes before it.
        {"", "prev", 0, 0, "T\r\nprev", "prev"},
    };
    for (const Case& c : cases) {
        Harness h(c.text);
        h.form.UndoText = toModelUtf8(c.undoText);
        h.select(c.selStart, c.selLength);
        InsertText(h.ctx, QStringLiteral("T"));
        EXPECT_EQ(h.edit.text(), c.expected);
        EXPECT_EQ(h.form.UndoText, toModelUtf8(c.expUndoText));
        EXPECT_EQ(h.edit.selStart(), 0);
    }
}

} // namespace
