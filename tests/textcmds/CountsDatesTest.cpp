// Char Count, Line Count and the date and time stamps.
#include "app/ErrorLogger.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(CountCommands, ShowTheCount) {
    const struct {
        const char* item;
        const char* text;
        int selStart, selLength;
        const char* message;
    } cases[] = {
        {"mnuGetCharCount", "hello world!", 3, 0, "Character Count = 12"},
        {"mnuGetCharCount", "a\r\n😀", 0, 0, "Character Count = 5"}, // UTF-16 units
        {"mnuShowLineCount", "a\r\nb", 1, 2, "Line Count = 2"},
        {"mnuShowLineCount", "", 0, 0, "Line Count = 0"},
        {"mnuShowLineCount", "a\nb\rc", 0, 0, "Line Count = 1"},
        // Breaks on both sides of a sixteen-byte boundary, and a CR before a CR LF.
        {"mnuShowLineCount", "123456789012345\r\n789012345678901\r\r\n\n\r", 0, 0,
         "Line Count = 3"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " on " + c.text);
        const auto h = runOn(c.item, QString::fromUtf8(c.text), {}, c.selStart, c.selLength);
        ASSERT_EQ(h->dialogs.messages.size(), 1u);
        EXPECT_EQ(h->dialogs.messages[0].text, c.message);
        EXPECT_EQ(h->edit.assignments(), 0);
    }
}

TEST(DateCommands, ReplaceTheSelectionAndLeaveTheCaretInFront) {
    const QString date = localeShortDate(QDate(2031, 2, 3));
    const QString time = localeTime(QTime(4, 5, 6));
    const struct {
        const char* item;
        const char* text;
        int selStart, selLength;
        QString expected;
    } cases[] = {
        {"mnuInsertDate", "abcdef", 3, 0, "abc" + date + "def"},
        {"mnuInsertDateTime", "abxyzcd", 2, 3, "ab" + date + ": " + time + "cd"},
        {"mnuInsertTime", "", 0, 0, time},
        {"mnuInsertDate", "é😀xyz", 3, 1, "é😀" + date + "yz"}, // positions count UTF-16 units
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.item);
        Harness h(QString::fromUtf8(c.text));
        h.clock.time = QDateTime(QDate(2031, 2, 3), QTime(4, 5, 6));
        h.select(c.selStart, c.selLength);
        h.run(c.item);
        EXPECT_EQ(h.edit.text(), c.expected);
        EXPECT_EQ(h.edit.selStart(), c.selStart);
        EXPECT_EQ(h.edit.selLength(), 0);
    }
}

} // namespace
