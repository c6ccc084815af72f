// The Convert, ReOrder and formatting commands run by the batch runner, on a file.
#include "editor/MenuTable.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct BatchCase {
    QByteArray document;
    QStringList args;
    QByteArray expected;
    const char* reported = nullptr; // a line the report holds
};

class OpenCommandsBatch : public ::testing::TestWithParam<BatchCase> {};

TEST_P(OpenCommandsBatch, WritesTheResult) {
    ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
    const BatchCase& c = GetParam();
    const EditorRun r = runEditorBatch(c.args + QStringList{"--report"}, c.document);
    EXPECT_EQ(r.exitCode, 0) << r.report.join('\n');
    EXPECT_EQ(r.out, c.expected);
    if (c.reported) {
        EXPECT_TRUE(r.report.contains(QString::fromUtf8(c.reported))) << r.report.join('\n');
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, OpenCommandsBatch,
    ::testing::Values(
        BatchCase{"a\r\nb", {"--apply", "AsciiToHex"}, "61 0D 0A 62"},
        BatchCase{"0x48 0x69\r\n", {"--apply", "HexToAscii"}, "Hi"},
        BatchCase{"FF",
                  {"--apply", "HexToAscii"},
                  "FF",
                  "message: The text is not hexadecimal UTF-8 bytes. | Hex To Ascii"},
        BatchCase{"\xc3\xa9\xf0\x9f\x98\x80",
                  {"--apply", "AsciiToHex", "--select", "1,2", "--apply", "HexToAscii"},
                  "\xc3\xa9\xf0\x9f\x98\x80",
                  "selection: 1,2"},
        BatchCase{"Doe, John\r\n",
                  {"--apply", "SwitchRearToFront", "--answer", ", "},
                  "John, Doe\r\n\r\n"},
        BatchCase{"<b>one</b> <B class=\"x\">two</B>",
                  {"--apply", "GetHtmlTags", "--answer", "<b>", "--answer", "</b>"},
                  ">one\r\n class=\"x\">two\r\n"},
        BatchCase{"ReDim W(0)\r\nW(0) = \"a\"\r\nW(3) = \"b\"",
                  {"--apply", "ReNumberArrayElements", "--answer", "1"},
                  "ReDim W(2)\r\nW(1) = \"a\"\r\nW(2) = \"b\"\r\n"},
        BatchCase{"a\r\nb\r\nc\r\n", {"--apply", "TurnToStream", "--answer", ","}, "a,b,c"},
        BatchCase{"a,b,c", {"--apply", "DelimitRunningText", "--answer", ","}, "a\r\nb\r\nc\r\n"},
        BatchCase{"sized\r\n", {"--apply", "FloatFont", "--answer", "30"}, "sized\r\n"},
        BatchCase{"sized\r\n",
                  {"--apply", "FloatFont", "--answer", "0"},
                  "sized\r\n",
                  "message: The largest size must be a whole number from 1 to 1638. | Float Font"},
        BatchCase{"plain\r\n", {"--apply", "RemoveFormatting"}, "plain\r\n"},
        BatchCase{"A", {"--apply", "ShowASCII"}, "A", "message: A = 65 (U+0041) | Char To ASCII"}));

// Every command under Tools runs, in the window and in the batch runner; only the hidden
// Indent Paragraphs has none.
TEST(ToolsMenu, EveryItemHasItsCommand) {
    const auto underTools = [](const MenuItemDecl& d) {
        for (const MenuItemDecl* p = &d; p && p->parent; p = findMenuItem(p->parent))
            if (QLatin1String(p->parent) == QLatin1String("mnuTools"))
                return true;
        return false;
    };
    int items = 0;
    for (const MenuItemDecl& d : menuItems()) {
        if (!isCommand(d) || !underTools(d) || (d.flags & kHidden))
            continue;
        ++items;
        EXPECT_NE(d.handler, nullptr) << d.name;
    }
    EXPECT_GE(items, 40);
    for (const char* name : {"AsciiToHex", "HexToAscii", "ShowASCII", "RemoveFormatting",
                             "GetHtmlTags", "SwitchRearToFront", "ReNumberArrayElements",
                             "TurnToStream", "DelimitRunningText", "FloatFont"})
        EXPECT_TRUE(findByBatchName(name) && availableInBatch(*findByBatchName(name))) << name;
}

} // namespace
