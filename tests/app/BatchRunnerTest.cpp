// The batch runner as people use it: the built program run with arguments and standard input.
#include "app/BatchRunner.h"
#include "support/Fakes.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

using namespace ed::test;

namespace {

struct Result {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
    QStringList errLines() const { return QString::fromUtf8(err).split(u'\n', Qt::SkipEmptyParts); }
};

// Runs share this folder's settings (XDG_CONFIG_HOME) and error log (LOGFILES).
class BatchRunner : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty()); }

    Result run(const QStringList& args, const QByteArray& input = {}) const {
        QDir().mkpath(dir + "/logs");
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_CONFIG_HOME", dir + "/config");
        env.insert("LOGFILES", dir + "/logs");
        QProcess p;
        p.setProcessEnvironment(env);
        p.setWorkingDirectory(dir);
        p.start(qEnvironmentVariable("EDITOR_BIN"), args);
        Result r;
        if (!p.waitForStarted(30000))
            return r;
        p.write(input);
        p.closeWriteChannel();
        if (!p.waitForFinished(60000)) {
            p.kill();
            return r;
        }
        r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
        r.out = p.readAllStandardOutput();
        r.err = p.readAllStandardError();
        return r;
    }
    QString settingsPath() const {
        return QString::fromLocal8Bit(run({"--settings-path"}).out.trimmed());
    }

    QString dir = makeTempDir();
};

// What the commands do is tested on their own; here the runner must not change a byte of it:
// the file's line breaks and encoding, a cancelled prompt, empty input, a missing final break.
TEST_F(BatchRunner, OutputsAreTheDocumentByteForByte) {
    const struct {
        QStringList args;
        QByteArray input, expected;
    } cases[] = {
        {{"--apply", "AddPrefix", "--answer", "x"}, "a\r\nb", "xa\r\nxb\r\n"},
        {{"--apply", "AddPrefix"}, "a\r\nb", "a\r\nb"},
        {{"--apply", "AddPrefix", "--answer", "x"}, "a\nb\n", "xa\nxb\nx\n"},
        {{"--apply", "RemoveRepeats"},
         "\xEF\xBB\xBF\xC3\xA9\r\n\xC3\xA9\r\n",
         "\xEF\xBB\xBF\xC3\xA9\r\n"},
        {{"--apply", "RemoveRepeats"}, "caf\xE9\r\ncaf\xE9", "caf\xE9\r\n"}, // Latin-1
        {{"--apply", "AddPrefix", "--answer", "x"}, "", "x\r\n"},
        {{"--apply", "RemoveRepeats"}, "abc", "abc\r\n"},
        {{"--apply", "RemoveLinesContainingText", "--answer", "b"}, "abc", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString() + " on " + c.input.toHex().toStdString());
        const Result r = run(c.args, c.input);
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.out, c.expected);
        EXPECT_EQ(r.err, QByteArray());
    }
}

TEST_F(BatchRunner, FileArgumentAndOutFile) {
    const QString in = dir + "/in.txt", out = dir + "/out.txt";
    writeFile(in, "b\r\na\r\nb");
    writeFile(out, "old content that is longer than the result");
    const Result r = run({"--apply", "RemoveRepeats", "--out", out, in});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, QByteArray());
    EXPECT_EQ(readFile(out), "b\r\na\r\n");
    EXPECT_EQ(readFile(in), "b\r\na\r\nb"); // the input is only read
}

TEST_F(BatchRunner, RepeatedApplyChainsTheCommands) {
    const Result r = run({"--apply", "AddPrefix", "--answer", "p", "--apply", "AddSuffix",
                          "--answer", "s", "--apply", "RemoveRepeats"},
                         "a\r\na");
    EXPECT_EQ(r.out, "pas\r\ns\r\n");
    // Answers belong to the command they follow: the first prompt here is cancelled.
    const Result c =
        run({"--apply", "AddPrefix", "--apply", "AddSuffix", "--answer", "s"}, "a\r\nb");
    EXPECT_EQ(c.out, "as\r\nbs\r\n");
}

TEST_F(BatchRunner, ReportListsPromptsMessagesSelectionAndClipboardEscaped) {
    // A remembered answer with a backslash and a line break shows up escaped as the default.
    run({"--apply", "RemoveLinesContainingText", "--answer", "q\\r\r\nx"}, "a");
    const Result r =
        run({"--apply", "RemoveLinesContainingText", "--apply", "ByNumericValue", "--answer", "<1",
             "--apply", "ShowLineCount", "--clipboard", "c\\b\r\nd", "--select", "1,2", "--report"},
            "0\r\n5\r\nz");
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "5\r\nz\r\n");
    EXPECT_EQ(
        r.errLines(),
        (QStringList{
            "prompt: Remove lines Containing text. | Type text lines must contain | q\\\\r\\r\\nx",
            "prompt: Operation sign and numeric value\\r\\n\\r\\nExample:\\r\\n\\r\\n>5000 "
            "means remove values greater than 5000 | filter numbers | 0",
            "message: Line Count = 3 | Editor", "selection: 1,2", "clipboard: c\\\\b\\r\\nd"}));
    // Without --report nothing but the document is written.
    const Result quiet = run({"--apply", "ShowLineCount"}, "a");
    EXPECT_EQ(quiet.err, QByteArray());
    EXPECT_EQ(quiet.out, "a");
}

