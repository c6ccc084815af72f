#include "app/ErrorLogger.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct CountCase {
    const char* item;
    const char* text;
    int selStart, selLength;
    const char* message;
    Icon icon;
};

class CountTest : public ::testing::TestWithParam<CountCase> {};

TEST_P(CountTest, ShowsTheCount) {
    const CountCase& c = GetParam();
    Harness h(QString::fromUtf8(c.text));
    h.select(c.selStart, c.selLength);
    h.run(QString::fromLatin1(c.item));
    ASSERT_EQ(h.dialogs.messages.size(), 1u);
    EXPECT_EQ(h.dialogs.messages[0].text, QString::fromUtf8(c.message));
    EXPECT_EQ(h.dialogs.messages[0].title, defaultTitle());
    EXPECT_EQ(h.dialogs.messages[0].icon, c.icon);
    EXPECT_EQ(h.dialogs.messages[0].buttons, Buttons::Ok);
    EXPECT_EQ(h.edit.assignments(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CountTest,
    ::testing::Values(
        CountCase{"mnuGetCharCount", "hello world!", 2, 5, "Selected Character Count = 5",
                  Icon::Information},
        CountCase{"mnuGetCharCount", "hello world!", 3, 0, "Character Count = 12",
                  Icon::Information},
        CountCase{"mnuGetCharCount", "a\r\nb", 0, 0, "Character Count = 4", Icon::Information},
        CountCase{"mnuGetCharCount", "😀", 0, 0, "Character Count = 2", Icon::Information},
        CountCase{"mnuShowLineCount", "a\r\nb", 1, 2, "Line Count = 2", Icon::None},
        CountCase{"mnuShowLineCount", "a\r\nb\r\n", 0, 0, "Line Count = 3", Icon::None},
        CountCase{"mnuShowLineCount", "", 0, 0, "Line Count = 0", Icon::None},
        CountCase{"mnuShowLineCount", "a\nb\rc", 0, 0, "Line Count = 1", Icon::None},
        // Breaks on both sides of a sixteen-byte boundary, and a CR before a CR LF.
        CountCase{"mnuShowLineCount", "123456789012345\r\n789012345678901\r\r\n\n\r", 0, 0,
                  "Line Count = 3", Icon::None}));

struct StampCase {
    const char* item;
    const char* text;
    int selStart, selLength;
    const char* before;
    const char* after;
};

class StampTest : public ::testing::TestWithParam<StampCase> {};

TEST_P(StampTest, ReplacesSelectionAndLeavesCaretInFront) {
    const StampCase& c = GetParam();
    Harness h(QString::fromUtf8(c.text));
    h.clock.time = QDateTime(QDate(2031, 2, 3), QTime(4, 5, 6));
    h.select(c.selStart, c.selLength);
    h.run(QString::fromLatin1(c.item));
    const QString date = localeShortDate(QDate(2031, 2, 3));
    const QString time = localeTime(QTime(4, 5, 6));
    const QString item = QString::fromLatin1(c.item);
    const QString stamp = item == u"mnuInsertDate"   ? date
                          : item == u"mnuInsertTime" ? time
                                                     : date + QStringLiteral(": ") + time;
    EXPECT_EQ(h.edit.text(), QString::fromUtf8(c.before) + stamp + QString::fromUtf8(c.after));
    EXPECT_EQ(h.edit.selStart(), c.selStart);
    EXPECT_EQ(h.edit.selLength(), 0);
}

INSTANTIATE_TEST_SUITE_P(Cases, StampTest,
                         ::testing::Values(StampCase{"mnuInsertDate", "abcdef", 3, 0, "abc", "def"},
                                           StampCase{"mnuInsertDateTime", "abxyzcd", 2, 3, "ab",
                                                     "cd"},
                                           StampCase{"mnuInsertTime", "", 0, 0, "", ""},
                                           // Positions count UTF-16 units.
                                           StampCase{"mnuInsertDate", "é😀xyz", 3, 1, "é😀", "yz"},
                                           StampCase{"mnuInsertTime", "ab", 2, 0, "ab", ""}));

} // namespace
