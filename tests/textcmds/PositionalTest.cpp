#include "textcmds/Positional.h"
#include "app/Trap.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct PosCase {
    const char* item;
    const char* text;
    const char* answer;
    const char* expected;
};

class PositionalTest : public ::testing::TestWithParam<PosCase> {};

TEST_P(PositionalTest, CutsEveryLine) {
    const PosCase& c = GetParam();
    Harness h(QString::fromUtf8(c.text));
    h.dialogs.answers.push_back(QString::fromUtf8(c.answer));
    h.run(QString::fromLatin1(c.item));
    EXPECT_EQ(h.edit.text(), QString::fromUtf8(c.expected));
    EXPECT_EQ(h.edit.assignments(), 1);
    EXPECT_TRUE(h.log.errors.empty());
    EXPECT_TRUE(h.dialogs.messages.empty());
    EXPECT_EQ(h.setting("frmEdit", "Previous Switch At Text"), QString::fromUtf8(c.answer));
}

constexpr const char* CR = "mnuInsertCRAt";
constexpr const char* TX = "mnuInsertTextAt";
constexpr const char* LS = "mnuRemoveLeftSide";
constexpr const char* RS = "mnuRemoveRightSide";

INSTANTIATE_TEST_SUITE_P(
    InsertCRAt, PositionalTest,
    ::testing::Values(
        PosCase{CR, "a,b,c", ",", "a,\r\nb,c\r\n"}, PosCase{CR, "a,b,c", ",/2/b", "a,b\r\n,c\r\n"},
        PosCase{CR, "a,b,c", ",/2/A", "a,b\r\n,c\r\n"},

        PosCase{CR, "a,b,c", ",/0/b", "a\r\n,b,c\r\n"}, // n < 1: the first occurrence
        PosCase{CR, "a,b\r\nxyz\r\nc,d", ",", "a,\r\nb\r\nc,\r\nd\r\n"},
        PosCase{CR, "a,b", ",/5/a", ""}, PosCase{CR, "xxabyy", "ab", "xxa\r\nbyy\r\n"},
        PosCase{CR, "X,Y", ",", "X,\r\nY\r\n"}, PosCase{CR, "xxÉTÉ", "été", "xxÉ\r\nTÉ\r\n"},
        // One slash: the marker up to it, first occurrence, after.
        PosCase{CR, "axbxc", "x/3", "ax\r\nbxc\r\n"},
        // Three slashes are not the long form either.
        PosCase{CR, "axbxc", "x/2/b/", "ax\r\nbxc\r\n"},
        // Overlapping occurrences count.
        PosCase{CR, "aaaa", "aa/2/b", "a\r\naaa\r\n"}, PosCase{CR, "aaaa", "aa/4/a", ""},

        PosCase{CR, "aabaabaaab", "aab/3/b", "aabaaba\r\naab\r\n"},
        PosCase{CR, "a,b\r\n", ",", "a,\r\nb\r\n"},
        // The same-length lower case keeps positions in step with the line.
        PosCase{CR, "İ,x", ",", "İ,\r\nx\r\n"},
        // An empty marker cuts at a column; lines too short for it go.
        PosCase{CR, "abc\r\n", "/", "a\r\nbc\r\n"},
        PosCase{CR, "abcd\r\nab", "/3/b", "ab\r\ncd\r\n"},

        // A character outside the BMP is never split in two.
        PosCase{CR, "x😀y", "😀", "x😀\r\ny\r\n"}, PosCase{CR, "😀😀y", "/1/a", "😀\r\n😀y\r\n"},
        PosCase{CR, "x😀y😀z", "😀/2/b", "x😀y\r\n😀z\r\n"},
        // Characters whose lower case takes fewer or more bytes (Kelvin sign, capital A with
        // stroke) before and inside the marker: the cut stays at the right character.
        PosCase{CR, "\u212A\r\nab\u023A,c\r\n\u212Ax,y", ",",
                "ab\u023A,\r\nc\r\n\u212Ax,\r\ny\r\n"},
        PosCase{CR, "\u212A,\u212A,x", "k/2/a", "\u212A,\u212A\r\n,x\r\n"},
        PosCase{CR, "\u023A\u212A,\u212A,x", ",/2/b", "\u023A\u212A,\u212A\r\n,x\r\n"}));

INSTANTIATE_TEST_SUITE_P(
    InsertTextAt, PositionalTest,
    ::testing::Values(PosCase{TX, "a,b", ",/1/ and/b", "a and,b\r\n"},
                      PosCase{TX, "a,b", ",/1/X/a", "a,Xb\r\n"},
                      PosCase{TX, "a,b\r\nc,d", ",/0/X/a", ""},
                      PosCase{TX, "a,b,c\r\nx,y", ",/2/-/a", "a,b,-c\r\n"},
                      PosCase{TX, "A,B", ",/1//A", "A,B\r\n"}, // empty text, side before
                      PosCase{TX, "aaa", "aa/2/[/a", "aa[a\r\n"},
                      PosCase{TX, "a,b", ", /1/X/a", ""},
                      PosCase{TX, "a,b", ",/ 1 /X/a", "a,Xb\r\n"},
                      PosCase{TX, "a,b,c,d", ",/2.5/X/a", "a,b,Xc,d\r\n"}, // rounds half to even
                      PosCase{TX, "x😀y", "😀/1/+/a", "x😀+y\r\n"}));

