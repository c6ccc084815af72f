// The real Editor on a virtual display: text typed into it survives a SIGKILL, and the next
// start asks about it and takes it back.

#include "editor/Recovery.h"
#include "support/Fakes.h"
#include "web/WaitLoop.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

// Runs xdotool with `args`; its output, or "" when it failed or took longer than 15 s.
QString xdotool(const QProcessEnvironment& env, const QStringList& args) {
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(QStringLiteral("xdotool"), args);
    if (!p.waitForFinished(15000)) {
        p.kill();
        p.waitForFinished();
        return {};
    }
    return p.exitCode() == 0 ? QString::fromUtf8(p.readAllStandardOutput()).trimmed() : QString();
}

// The recovery files in `folder` and their documents.
std::vector<RecoveredDocument> copies(const QString& folder) {
    std::vector<RecoveredDocument> found;
    for (const QString& name : QDir(folder).entryList({"*.recovery"}, QDir::Files)) {
        RecoveredDocument doc;
        if (RecoveryStore::read(folder + "/" + name, doc))
            found.push_back(doc);
    }
    return found;
}

TEST(RecoveryKill, TypedTextSurvivesSigkill) {
    if (QStandardPaths::findExecutable("Xvfb").isEmpty() ||
        QStandardPaths::findExecutable("xdotool").isEmpty())
        GTEST_SKIP() << "needs Xvfb and xdotool (scripts/setup installs them)";
    const QString editor = qEnvironmentVariable("EDITOR_BIN");
    ASSERT_FALSE(editor.isEmpty());
    QTemporaryDir dir;
    const QString doc = dir.path() + "/doc.txt";
    writeFile(doc, "base\r\n");

    QProcess xvfb;
    xvfb.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1024x768x24"});
    ASSERT_TRUE(xvfb.waitForReadyRead(15000));
    const QString display = ":" + QString::fromLatin1(xvfb.readLine()).trimmed();

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("DISPLAY", display);
    env.remove("QT_QPA_PLATFORM");
    env.remove("WAYLAND_DISPLAY");
    env.insert("HOME", dir.path());
    env.insert("XDG_CONFIG_HOME", dir.path() + "/config");
    env.insert("XDG_STATE_HOME", dir.path() + "/state");
    env.insert("LOGFILES", dir.path() + "/logs");
    const QString folder = dir.path() + "/state/Editor";

    QProcess first;
    first.setProcessEnvironment(env);
    first.start(editor, {doc});
    ASSERT_TRUE(first.waitForStarted());
    const QString window =
        xdotool(env, {"search", "--sync", "--onlyvisible", "--name", "doc\\.txt$"})
            .section('\n', 0, 0);
    ASSERT_FALSE(window.isEmpty()) << "the Editor's window did not appear";
    xdotool(env, {"windowfocus", "--sync", window});
    xdotool(env, {"type", "--delay", "30", "hello "});
    // One copy, of the typed text, written by `pid` (0: any).
    const auto oneCopy = [&](qint64 pid) {
        const auto found = copies(folder);
        return found.size() == 1 && found[0].text == "hello base\r\n" && found[0].path == doc &&
               (pid == 0 || found[0].pid == pid);
    };
    // Typing stopped: the copy follows within a few seconds, and a SIGKILL leaves it.
    ASSERT_TRUE(web::waitUntil([&] { return oneCopy(0); }, 6000, 100)) << "no recovery copy";
    first.kill();
    first.waitForFinished();
    ASSERT_TRUE(oneCopy(0));

    QProcess second;
    second.setProcessEnvironment(env);
    second.start(editor, QStringList());
    ASSERT_TRUE(second.waitForStarted());
    const QString question =
        xdotool(env, {"search", "--sync", "--onlyvisible", "--name", "^Editor$"})
            .section('\n', 0, 0);
    ASSERT_FALSE(question.isEmpty()) << "no recovery question";
    xdotool(env, {"windowfocus", "--sync", question});
    xdotool(env, {"key", "Return"}); // Yes, the default
    // The second Editor holds the text now, unsaved, and keeps its own copy of it.
    EXPECT_TRUE(web::waitUntil([&] { return oneCopy(second.processId()); }, 6000, 100))
        << "the typed text was not taken back";
    EXPECT_FALSE(xdotool(env, {"search", "--onlyvisible", "--name", "doc\\.txt$"}).isEmpty());
    second.kill();
    second.waitForFinished();
    xvfb.terminate();
    xvfb.waitForFinished();
}

} // namespace
