// Start-up names, the settings store and the error log.
#include "app/StartUp.h"
#include "app/ErrorLogger.h"
#include "app/SettingsStore.h"
#include "support/Fakes.h"
#include "util/Utility.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(StartUp, BuildsAppNameAndCommandLine) {
    const QByteArray oldUser = qgetenv("USER");
    // USERNAME wins; USER stands in when it is unset; neither leaves the user part empty.
    const struct {
        const char *username, *user;
        QString appName;
    } cases[] = {
        {"ann", "bob", "(Editor - ann)/.opt.tools.ed"},
        {nullptr, "bob", "(Editor - bob)/.opt.tools.ed"},
        {nullptr, nullptr, "(Editor - )/.opt.tools.ed"},
    };
    for (const auto& c : cases) {
        c.username ? qputenv("USERNAME", c.username) : qunsetenv("USERNAME");
        c.user ? qputenv("USER", c.user) : qunsetenv("USER");
        StartUpState s;
        runStartUp(s, "/opt/tools/ed/Editor", {"\"/home/a", "b.txt\"~needle"});
        EXPECT_EQ(s.RegKeyAppName, c.appName);
        EXPECT_EQ(s.CommandLine, "/home/a b.txt~needle");
    }
    qunsetenv("USERNAME");
    qputenv("USER", oldUser);
}

// Each program folder has a file of its own, never a hidden one, and values come back as written.
TEST(SettingsStore, OneVisibleFilePerFolderAndValuesKeptAsWritten) {
    QTemporaryDir root;
    SettingsStore store(nullptr, root.path());
    const auto app = [](const QString& folder) {
        return buildRegKeyAppName("Editor", "u", folder);
    };
    const struct {
        QString folder, fileName;
    } cases[] = {{"/tmp/x", "_.tmp.x.ini"},
                 {"/", "_..ini"},
                 {"/_/tmp/x", "_._.tmp.x.ini"},
                 {"C:\\Tools", "C:.Tools.ini"}};
    for (const auto& c : cases)
        EXPECT_EQ(store.filePath(app(c.folder)), root.path() + "/(Editor - u)/" + c.fileName);

    const QString a = app("/one"), b = app("/two");
    store.write(a, "frmEdit", "Font", "Arial,9,False,False");
    store.write(a, "Reg Key frmEdit", "PrvValue", " <5000 \"q\" ");
    EXPECT_EQ(store.read(b, "frmEdit", "Font", "d"), "d");
    SettingsStore again(nullptr, root.path());
    EXPECT_EQ(again.read(a, "frmEdit", "Font", ""), "Arial,9,False,False");
    EXPECT_EQ(again.read(a, "Reg Key frmEdit", "PrvValue", ""), " <5000 \"q\" ");

    const QByteArray old = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", root.path().toLocal8Bit());
    EXPECT_TRUE(SettingsStore().filePath("(E - u)/.p").startsWith(root.path() + "/(E - u)/"));
    qputenv("XDG_CONFIG_HOME", old);
}

TEST(SettingsStore, CorruptOrUnwritableFilesFallBackAndAreLogged) {
    QTemporaryDir root;
    RecordingLogger log;
    SettingsStore store(&log, root.path());
    const QString app = "(Editor - u)/.p";
    QDir().mkpath(QFileInfo(store.filePath(app)).path());
    const QByteArray corrupt = "[frmEdit\nLast%20Dir=\"unterminated\n\x01\x02garbage=";
    writeFile(store.filePath(app), corrupt);
    EXPECT_EQ(store.read(app, "frmEdit", "Last Dir", "dflt"), "dflt");
    store.write(app, "frmEdit", "Last Dir", "x");
    EXPECT_EQ(readFile(store.filePath(app)), corrupt) << "the user's file was overwritten";
    EXPECT_EQ(log.errors.size(), 1u);
    EXPECT_EQ(log.errors[0].module, "mStartUp");

    // A folder stands where the file should be: reads give defaults, writes are logged once.
    RecordingLogger log2;
    SettingsStore ro(&log2, root.path());
    const QString app2 = "(Editor - u)/.ro";
    QDir().mkpath(ro.filePath(app2));
    EXPECT_EQ(ro.read(app2, "frmEdit", "k", "d"), "d");
    ro.write(app2, "frmEdit", "k", "w");
    ro.write(app2, "frmEdit", "k2", "w");
    EXPECT_EQ(log2.errors.size(), 1u);
}