INSTANTIATE_TEST_SUITE_P(
    Truncate, PositionalTest,
    ::testing::Values(PosCase{LS, "key = value", "=", "value\r\n"},
                      PosCase{LS, "  no marker  ", "=", "  no marker  \r\n"},
                      PosCase{LS, "xABy", "ab", "y\r\n"}, PosCase{LS, "a=b\r\n", "=", "b\r\n\r\n"},
                      PosCase{LS, "xa/by", "a/b", "y\r\n"}, PosCase{RS, "abzzcd", "ZZ", "ab\r\n"},
                      PosCase{RS, "key = value\r\nplain ", "=", "key\r\nplain \r\n"},
                      PosCase{RS, "😀a😀", "a", "😀\r\n"},
                      PosCase{LS, "a\u212A b\r\nc", "k", "b\r\nc\r\n"},
                      PosCase{RS, "\u023Aa \u212AK b", "kk", "\u023Aa\r\n"}));

TEST(PositionalPrompt, SharesTheRememberedMarker) {
    struct Row {
        const char* item;
        const char* prompt;
        const char* title;
    };
    const Row rows[] = {
        {CR,
         "Insert CR at what character? enter InsertAtChar/Occurance as #/a or b (after or before "
         "InSertAtChar)",
         "Enter character"},
        {TX,
         "Insert text at what character? \r\nChar/Occurance #/InsertText/a or b (after or before)",
         "Enter character"},
        {LS, "Truncate left side at?", "Enter character to truncate at"},
        {RS, "Truncate right side at?", "Enter character to truncate at"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.item);
        Harness h(QStringLiteral("a;b"));
        h.setSetting("frmEdit", "Previous Switch At Text", ";");
        h.run(r.item); // cancelled
        ASSERT_EQ(h.dialogs.prompts.size(), 1u);
        EXPECT_EQ(h.dialogs.prompts[0].prompt, QString::fromUtf8(r.prompt));
        EXPECT_EQ(h.dialogs.prompts[0].title, QString::fromUtf8(r.title));
        EXPECT_EQ(h.dialogs.prompts[0].defaultAnswer, ";");
        EXPECT_EQ(h.edit.assignments(), 0);
        EXPECT_EQ(h.settings.writes, 0);

        Harness sel(QStringLiteral("x  ;  y"));
        sel.select(1, 4);
        sel.run(r.item);
        EXPECT_EQ(sel.dialogs.prompts[0].defaultAnswer, ";");
    }
}

TEST(InsertTextAt, WantsExactlyThreeSlashes) {
    for (const char* answer : {",/1/X", ",", ",/1/X/a/", "////"}) {
        SCOPED_TRACE(answer);
        Harness h(QStringLiteral("a,b"));
        h.dialogs.answers.push_back(QString::fromUtf8(answer));
        h.run(TX);
        ASSERT_EQ(h.dialogs.messages.size(), 1u);
        EXPECT_EQ(h.dialogs.messages[0].text, "Parameters must be exact");
        EXPECT_EQ(h.dialogs.messages[0].title, "ERROR");
        EXPECT_EQ(h.dialogs.messages[0].icon, Icon::Critical);
        EXPECT_EQ(h.dialogs.messages[0].buttons, Buttons::Ok);
        EXPECT_EQ(h.edit.text(), "a,b");
        EXPECT_EQ(h.edit.assignments(), 0);
        EXPECT_EQ(h.setting("frmEdit", "Previous Switch At Text"), QString::fromUtf8(answer));
    }
}

TEST(PositionalErrors, BadOccurrenceIsLoggedAndLeavesTheText) {
    struct Row {
        const char* item;
        const char* answer;
        const char* label;
    };
    const Row rows[] = {
        {CR, ",/x/a", "Sub mnuInsertCRAt_Click"},
        {CR, ",/2147483648/a", "Sub mnuInsertCRAt_Click"},
        {CR, ",/99999999999999999999/a", "Sub mnuInsertCRAt_Click"},
        {TX, ",/abc/X/a", "mnuInsertTextAt_Click"},
        {TX, ",/1e10/X/a", "mnuInsertTextAt_Click"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.answer);
        Harness h(QStringLiteral("a,b"));
        h.dialogs.answers.push_back(QString::fromUtf8(r.answer));
        h.run(r.item);
        ASSERT_EQ(h.log.errors.size(), 1u);
        EXPECT_EQ(h.log.errors[0].module, "frmEdit");
        EXPECT_EQ(h.log.errors[0].location, QString::fromUtf8(r.label));
        EXPECT_FALSE(h.log.errors[0].detail.isEmpty());
        EXPECT_EQ(h.edit.text(), "a,b");
        EXPECT_EQ(h.edit.assignments(), 0);
        EXPECT_EQ(h.setting("frmEdit", "Previous Switch At Text"), QString::fromUtf8(r.answer));
    }
}

} // namespace
