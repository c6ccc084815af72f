// The error log and the settings file are the user's own: created readable by the owner only,
// and a symbolic link planted at the log's name is never written through.

#include "app/ErrorLogger.h"
#include "app/SettingsStore.h"
#include "support/Fakes.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace ed;

namespace {

mode_t modeOf(const QString& path) {
    struct stat st {};
    if (::lstat(QFile::encodeName(path).constData(), &st) != 0)
        return 0;
    return st.st_mode & 07777;
}

class PrivateFiles : public ::testing::Test {
protected:
    void SetUp() override {
        old_ = qgetenv("LOGFILES");
        qputenv("LOGFILES", dir_.toLocal8Bit());
    }
    void TearDown() override { qputenv("LOGFILES", old_); }
    void logOneError() {
        const bool complete = true;
        ErrorLogger(clock_, launcher_, complete, "Editor").logError("frmEdit", "Sub Test");
    }
    QString dir_ = test::makeTempDir();
    QByteArray old_;
    test::FixedClock clock_;
    test::FakeLauncher launcher_;
};

TEST_F(PrivateFiles, TheErrorLogNeverFollowsALink) {
    const QString target = dir_ + "/target.txt";
    test::writeFile(target, "keep");
    const QString log = dir_ + "/ErrorLog.txt";
    ASSERT_TRUE(QFile::link(target, log));
    logOneError();
    EXPECT_EQ(test::readFile(target), "keep");
    EXPECT_TRUE(QFileInfo(log).isSymLink());
}

TEST_F(PrivateFiles, NewLogAndSettingsFilesAreTheOwnersOnly) {
    logOneError();
    const QString log = dir_ + "/ErrorLog.txt";
    EXPECT_GT(QFileInfo(log).size(), 0);
    EXPECT_EQ(modeOf(log), mode_t(0600));

    SettingsStore store(nullptr, dir_ + "/config");
    store.write("Editor/Sub", "frmEdit", "Key", "Value");
    const QString settings = dir_ + "/config/Editor/Sub.ini";
    ASSERT_TRUE(QFileInfo::exists(settings));
    EXPECT_EQ(modeOf(settings), mode_t(0600));
    EXPECT_EQ(modeOf(dir_ + "/config"), mode_t(0700));
    EXPECT_EQ(modeOf(dir_ + "/config/Editor"), mode_t(0700));
    EXPECT_EQ(store.read("Editor/Sub", "frmEdit", "Key", ""), "Value");
}

} // namespace
