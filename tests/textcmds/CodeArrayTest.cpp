// Code Array Of Word List: the header, one element per line, and the remembered name.
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(CodeArray, BuildsHeaderAndElements) {
    const struct {
        QString name, text, expected;
    } cases[] = {
        {"X", "", "Private Const XCount As Long = -1\r\nReDim X(-1)\r\nPrivate X() As String\r\n"},
        // No element for an empty line; a line of spaces or a lone LF is one; quotes stay.
        {"My Arr", "say \"hi\"\r\n\r\n  \r\n\n",
         "Private Const My ArrCount As Long = 2\r\nReDim My Arr(2)\r\nPrivate My Arr() As "
         "String\r\nMy Arr(0) = \"say \"hi\"\"\r\nMy Arr(1) = \"  \"\r\nMy Arr(2) = \"\n\"\r\n"},
    };
    for (const auto& c : cases) {
        const auto h = runOn("mnuCreateCodeArrayOfWordList", c.text, {c.name});
        EXPECT_EQ(h->edit.text(), c.expected);
        EXPECT_EQ(h->setting("frmEdit", "Previous ArrayName"), c.name);
    }
    // Numbers carry into new digits.
    QString hundred;
    for (int i = 0; i < 101; ++i)
        hundred += QStringLiteral("w%1\r\n").arg(i);
    const QString out = runOn("mnuCreateCodeArrayOfWordList", hundred, {"A"})->edit.text();
    EXPECT_TRUE(out.startsWith("Private Const ACount As Long = 100\r\nReDim A(100)\r\n"));
    EXPECT_TRUE(out.contains("\r\nA(9) = \"w9\"\r\nA(10) = \"w10\"\r\n"));
    EXPECT_TRUE(out.endsWith("\r\nA(99) = \"w99\"\r\nA(100) = \"w100\"\r\n"));
}

} // namespace
