// Char Count, Line Count and the date and time stamps.
#include "app/ErrorLogger.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(CountCommands, ShowTheCount) {
    struct Case {
        const char* item;
        const char* text;
        int selStart, selLength;
        const char* message;
    };
    const Case cases[] = {
        {"mnuGetCharCount", "hello world!", 3, 0, "Character Count = 12"},
        {"mnuGetCharCount", "a\r\nb", 0, 0, "Character Count = 4"},
        {"mnuGetCharCount", "😀", 0, 0, "Character Count = 2"},
        {"mnuShowLineCount", "a\r\nb", 1, 2, "Line Count = 2"},
        {"mnuShowLineCount", "", 0, 0, "Line Count = 0"},
        {"mnuShowLineCount", "a\nb\rc", 0, 0, "Line Count = 1"},
        // Breaks on both sides of a sixteen-byte boundary, and a CR before a CR LF.
        {"mnuShowLineCount", "123456789012345\r\n789012345678901\r\r\n\n\r", 0, 0,
         "Line Count = 3"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " on " + c.text);
        const auto h = runOn(c.item, QString::fromUtf8(c.text), {}, c.selStart, c.selLength);
        ASSERT_EQ(h->dialogs.messages.size(), 1u);
        EXPECT_EQ(h->dialogs.messages[0].text, c.message);
        EXPECT_EQ(h->dialogs.messages[0].title, defaultTitle());
        EXPECT_EQ(h->dialogs.messages[0].icon,
                  QLatin1String(c.item) == "mnuGetCharCount" ? Icon::Information : Icon::None);
        EXPECT_EQ(h->edit.assignments(), 0);
    }
}

TEST(DateCommands, ReplaceTheSelectionAndLeaveTheCaretInFront) {
    struct Case {
        const char* item;
        const char* text;
        int selStart, selLength;
        const char* before;
        const char* after;
    };
    const Case cases[] = {
        {"mnuInsertDate", "abcdef", 3, 0, "abc", "def"},
        {"mnuInsertDateTime", "abxyzcd", 2, 3, "ab", "cd"},
        {"mnuInsertTime", "", 0, 0, "", ""},
        {"mnuInsertDate", "é😀xyz", 3, 1, "é😀", "yz"}, // positions count UTF-16 units
    };
    const QString date = localeShortDate(QDate(2031, 2, 3));
    const QString time = localeTime(QTime(4, 5, 6));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item);
        Harness h(QString::fromUtf8(c.text));
        h.clock.time = QDateTime(QDate(2031, 2, 3), QTime(4, 5, 6));
        h.select(c.selStart, c.selLength);
        h.run(c.item);
        const QString item = QString::fromLatin1(c.item);
        const QString stamp = item == u"mnuInsertDate"   ? date
                              : item == u"mnuInsertTime" ? time
                                                         : date + QStringLiteral(": ") + time;
        EXPECT_EQ(h.edit.text(), QString::fromUtf8(c.before) + stamp + QString::fromUtf8(c.after));
        EXPECT_EQ(h.edit.selStart(), c.selStart);
        EXPECT_EQ(h.edit.selLength(), 0);
    }
}

} // namespace
