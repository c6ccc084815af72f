// The batch runner as people use it: the built program run with arguments and standard input.
#include "app/BatchRunner.h"
#include "support/Fakes.h"

#include <QFileInfo>

#include <QDir>
#include <QFile>
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

// A folder for the settings (XDG_CONFIG_HOME) and the error log (LOGFILES) of one or more runs.
struct Sandbox {
    QString dir = makeTempDir();
    QString config() const { return dir + "/config"; }
    QString logs() const { return dir + "/logs"; }

    Result run(const QStringList& args, const QByteArray& input = {}) const {
        QDir().mkpath(logs());
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_CONFIG_HOME", config());
        env.insert("LOGFILES", logs());
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

    QString write(const QString& name, const QByteArray& bytes) const {
        const QString path = dir + "/" + name;
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
        return path;
    }
};

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

class BatchRunner : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty()); }
    Sandbox box;
};

struct Example {
    QStringList args;
    QByteArray input;
    QByteArray expected;
};

TEST_F(BatchRunner, CommandExamplesHoldThroughTheRunner) {
    const QByteArray numbers = "100\r\n5000\r\n7000\r\nabc";
    const QByteArray fruit = "Apple\r\nbanana\r\nAPPLESAUCE";
    const std::vector<Example> examples = {
        {{"--apply", "AddPrefix", "--answer", "x"}, "a\r\nb\r\n", "xa\r\nxb\r\nx\r\n"},
        {{"--apply", "AddPrefix", "--answer", "x"}, "a\r\nb", "xa\r\nxb\r\n"},
        {{"--apply", "AddPrefix", "--answer", "  >"}, "a\r\n", ">a\r\n>\r\n"},
        {{"--apply", "AddSuffix", "--answer", "x"}, "a  \r\n", "a  x\r\nx\r\n"},
        {{"--apply", "AddSuffix", "--answer", "  "}, "a\r\nb", "a\r\nb\r\n"},
        {{"--apply", "RemoveLinesContainingText", "--answer", "apple"}, fruit, "banana\r\n"},
        {{"--apply", "RemoveLinesNotContainingText", "--answer", "apple"},
         fruit,
         "Apple\r\nAPPLESAUCE\r\n"},
        {{"--apply", "RemoveLinesContainingText", "--answer", "b"}, "a\r\nb\r\n", "a\r\n\r\n"},
        {{"--apply", "ByNumericValue", "--answer", "<5000"}, numbers, "7000\r\nabc\r\n"},
        {{"--apply", "ByNumericValue", "--answer", ">5000"}, numbers, "100\r\nabc\r\n"},
        {{"--apply", "ByNumericValue", "--answer", "=5000"}, numbers, "5000\r\nabc\r\n"},
        {{"--apply", "ByNumericValue", "--answer", "#5000"}, numbers, "abc\r\n"},
        {{"--apply", "ByNumericValue", "--answer", "5000"}, numbers, "abc\r\n"},
        {{"--apply", "ByNumericValue", "--answer", "=12"}, "12.5\r\n 42 \r\n13", "12.5\r\n"},
        {{"--apply", "ByNumericValue", "--answer", "<abc"}, numbers, numbers},
        {{"--apply", "RemoveRepeats"}, "a\r\nb\r\na", "a\r\nb\r\n"},
        {{"--apply", "RemoveRepeats"}, "b\r\na\r\nb\r\nA\r\n\r\na", "b\r\na\r\nA\r\n"},
        // A cancelled prompt leaves the document as it was, byte for byte.
        {{"--apply", "AddPrefix"}, "a\r\nb", "a\r\nb"},
        // The file's own line breaks and encoding are kept.
        {{"--apply", "AddPrefix", "--answer", "x"}, "a\nb\n", "xa\nxb\nx\n"},
        {{"--apply", "RemoveRepeats"},
         "\xEF\xBB\xBF\xC3\xA9\r\n\xC3\xA9\r\n",
         "\xEF\xBB\xBF\xC3\xA9\r\n"},
        {{"--apply", "RemoveRepeats"}, "caf\xE9\r\ncaf\xE9", "caf\xE9\r\n"}, // Latin-1
        // Empty input and input without a line break: no style of their own, so the
        // commands' CR LF is written.
        {{"--apply", "AddPrefix", "--answer", "x"}, "", "x\r\n"},
        {{"--apply", "RemoveRepeats"}, "", "\r\n"},
        {{"--apply", "RemoveRepeats"}, "abc", "abc\r\n"},
        {{"--apply", "RemoveLinesContainingText", "--answer", "b"}, "abc", ""},
        {{"--apply", "RemoveLinesContainingText", "--answer", "z"}, "abc", "abc\r\n"},
    };
    for (const Example& e : examples) {
        SCOPED_TRACE(e.args.join(' ').toStdString() + " on " + e.input.toHex().toStdString());
        const Result r = Sandbox().run(e.args, e.input);
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.out, e.expected);
        EXPECT_EQ(r.err, QByteArray());
    }
}

