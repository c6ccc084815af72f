// The case, positional, whitespace, code array and count commands run by the batch runner.
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(TextCommandsBatch, PrintsTheResult) {
    const struct {
        QByteArray input;
        QStringList args;
        QByteArray expected;
        QString reported = {}; // a line of the report
    } cases[] = {
        {"a,b,c", {"--apply", "InsertCRAt", "--answer", ","}, "a,\r\nb,c\r\n"},
        {"a,b\r\n", {"--apply", "InsertTextAt", "--answer", ",/1/ and/b"}, "a and,b\r\n"},
        {"key = value\r\n", {"--apply", "RemoveLeftSide", "--answer", "="}, "value\r\n\r\n"},
        {"x \xf0\x9f\x98\x80 y\r\n", {"--apply", "ConvertToUpperCase"}, "X \xf0\x9f\x98\x80 Y\r\n"},
        {"one\r\ntwo\r\n\r\nthree", {"--apply", "RemoveCRLF"}, "one two\r\n\r\nthree"},
        {"red\r\nblue\r\n",
         {"--apply", "CreateCodeArrayOfWordList", "--answer", "C"},
         "Private Const CCount As Long = 1\r\nReDim C(1)\r\nPrivate C() As String\r\n"
         "C(0) = \"red\"\r\nC(1) = \"blue\"\r\n"},
        {"a  b\r\n", {"--apply", "CnvDblSpcToSingle", "--apply", "ConvertToProperCase"}, "A B\r\n"},
        {"hello world",
         {"--apply", "GetCharCount", "--select", "0,5", "--report"},
         "hello world",
         "message: Selected Character Count = 5 | Editor"},
        {"a\r\nb\r\n",
         {"--apply", "ShowLineCount", "--report"},
         "a\r\nb\r\n",
         "message: Line Count = 3 | Editor"},
        {"a,b\r\n",
         {"--apply", "InsertTextAt", "--answer", ",/1/X", "--report"},
         "a,b\r\n",
         "message: Parameters must be exact | ERROR"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const EditorRun r = runEditorBatch(c.args, c.input);
        EXPECT_EQ(r.exitCode, 0) << r.report.join('\n');
        EXPECT_EQ(r.out, c.expected);
        if (!c.reported.isEmpty()) {
            EXPECT_TRUE(r.report.contains(c.reported)) << r.report.join('\n');
        }
    }
}

TEST(TextCommandsBatch, ABadOccurrenceIsLoggedAndTheTextKept) {
    for (const char* answer : {",/x/a", ",/4294967296/a"}) {
        SCOPED_TRACE(answer);
        const EditorRun r =
            runEditorBatch({"--apply", "InsertCRAt", "--answer", answer}, "a,b\r\n");
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_EQ(r.out, "a,b\r\n");
        ASSERT_FALSE(r.report.isEmpty());
        EXPECT_TRUE(
            r.report.last().startsWith("Editor: error in Sub mnuInsertCRAt_Click (frmEdit): "))
            << r.report.join('\n');
        EXPECT_TRUE(readFile(r.logs + "/ErrorLog.txt").contains("ErrLoc=Sub mnuInsertCRAt_Click"));
    }
}

} // namespace