class ErrorLoggerTest : public ::testing::Test {
protected:
    void SetUp() override { qputenv("LOGFILES", dir_.path().toLocal8Bit()); }
    void TearDown() override { qputenv("LOGFILES", old_); }
    QString logText() const { return QString::fromUtf8(readFile(dir_.path() + "/ErrorLog.txt")); }
    QTemporaryDir dir_;
    QByteArray old_ = qgetenv("LOGFILES");
    FixedClock clock_;
    FakeLauncher launcher_;
    FakeDialogs dialogs_;
};

TEST_F(ErrorLoggerTest, UtilityErrorGivesTheSevenFieldRecord) {
    bool complete = true;
    ErrorLogger logger(clock_, launcher_, complete);
    Utility util(logger);
    EXPECT_EQ(util.GetFreeFile(""), ""); // an empty name is an error of GetFreeFile
    const QString expected = "Application=Editor: " + localeShortDate(clock_.time.date()) + ": " +
                             localeTime(clock_.time.time()) +
                             ": Module=cUtility: ErrLoc=Function GetFreeFile: ErrDesc=: Err#=\r\n";
    EXPECT_EQ(logText(), expected);
    logger.logError("frmEdit", "Form_Load");
    EXPECT_TRUE(logText().startsWith(expected)); // appended, earlier content kept
    EXPECT_EQ(logText().count("\r\n"), 2);

    // The log folder's name takes one separator, with or without one at its end.
    qputenv("LOGFILES", (dir_.path() + "/").toLocal8Bit());
    EXPECT_EQ(ErrorLogger::logFilePath(), dir_.path() + "/ErrorLog.txt");
    qputenv("LOGFILES", "");
    EXPECT_EQ(ErrorLogger::logFilePath(), "ErrorLog.txt");
}

TEST_F(ErrorLoggerTest, AsksOnlyDuringStartUp) {
    bool complete = false;
    ErrorLogger logger(clock_, launcher_, complete);
    logger.setDialogs(&dialogs_);
    int terminated = 0;
    logger.hooks().terminate = [&] { ++terminated; };

    dialogs_.buttonAnswers = {Answer::Yes, Answer::No, Answer::Cancel};
    logger.logError("mStartUp", "Sub Main");
    ASSERT_EQ(dialogs_.messages.size(), 1u);
    EXPECT_EQ(dialogs_.messages[0].buttons, Buttons::YesNoCancel);
    EXPECT_TRUE(dialogs_.messages[0].text.endsWith(
        "Err#=\r\nError was logged in ErrorLog.txt\r\nOpen Error LOG?"));
    EXPECT_EQ(launcher_.opened, QStringList{dir_.path() + "/ErrorLog.txt"}); // Yes opens the log
    logger.logError("mStartUp", "Sub Main");                                 // No
    EXPECT_EQ(terminated, 0);
    logger.logError("mStartUp", "Sub Main"); // Cancel ends the program
    EXPECT_EQ(terminated, 1);

    complete = true;
    logger.logError("frmEdit", "Form_Load");
    EXPECT_EQ(dialogs_.messages.size(), 3u);
    EXPECT_EQ(logText().count("\r\n"), 4);
}

TEST_F(ErrorLoggerTest, OwnFailureEnablesControlsAndStaysQuiet) {
    qputenv("LOGFILES", (dir_.path() + "/missing/folder").toLocal8Bit());
    bool complete = false;
    ErrorLogger logger(clock_, launcher_, complete);
    logger.setDialogs(&dialogs_);
    int enabled = 0;
    logger.hooks().enableAllFormControls = [&] { ++enabled; };
    logger.logError("cUtility", "Function GetFreeFile");
    EXPECT_EQ(enabled, 1);
    EXPECT_TRUE(dialogs_.messages.empty());
}

} // namespace