TEST_F(BatchRunner, FileArgumentAndOutFile) {
    const QString in = box.write("in.txt", "b\r\na\r\nb");
    const QString out = box.dir + "/out.txt";
    box.write("out.txt", "old content that is longer than the result");
    const Result r = box.run({"--apply", "RemoveRepeats", "--out", out, in});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, QByteArray());
    EXPECT_EQ(readAll(out), "b\r\na\r\n");
    EXPECT_EQ(readAll(in), "b\r\na\r\nb"); // the input is only read

    const QString emptyFile = box.write("empty.txt", "");
    const Result e = box.run({"--apply", "AddPrefix", "--answer", "x", emptyFile});
    EXPECT_EQ(e.exitCode, 0);
    EXPECT_EQ(e.out, "x\r\n");
}

TEST_F(BatchRunner, RepeatedApplyChainsTheCommands) {
    const Result r = box.run({"--apply", "AddPrefix", "--answer", "p", "--apply", "AddSuffix",
                              "--answer", "s", "--apply", "RemoveRepeats"},
                             "a\r\na");
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "pas\r\ns\r\n");

    // Answers belong to the command they follow: the first prompt here is cancelled.
    const Result c =
        box.run({"--apply", "AddPrefix", "--apply", "AddSuffix", "--answer", "s"}, "a\r\nb");
    EXPECT_EQ(c.out, "as\r\nbs\r\n");
}

TEST_F(BatchRunner, ReportListsPromptsMessagesSelectionAndClipboard) {
    // A remembered answer with a backslash and a line break shows up escaped as the default.
    box.run({"--apply", "RemoveLinesContainingText", "--answer", "q\\r\r\nx"}, "a");
    const Result r = box.run({"--apply", "RemoveLinesContainingText", "--apply", "ByNumericValue",
                              "--answer", "<1", "--apply", "ShowLineCount", "--clipboard",
                              "c\\b\r\nd", "--select", "1,2", "--report"},
                             "0\r\n5\r\nz");
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "5\r\nz\r\n");
    const QStringList expected = {
        "prompt: Remove lines Containing text. | Type text lines must contain | q\\\\r\\r\\nx",
        "prompt: Operation sign and numeric value\\r\\n\\r\\nExample:\\r\\n\\r\\n>5000 means "
        "remove values greater than 5000 | filter numbers | 0",
        "message: Line Count = 3 | Editor",
        "selection: 1,2",
        "clipboard: c\\\\b\\r\\nd",
    };
    EXPECT_EQ(r.errLines(), expected);

    // Without --report nothing but the document is written.
    const Result quiet = box.run({"--apply", "ShowLineCount"}, "a");
    EXPECT_EQ(quiet.err, QByteArray());
    EXPECT_EQ(quiet.out, "a");
}

TEST_F(BatchRunner, RememberedAnswersCarryOverBetweenRuns) {
    box.run({"--apply", "ByNumericValue", "--answer", "=7"}, "7");
    box.run({"--apply", "RemoveLinesNotContainingText", "--answer", "Keep Me"}, "x");
    const Result numeric = box.run({"--apply", "ByNumericValue", "--report"}, "7");
    EXPECT_TRUE(numeric.errLines().value(0).endsWith(" | filter numbers | =7"))
        << numeric.err.constData();
    const Result text = box.run({"--apply", "RemoveLinesContainingText", "--report"}, "x");
    EXPECT_TRUE(text.errLines().value(0).endsWith(" | Keep Me")) << text.err.constData();

    // The numeric filter's answer lives in its own section.
    const Result path = box.run({"--settings-path"});
    const QByteArray ini = readAll(QString::fromLocal8Bit(path.out.trimmed()));
    EXPECT_TRUE(ini.contains("[Reg%20Key%20frmEdit]\nPrvValue=")) << ini.constData();
}

