#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct ArrayCase {
    const char* name;
    const char* text;
    const char* expected;
};

class CodeArrayTest : public ::testing::TestWithParam<ArrayCase> {};

TEST_P(CodeArrayTest, BuildsHeaderAndElements) {
    const ArrayCase& c = GetParam();
    Harness h(QString::fromUtf8(c.text));
    h.dialogs.answers.push_back(QString::fromUtf8(c.name));
    h.run("mnuCreateCodeArrayOfWordList");
    EXPECT_EQ(h.edit.text(), QString::fromUtf8(c.expected));
    EXPECT_EQ(h.setting("frmEdit", "Previous ArrayName"), QString::fromUtf8(c.name));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CodeArrayTest,
    ::testing::Values(
        ArrayCase{"Colors", "red\r\n\r\nblue",
                  "Private Const ColorsCount As Long = 1\r\nReDim Colors(1)\r\n"
                  "Private Colors() As String\r\nColors(0) = \"red\"\r\nColors(1) = \"blue\"\r\n"},
        ArrayCase{"X", "",
                  "Private Const XCount As Long = -1\r\nReDim X(-1)\r\n"
                  "Private X() As String\r\n"},
        ArrayCase{"Wörter", "ä😀\r\n\n\r\n",
                  "Private Const WörterCount As Long = 1\r\nReDim Wörter(1)\r\n"
                  "Private Wörter() As String\r\nWörter(0) = \"ä😀\"\r\nWörter(1) = \"\n\"\r\n"},
        // No element for the final empty line; a line of spaces is an element; quotes stay.
        ArrayCase{
            "My Arr", "say \"hi\"\r\n  \r\n",
            "Private Const My ArrCount As Long = 1\r\nReDim My Arr(1)\r\n"
            "Private My Arr() As String\r\nMy Arr(0) = \"say \"hi\"\"\r\nMy Arr(1) = \"  \"\r\n"}));

TEST(CodeArray, NumbersCarryIntoNewDigits) {
    QString text;
    for (int i = 0; i < 101; ++i)
        text += QStringLiteral("w%1\r\n").arg(i);
    Harness h(text);
    h.dialogs.answers.push_back("A");
    h.run("mnuCreateCodeArrayOfWordList");
    const QString out = h.edit.text();
    EXPECT_TRUE(out.startsWith("Private Const ACount As Long = 100\r\nReDim A(100)\r\n"));
    EXPECT_TRUE(out.contains("\r\nA(9) = \"w9\"\r\nA(10) = \"w10\"\r\n"));
    EXPECT_TRUE(out.endsWith("\r\nA(99) = \"w99\"\r\nA(100) = \"w100\"\r\n"));
}

TEST(CodeArray, OffersOnlyTheRememberedName) {
    Harness h(QStringLiteral("selected words"));
    h.setSetting("frmEdit", "Previous ArrayName", "Old");
    h.select(0, 8);
    h.run("mnuCreateCodeArrayOfWordList"); // cancelled
    ASSERT_EQ(h.dialogs.prompts.size(), 1u);
    EXPECT_EQ(h.dialogs.prompts[0].prompt, "Enter Array name");
    EXPECT_EQ(h.dialogs.prompts[0].title, "Array name");
    EXPECT_EQ(h.dialogs.prompts[0].defaultAnswer, "Old");
    EXPECT_EQ(h.edit.assignments(), 0);
    EXPECT_EQ(h.settings.writes, 0);
}

} // namespace