// A document's text must not reach a terminal as control sequences or hidden direction marks.
TEST(BatchReport, ControlCharactersAreEscaped) {
    const struct {
        QString text, shown;
    } cases[] = {
        {QString(QChar(0x1B)) + "]0;x" + QChar(0x07), "\\x1B]0;x\\x07"},
        {QString(QChar(0x85)) + QChar(0x9B), "\\u{0085}\\u{009B}"},
        {QString(QChar(0x202E)) + QChar(0x2028) + QChar(0xFEFF), "\\u{202E}\\u{2028}\\u{FEFF}"},
        {QString::fromUtf8("é€😀"), QString::fromUtf8("é€😀")},
        {QString::fromUcs4(U"\U000E0001"), "\\u{E0001}"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ed::escapeReport(c.text), c.shown) << c.shown.toStdString();
}

TEST_F(BatchRunner, RememberedAnswersCarryOverBetweenRuns) {
    run({"--apply", "ByNumericValue", "--answer", "=7"}, "7");
    const Result r = run({"--apply", "ByNumericValue", "--report"}, "7");
    EXPECT_TRUE(r.errLines().value(0).endsWith(" | filter numbers | =7")) << r.err.constData();
}

TEST_F(BatchRunner, UsageErrorsGiveOneLineAndNoOutput) {
    const QStringList cases[] = {
        {"--apply", "NoSuchCommand"},
        {"--apply", "RemoveRepeats", dir + "/missing.txt"},
        {"--apply", "RemoveRepeats", dir},
        {"--apply", "AddPrefix", "--select", "5,x"},
        {"--apply", "AddPrefix", "--select", "-1,2"},
        {"--answer", "x", "--apply", "AddPrefix"},
        {"--apply"},
        {"--apply", "RemoveRepeats", "--out", dir + "/no/such/folder/out.txt"},
        {"--apply", "RemoveRepeats", "--out", dir},
        {"--apply", "RemoveRepeats", "--bogus"},
    };
    for (const QStringList& args : cases) {
        SCOPED_TRACE(args.join(' ').toStdString());
        const Result r = run(args, "a\r\n");
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_EQ(r.out, QByteArray());
        ASSERT_EQ(r.errLines().size(), 1) << r.err.constData();
        EXPECT_TRUE(r.errLines()[0].startsWith("Editor: ")) << r.err.constData();
    }
    EXPECT_FALSE(QFile::exists(dir + "/no"));
}

TEST_F(BatchRunner, HandlerErrorExitsOneAndKeepsTheDocument) {
    const QByteArray doc = "1\r\n99999999999\r\n";
    const Result r = run({"--apply", "ByNumericValue", "--answer", "<5"}, doc);
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, doc);
    EXPECT_TRUE(r.err.contains("mnuByNumericValue_Click")) << r.err.constData();
    EXPECT_TRUE(readFile(dir + "/logs/ErrorLog.txt").contains("mnuByNumericValue_Click"));

    const QString out = dir + "/result.txt";
    const Result toFile =
        run({"--apply", "ByNumericValue", "--answer", "=2147483648", "--out", out}, doc);
    EXPECT_EQ(toFile.exitCode, 1);
    EXPECT_EQ(readFile(out), doc);
}

TEST_F(BatchRunner, SettingsTroubleIsShownButIsNoFailure) {
    QDir().mkpath(settingsPath()); // a folder stands where the settings file should be
    const Result r = run({"--apply", "AddPrefix", "--answer", "x"}, "a\r\n");
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "xa\r\nx\r\n");
    EXPECT_TRUE(r.err.contains("(mStartUp)")) << r.err.constData();
}

TEST_F(BatchRunner, AnEndlessInputEndsWithOneLineAndNothingWritten) {
    // The memory the run may use is capped, as a small machine would cap it.
    const QString out = dir + "/out.txt";
    QProcess p;
    p.start("/bin/sh",
            {"-c", "ulimit -v 3000000; exec \"$0\" /dev/zero --apply SelectAll --out \"$1\"",
             qEnvironmentVariable("EDITOR_BIN"), out});
    ASSERT_TRUE(p.waitForFinished(120000));
    EXPECT_EQ(p.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(p.exitCode(), 2);
    const QList<QByteArray> lines = p.readAllStandardError().split('\n');
    EXPECT_EQ(lines.size(), 2) << lines.value(0).toStdString();
    EXPECT_TRUE(lines.value(0).startsWith("Editor: /dev/zero ")) << lines.value(0).toStdString();
    EXPECT_TRUE(p.readAllStandardOutput().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(out));
}

} // namespace
