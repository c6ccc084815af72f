// The Convert, ReOrder and formatting commands run by the batch runner, on a file.
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(OpenCommandsBatch, WritesTheResult) {
    const struct {
        QByteArray document;
        QStringList args;
        QByteArray expected;
        const char* reported = nullptr; // a line the report holds
    } cases[] = {
        {"a\r\nb", {"--apply", "AsciiToHex"}, "61 0D 0A 62"},
        {"0x48 0x69\r\n", {"--apply", "HexToAscii"}, "Hi"},
        {"FF",
         {"--apply", "HexToAscii"},
         "FF",
         "message: The text is not hexadecimal UTF-8 bytes. | Hex To Ascii"},
        {"\xc3\xa9\xf0\x9f\x98\x80",
         {"--apply", "AsciiToHex", "--select", "1,2", "--apply", "HexToAscii"},
         "\xc3\xa9\xf0\x9f\x98\x80",
         "selection: 1,2"},
        {"Doe, John\r\n", {"--apply", "SwitchRearToFront", "--answer", ", "}, "John, Doe\r\n\r\n"},
        {"<b>one</b> <B class=\"x\">two</B>",
         {"--apply", "GetHtmlTags", "--answer", "<b>", "--answer", "</b>"},
         ">one\r\n class=\"x\">two\r\n"},
        {"ReDim W(0)\r\nW(0) = \"a\"\r\nW(3) = \"b\"",
         {"--apply", "ReNumberArrayElements", "--answer", "1"},
         "ReDim W(2)\r\nW(1) = \"a\"\r\nW(2) = \"b\"\r\n"},
        {"a\r\nb\r\nc\r\n", {"--apply", "TurnToStream", "--answer", ","}, "a,b,c"},
        {"a,b,c", {"--apply", "DelimitRunningText", "--answer", ","}, "a\r\nb\r\nc\r\n"},
        {"sized\r\n", {"--apply", "FloatFont", "--answer", "30"}, "sized\r\n"},
        {"sized\r\n",
         {"--apply", "FloatFont", "--answer", "0"},
         "sized\r\n",
         "message: The largest size must be a whole number from 1 to 1638. | Float Font"},
        {"plain\r\n", {"--apply", "RemoveFormatting"}, "plain\r\n"},
        {"A", {"--apply", "ShowASCII"}, "A", "message: A = 65 (U+0041) | Char To ASCII"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const EditorRun r = runEditorBatch(c.args + QStringList{"--report"}, c.document);
        EXPECT_EQ(r.exitCode, 0) << r.report.join('\n');
        EXPECT_EQ(r.out, c.expected);
        if (c.reported) {
            EXPECT_TRUE(r.report.contains(QString::fromUtf8(c.reported))) << r.report.join('\n');
        }
    }
}

} // namespace
