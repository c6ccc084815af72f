// Insert CR At, Insert Text At and the two truncations: where each line is cut (after characters
// of every width and case mapping), the marker they remember, and answers they refuse.
#include "textcmds/Positional.h"
#include "app/Trap.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

constexpr const char* CR = "mnuInsertCRAt";
constexpr const char* TX = "mnuInsertTextAt";
constexpr const char* LS = "mnuRemoveLeftSide";
constexpr const char* RS = "mnuRemoveRightSide";

TEST(Positional, CutsEveryLine) {
    struct Case {
        const char* item;
        const char* text;
        const char* answer;
        const char* expected;
    };
    const Case cases[] = {
        {CR, "a,b,c", ",/2/A", "a,b\r\n,c\r\n"},
        {CR, "a,b,c", ",/0/b", "a\r\n,b,c\r\n"}, // n < 1: the first occurrence
        {CR, "a,b\r\nxyz\r\nc,d", ",", "a,\r\nb\r\nc,\r\nd\r\n"},
        {CR, "xxÉTÉ", "été", "xxÉ\r\nTÉ\r\n"},
        // One slash: the marker up to it, first occurrence, after.
        {CR, "axbxc", "x/3", "ax\r\nbxc\r\n"},
        // Overlapping occurrences count.
        {CR, "aaaa", "aa/2/b", "a\r\naaa\r\n"},
        {CR, "aabaabaaab", "aab/3/b", "aabaaba\r\naab\r\n"},
        // An empty marker cuts at a column; lines too short for it go.
        {CR, "abc\r\n", "/", "a\r\nbc\r\n"},
        {CR, "abcd\r\nab", "/3/b", "ab\r\ncd\r\n"},
        // A character outside the BMP is never split in two.
        {CR, "😀😀y", "/1/a", "😀\r\n😀y\r\n"},
        {CR, "x😀y😀z", "😀/2/b", "x😀y\r\n😀z\r\n"},
        // Characters whose lower case takes fewer or more bytes (Kelvin sign, capital A with
        // stroke) before and inside the marker: the cut stays at the right character.
        {CR, "\u212A\r\nab\u023A,c\r\n\u212Ax,y", ",", "ab\u023A,\r\nc\r\n\u212Ax,\r\ny\r\n"},
        {CR, "\u212A,\u212A,x", "k/2/a", "\u212A,\u212A\r\n,x\r\n"},
        {CR, "\u023A\u212A,\u212A,x", ",/2/b", "\u023A\u212A,\u212A\r\n,x\r\n"},
        {TX, "a,b", ",/1/X/a", "a,Xb\r\n"},
        {TX, "a,b\r\nc,d", ",/0/X/a", ""}, // unlike Insert CR At, n < 1 keeps no line
        {TX, "a,b,c\r\nx,y", ",/2/-/a", "a,b,-c\r\n"},
        {TX, "A,B", ",/1//A", "A,B\r\n"}, // empty text, side before
        {TX, "a,b", ", /1/X/a", ""},
        {TX, "a,b", ",/ 1 /X/a", "a,Xb\r\n"},
        {TX, "a,b,c,d", ",/2.5/X/a", "a,b,Xc,d\r\n"}, // rounds half to even
        {TX, "x😀y", "😀/1/+/a", "x😀+y\r\n"},
        {LS, "  no marker  ", "=", "  no marker  \r\n"},
        {LS, "xABy", "ab", "y\r\n"},
        {RS, "key = value\r\nplain ", "=", "key\r\nplain \r\n"},
        {LS, "a\u212A b\r\nc", "k", "b\r\nc\r\n"},
        {RS, "\u023Aa \u212AK b", "kk", "\u023Aa\r\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " " + c.answer + " on " + c.text);
        const auto h = runOn(c.item, QString::fromUtf8(c.text), {QString::fromUtf8(c.answer)});
        EXPECT_EQ(h->edit.text(), QString::fromUtf8(c.expected));
        EXPECT_EQ(h->edit.assignments(), 1);
        EXPECT_TRUE(h->log.errors.empty() && h->dialogs.messages.empty());
        EXPECT_EQ(h->setting("frmEdit", "Previous Switch At Text"), QString::fromUtf8(c.answer));
    }
}

TEST(Positional, BadAnswersLeaveTheText) {
    struct Case {
        const char* item;
        const char* answer;
        const char* logged; // the logged location; nullptr: the "Parameters must be exact" box
    };
    const Case cases[] = {
        {TX, ",/1/X", nullptr},
        {TX, ",", nullptr},
        {TX, ",/1/X/a/", nullptr},
        {CR, ",/x/a", "Sub mnuInsertCRAt_Click"},
        {CR, ",/99999999999999999999/a", "Sub mnuInsertCRAt_Click"},
        {TX, ",/abc/X/a", "mnuInsertTextAt_Click"},
        {TX, ",/1e10/X/a", "mnuInsertTextAt_Click"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        const auto h = runOn(c.item, "a,b", {c.answer});
        EXPECT_EQ(h->edit.text(), "a,b");
        EXPECT_EQ(h->edit.assignments(), 0);
        EXPECT_EQ(h->setting("frmEdit", "Previous Switch At Text"), c.answer);
        if (c.logged) {
            ASSERT_EQ(h->log.errors.size(), 1u);
            EXPECT_EQ(h->log.errors[0].module, "frmEdit");
            EXPECT_EQ(h->log.errors[0].location, c.logged);
            continue;
        }
        ASSERT_EQ(h->dialogs.messages.size(), 1u);
        EXPECT_EQ(h->dialogs.messages[0].text, "Parameters must be exact");
    }
}

} // namespace
