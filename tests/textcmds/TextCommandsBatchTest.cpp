// The case, positional, whitespace, code array and count commands run by the batch runner.
#include "support/Fakes.h"
#include "util/TextCodec.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct BatchRun {
    QByteArray out;
    QStringList report;
    int exitCode = -1;
    QString logDir;
};

// Feeds `input` on standard input; settings and the error log go to a fresh folder.
BatchRun runEditor(const QByteArray& input, const QStringList& args) {
    BatchRun r;
    const QString dir = makeTempDir();
    r.logDir = dir + "/logs";
    QDir().mkpath(r.logDir);
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", dir + "/config");
    env.insert("LOGFILES", r.logDir);
    p.setProcessEnvironment(env);
    p.start(qEnvironmentVariable("EDITOR_BIN"), args);
    if (!p.waitForStarted(30000))
        return r;
    p.write(input);
    p.closeWriteChannel();
    if (!p.waitForFinished(60000))
        return r;
    r.out = p.readAllStandardOutput();
    r.report = QString::fromUtf8(p.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    r.exitCode = p.exitCode();
    return r;
}

struct BatchCase {
    const char* input;
    std::vector<const char*> args;
    const char* expected;
};

class TextCommandsBatch : public ::testing::TestWithParam<BatchCase> {};

TEST_P(TextCommandsBatch, PrintsTheResult) {
    ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
    const BatchCase& c = GetParam();
    QStringList args;
    for (const char* a : c.args)
        args << QString::fromUtf8(a);
    const BatchRun r = runEditor(c.input, args);
    EXPECT_EQ(r.exitCode, 0) << r.report.join('\n').toStdString();
    EXPECT_EQ(r.out, QByteArray(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TextCommandsBatch,
    ::testing::Values(
        BatchCase{"a,b,c\r\n", {"--apply", "InsertCRAt", "--answer", ","}, "a,\r\nb,c\r\n"},
        BatchCase{"a,b\r\n", {"--apply", "InsertTextAt", "--answer", ",/1/ and/b"}, "a and,b\r\n"},
        BatchCase{
            "key = value\r\n", {"--apply", "RemoveLeftSide", "--answer", "="}, "value\r\n\r\n"},
        BatchCase{"x \xf0\x9f\x98\x80 y\r\n",
                  {"--apply", "ConvertToUpperCase"},
                  "X \xf0\x9f\x98\x80 Y\r\n"},
        BatchCase{"one\r\ntwo\r\n\r\nthree", {"--apply", "RemoveCRLF"}, "one two\r\n\r\nthree"},
        BatchCase{"red\r\nblue\r\n",
                  {"--apply", "CreateCodeArrayOfWordList", "--answer", "C"},
                  "Private Const CCount As Long = 1\r\nReDim C(1)\r\nPrivate C() As String\r\n"
                  "C(0) = \"red\"\r\nC(1) = \"blue\"\r\n"},
        BatchCase{"a  b\r\n",
                  {"--apply", "CnvDblSpcToSingle", "--apply", "ConvertToProperCase"},
                  "A B\r\n"}));

TEST(TextCommandsBatchReport, TextWithoutBreaksGetsTheCommandsCrLf) {
    const BatchRun r = runEditor("a,b,c", {"--apply", "InsertCRAt", "--answer", ","});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "a,\r\nb,c\r\n");
}

TEST(TextCommandsBatchReport, CountsAreReported) {
    const BatchRun r =
        runEditor("hello world", {"--apply", "GetCharCount", "--select", "0,5", "--report"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "hello world");
    EXPECT_TRUE(r.report.contains("message: Selected Character Count = 5 | Editor"))
        << r.report.join('\n').toStdString();

    const BatchRun lines = runEditor("a\r\nb\r\n", {"--apply", "ShowLineCount", "--report"});
    EXPECT_TRUE(lines.report.contains("message: Line Count = 3 | Editor"))
        << lines.report.join('\n').toStdString();
}

TEST(TextCommandsBatchReport, InexactParametersAreRefused) {
    const BatchRun r =
        runEditor("a,b\r\n", {"--apply", "InsertTextAt", "--answer", ",/1/X", "--report"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "a,b\r\n");
    EXPECT_TRUE(r.report.contains("message: Parameters must be exact | ERROR"))
        << r.report.join('\n').toStdString();
}

TEST(TextCommandsBatchReport, BadOccurrenceIsLoggedAndTheTextKept) {
    for (const char* answer : {",/x/a", ",/4294967296/a"}) {
        SCOPED_TRACE(answer);
        const BatchRun r = runEditor("a,b\r\n", {"--apply", "InsertCRAt", "--answer", answer});
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_EQ(r.out, "a,b\r\n");
        ASSERT_FALSE(r.report.isEmpty());
        EXPECT_TRUE(
            r.report.last().startsWith("Editor: error in Sub mnuInsertCRAt_Click (frmEdit): "))
            << r.report.join('\n').toStdString();
        QFile log(r.logDir + "/ErrorLog.txt");
        ASSERT_TRUE(log.open(QIODevice::ReadOnly));
        EXPECT_TRUE(log.readAll().contains("ErrLoc=Sub mnuInsertCRAt_Click"));
    }
}

} // namespace
