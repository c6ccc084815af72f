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

TEST(StartUp, BuildsAppNameCommandLineAndNames) {
    const QByteArray oldUser = qgetenv("USER");
    // USERNAME wins; USER stands in when it is unset; neither leaves the user part empty.
    const struct {
        const char* username;
        const char* user;
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
        EXPECT_TRUE(s.StartUpComplete);
    }
    qunsetenv("USERNAME");
    qputenv("USER", oldUser);
}

TEST(SettingsStore, TwoFoldersUseTwoFiles) {
    QTemporaryDir root;
    SettingsStore store(nullptr, root.path());
    const QString a = buildRegKeyAppName("Editor", "u", "/one/place");
    const QString b = buildRegKeyAppName("Editor", "u", "/other/place");
    store.write(a, "frmEdit", "Last Dir", "/x/");
    EXPECT_EQ(store.read(a, "frmEdit", "Last Dir", "d"), "/x/");
    EXPECT_EQ(store.read(b, "frmEdit", "Last Dir", "d"), "d");
    EXPECT_NE(store.filePath(a), store.filePath(b));
    EXPECT_EQ(store.filePath(a), root.path() + "/(Editor - u)/_.one.place.ini");
    EXPECT_TRUE(QFileInfo::exists(store.filePath(a)));
    // Values with commas, spaces and quotes come back as written.
    store.write(a, "frmEdit", "Font", "Arial,9,False,False");
    store.write(a, "Reg Key frmEdit", "PrvValue", " <5000 \"q\" ");
    SettingsStore again(nullptr, root.path());
    EXPECT_EQ(again.read(a, "frmEdit", "Font", ""), "Arial,9,False,False");
    EXPECT_EQ(again.read(a, "Reg Key frmEdit", "PrvValue", ""), " <5000 \"q\" ");
}

TEST(SettingsStore, FileNamesAreNeitherHiddenNorShared) {
    QTemporaryDir root;
    SettingsStore store(nullptr, root.path());
    const auto file = [&](const QString& folder) {
        return store.filePath(buildRegKeyAppName("Editor", "u", folder));
    };
    const struct {
        QString folder, fileName;
    } cases[] = {
        {"/tmp/x", "_.tmp.x.ini"},
        {"/", "_..ini"},
        {"/_/tmp/x", "_._.tmp.x.ini"},
        {"C:\\Tools", "C:.Tools.ini"},
    };
    QStringList seen;
    for (const auto& c : cases) {
        const QFileInfo info(file(c.folder));
        EXPECT_EQ(info.fileName(), c.fileName) << c.folder.toStdString();
        EXPECT_EQ(info.absolutePath(), root.path() + "/(Editor - u)");
        EXPECT_EQ(file(c.folder), info.filePath());
        EXPECT_FALSE(seen.contains(info.filePath()));
        seen << info.filePath();
    }
}

TEST(SettingsStore, HonoursXdgConfigHome) {
    QTemporaryDir root;
    const QByteArray old = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", root.path().toLocal8Bit());
    EXPECT_TRUE(SettingsStore().filePath("(E - u)/.p").startsWith(root.path() + "/(E - u)/"));
    qputenv("XDG_CONFIG_HOME", old);
}

TEST(SettingsStore, CorruptOrReadOnlyFilesFallBackAndAreLogged) {
    QTemporaryDir root;
    RecordingLogger log;
    SettingsStore store(&log, root.path());
    const QString app = "(Editor - u)/.p";
    QDir().mkpath(QFileInfo(store.filePath(app)).path());
    QFile f(store.filePath(app));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("[frmEdit\nLast%20Dir=\"unterminated\n\x01\x02garbage=");
    f.close();
    EXPECT_EQ(store.read(app, "frmEdit", "Last Dir", "dflt"), "dflt");
    store.write(app, "frmEdit", "Last Dir", "x"); // refused, the file is not overwritten
    EXPECT_EQ(log.errors.size(), 1u);
    EXPECT_EQ(log.errors[0].module, "mStartUp");

    // A settings "file" that cannot be written (here a folder stands in its place, which
    // stops root too): reads give defaults, writes are refused and logged once.
    RecordingLogger log2;
    SettingsStore ro(&log2, root.path());
    const QString app2 = "(Editor - u)/.ro";
    QDir().mkpath(ro.filePath(app2));
    EXPECT_EQ(ro.read(app2, "frmEdit", "k", "d"), "d");
    ro.write(app2, "frmEdit", "k", "w");
    ro.write(app2, "frmEdit", "k2", "w");
    EXPECT_EQ(log2.errors.size(), 1u);
}

TEST(SettingsStore, BooleansReadAsThePlatformConverts) {
    const std::vector<std::pair<const char*, bool>> cases = {
        {"True", true}, {"False", false}, {"-1", true}, {"0", false}, {"true", true}, {"2", true}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(settingToBool(text), expected) << text;
    bool ok = true;
    settingToBool("maybe", &ok);
    EXPECT_FALSE(ok);
}

class ErrorLoggerTest : public ::testing::Test {
protected:
    void SetUp() override {
        old_ = qgetenv("LOGFILES");
        qputenv("LOGFILES", dir_.path().toLocal8Bit());
    }
    void TearDown() override { qputenv("LOGFILES", old_); }
    QString logText() {
        QFile f(dir_.path() + "/ErrorLog.txt");
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
    QTemporaryDir dir_;
    QByteArray old_;
    FixedClock clock_;
    FakeLauncher launcher_;
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
    FakeDialogs dialogs;
    logger.setDialogs(&dialogs);
    int terminated = 0;
    logger.hooks().terminate = [&] { ++terminated; };

    dialogs.buttonAnswers = {Answer::Yes, Answer::No, Answer::Cancel};
    logger.logError("mStartUp", "Sub Main");
    ASSERT_EQ(dialogs.messages.size(), 1u);
    EXPECT_EQ(dialogs.messages[0].title, "An error occurred!");
    EXPECT_EQ(dialogs.messages[0].buttons, Buttons::YesNoCancel);
    EXPECT_EQ(dialogs.messages[0].icon, Icon::Critical);
    EXPECT_TRUE(dialogs.messages[0].text.endsWith(
        "Err#=\r\nError was logged in ErrorLog.txt\r\nOpen Error LOG?"));
    ASSERT_EQ(launcher_.opened.size(), 1u); // Yes opens the log
    EXPECT_EQ(launcher_.opened[0], dir_.path() + "/ErrorLog.txt");
    logger.logError("mStartUp", "Sub Main"); // No
    EXPECT_EQ(terminated, 0);
    logger.logError("mStartUp", "Sub Main"); // Cancel ends the program
    EXPECT_EQ(terminated, 1);

    complete = true;
    logger.logError("frmEdit", "Form_Load");
    EXPECT_EQ(dialogs.messages.size(), 3u);
    EXPECT_EQ(logText().count("\r\n"), 4);
}

TEST_F(ErrorLoggerTest, OwnFailureEnablesControlsAndStaysQuiet) {
    qputenv("LOGFILES", (dir_.path() + "/missing/folder").toLocal8Bit());
    bool complete = false;
    ErrorLogger logger(clock_, launcher_, complete);
    FakeDialogs dialogs;
    logger.setDialogs(&dialogs);
    int enabled = 0;
    logger.hooks().enableAllFormControls = [&] { ++enabled; };
    logger.logError("cUtility", "Function GetFreeFile");
    EXPECT_EQ(enabled, 1);
    EXPECT_TRUE(dialogs.messages.empty());
}

} // namespace