TEST_F(BatchRunner, UsageErrorsGiveOneLineAndNoOutput) {
    const std::vector<QStringList> cases = {
        {"--apply", "NoSuchCommand"},
        {"--apply", "RemoveRepeats", box.dir + "/missing.txt"},
        {"--apply", "RemoveRepeats", box.dir},
        {"--apply", "AddPrefix", "--select", "5,x"},
        {"--apply", "AddPrefix", "--select", "5"},
        {"--apply", "AddPrefix", "--select", "-1,2"},
        {"--answer", "x", "--apply", "AddPrefix"},
        {"--apply"},
        {"--apply", "RemoveRepeats", "--out", box.dir + "/no/such/folder/out.txt"},
        {"--apply", "RemoveRepeats", "--out", box.dir},
        {"--apply", "RemoveRepeats", "--bogus"},
    };
    for (const QStringList& args : cases) {
        SCOPED_TRACE(args.join(' ').toStdString());
        const Result r = box.run(args, "a\r\n");
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_EQ(r.out, QByteArray());
        ASSERT_EQ(r.errLines().size(), 1) << r.err.constData();
        EXPECT_TRUE(r.errLines()[0].startsWith("Editor: ")) << r.err.constData();
    }
    EXPECT_FALSE(QFile::exists(box.dir + "/no"));
}

TEST_F(BatchRunner, HandlerErrorExitsOneAndKeepsTheDocument) {
    const QByteArray doc = "1\r\n99999999999\r\n";
    const Result r = box.run({"--apply", "ByNumericValue", "--answer", "<5"}, doc);
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, doc);
    EXPECT_TRUE(r.err.contains("mnuByNumericValue_Click")) << r.err.constData();
    EXPECT_TRUE(readAll(box.logs() + "/ErrorLog.txt").contains("mnuByNumericValue_Click"));

    const QString out = box.dir + "/result.txt";
    const Result toFile =
        box.run({"--apply", "ByNumericValue", "--answer", "=2147483648", "--out", out}, doc);
    EXPECT_EQ(toFile.exitCode, 1);
    EXPECT_EQ(readAll(out), doc);
}

TEST_F(BatchRunner, SettingsTroubleIsShownButIsNoFailure) {
    // The settings file cannot be written: a folder stands where it should be.
    const Result path = box.run({"--settings-path"});
    QDir().mkpath(QString::fromLocal8Bit(path.out.trimmed()));
    const Result r = box.run({"--apply", "AddPrefix", "--answer", "x"}, "a\r\n");
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "xa\r\nx\r\n");
    EXPECT_TRUE(r.err.contains("(mStartUp)")) << r.err.constData();
}

} // namespace

namespace {

TEST(BatchReport, ControlCharactersAreEscaped) {
    const struct {
        QString text, shown;
    } cases[] = {
        {"a\\b\r\n", "a\\\\b\\r\\n"},
        {QString(QChar(0x1B)) + "]0;x" + QChar(0x07), "\\x1B]0;x\\x07"},
        {QString(QChar(0x00)) + QChar(0x09) + QChar(0x7F), "\\x00\\x09\\x7F"},
        {QString(QChar(0x85)) + QChar(0x9B), "\\u{0085}\\u{009B}"},
        {QString(QChar(0x200E)) + QChar(0x202E) + QChar(0x2066) + QChar(0x2069) + QChar(0xFEFF),
         "\\u{200E}\\u{202E}\\u{2066}\\u{2069}\\u{FEFF}"},
        {QString(QChar(0x2028)) + QChar(0x2029), "\\u{2028}\\u{2029}"},
        {QString::fromUtf8("é€😀"), QString::fromUtf8("é€😀")},
        {QString::fromUcs4(U"\U000E0001"), "\\u{E0001}"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ed::escapeReport(c.text), c.shown) << c.shown.toStdString();
}

TEST_F(BatchRunner, AnEndlessInputEndsWithOneLineAndNothingWritten) {
    // The memory the run may use is capped, as a small machine would cap it.
    const QString out = box.dir + "/out.txt";
    QProcess p;
    p.start("/bin/sh", {"-c",
                        "ulimit -v 3000000; exec \"$0\" /dev/zero --apply SelectAll --out "
                        "\"$1\"",
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
