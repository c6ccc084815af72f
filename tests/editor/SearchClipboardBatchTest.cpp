// Search, replace and clipboard commands through the batch runner, as a user runs them.
#include "support/Fakes.h"
#include "util/TextCodec.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct BatchResult {
    QByteArray out;
    QStringList report;
    int exitCode = -1;
};

BatchResult runEditor(const QByteArray& input, const QStringList& args) {
    const QString dir = makeTempDir();
    const QString file = dir + "/doc.txt";
    QFile f(file);
    if (!f.open(QIODevice::WriteOnly) || f.write(input) != input.size())
        return {};
    f.close();
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", dir + "/config");
    p.setProcessEnvironment(env);
    p.start(qEnvironmentVariable("EDITOR_BIN"), args + QStringList{"--report", file});
    if (!p.waitForFinished(60000))
        return {};
    BatchResult r;
    r.out = p.readAllStandardOutput();
    r.report = QString::fromUtf8(p.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    r.exitCode = p.exitCode();
    return r;
}

TEST(SearchClipboardBatch, ReplaceIsCaseSensitive) {
    ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
    const BatchResult r =
        runEditor("ABC", {"--apply", "Replace", "--answer", "abc", "--answer", "x"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "ABC");
    EXPECT_TRUE(r.report.contains("message: String not found | Editor"))
        << r.report.join('\n').toStdString();
}

TEST(SearchClipboardBatch, PasteKeepsTheLineBreakAndTheCaret) {
    const BatchResult r = runEditor(
        "ab", {"--apply", "Paste", "--clipboard", QStringLiteral("x\r\n"), "--select", "1,0"});
    EXPECT_EQ(r.exitCode, 0);
    // A file without line breaks has no style of its own: the model's CR LF is written.
    EXPECT_EQ(r.out, "ax\r\nb");
    EXPECT_TRUE(r.report.contains("selection: 1,0")) << r.report.join('\n').toStdString();
}

TEST(SearchClipboardBatch, FindThenFindNextAndCut) {
    const BatchResult r = runEditor("one two one two", {"--apply", "Search", "--answer", "TWO",
                                                        "--apply", "FindNext", "--apply", "Cut"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "one two one ");
    EXPECT_TRUE(r.report.contains("clipboard: two")) << r.report.join('\n').toStdString();
    EXPECT_TRUE(r.report.contains("selection: 12,0"));
}

} // namespace
