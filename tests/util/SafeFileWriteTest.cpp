// Saving over real files: links, owners, read-only folders and a full device. Writes that need
// another user run the batch program as `nobody` when the test runs as root.

#include "util/SafeFileWrite.h"
#include "support/Fakes.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace ed {
namespace {

using test::readFile;
using test::writeFile;

QByteArray native(const QString& path) {
    return QFile::encodeName(path);
}

struct stat statOf(const QString& path) {
    struct stat st {};
    ::stat(native(path).constData(), &st);
    return st;
}

// A folder every user may enter, removed at the end of the test.
class OpenFolder {
public:
    OpenFolder() {
        QByteArray name = QDir::tempPath().toLocal8Bit() + "/saving-XXXXXX";
        path_ = QFile::decodeName(::mkdtemp(name.data()));
        ::chmod(name.constData(), 0755);
    }
    ~OpenFolder() {
        ::chmod(native(path_).constData(), 0755);
        for (const QFileInfo& fi : QDir(path_).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
            ::chmod(native(fi.filePath()).constData(), 0755);
        QDir(path_).removeRecursively();
    }
    const QString& path() const { return path_; }

private:
    QString path_;
};

// Saving over a symbolic link changes its target, over a hard link every name of the file, and
// keeps the old file's mode and owner; a new file gets the usual mode. Nothing is left over.
TEST(SafeFileWrite, KeepsLinksOwnerAndMode) {
    const QString d = test::makeTempDir();
    const bool root = ::geteuid() == 0;
    writeFile(d + "/target", "old");
    QFile::link("target", d + "/symlink");
    writeFile(d + "/hard", "old");
    ::link(native(d + "/hard").constData(), native(d + "/other").constData());
    writeFile(d + "/owned", "old");
    ::chmod(native(d + "/owned").constData(), 0640);
    if (root) {
        ASSERT_EQ(::chown(native(d + "/owned").constData(), 65534, 65534), 0);
    }
    for (const QString name : {"symlink", "hard", "owned", "new"}) {
        QString error;
        ASSERT_TRUE(writeFileSafely(d + "/" + name, "new", error)) << error.toStdString();
        EXPECT_EQ(readFile(d + "/" + name), "new");
    }
    EXPECT_TRUE(QFileInfo(d + "/symlink").isSymLink());
    EXPECT_EQ(readFile(d + "/target"), "new");
    EXPECT_EQ(readFile(d + "/other"), "new");
    EXPECT_EQ(statOf(d + "/hard").st_ino, statOf(d + "/other").st_ino);
    const struct stat owned = statOf(d + "/owned");
    EXPECT_EQ(owned.st_mode & 07777, 0640u);
    if (root) {
        EXPECT_EQ(owned.st_uid, 65534u);
        EXPECT_EQ(owned.st_gid, 65534u);
    }
    const mode_t mask = ::umask(022);
    ::umask(mask);
    EXPECT_EQ(statOf(d + "/new").st_mode & 07777, 0666u & ~mask);
    EXPECT_EQ(QDir(d).entryList(QDir::Files | QDir::Hidden | QDir::System).join(' '),
              "hard new other owned symlink target");
}

// The batch program saving `input` to `out`, as `nobody` when this test runs as root.
test::EditorRun saveAsUnprivileged(const OpenFolder& folder, const QString& out) {
    const QString state = folder.path() + "/state";
    QDir().mkpath(state);
    writeFile(folder.path() + "/input", "new\n");
    QStringList command = {qEnvironmentVariable("EDITOR_BIN"),
                           "--apply",
                           "SelectAll",
                           "--out",
                           out,
                           folder.path() + "/input"};
    if (::geteuid() == 0) {
        ::chown(native(state).constData(), 65534, 65534);
        command = QStringList{"--reuid=nobody", "--regid=nogroup", "--clear-groups"} + command;
        command.prepend("setpriv");
    }
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* var : {"XDG_STATE_HOME", "XDG_CONFIG_HOME", "LOGFILES"})
        env.insert(var, state);
    p.setProcessEnvironment(env);
    p.start(command.takeFirst(), command);
    test::EditorRun r;
    if (p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit)
        r.exitCode = p.exitCode();
    r.out = p.readAllStandardOutput();
    r.report = QString::fromUtf8(p.readAllStandardError()).split(u'\n', Qt::SkipEmptyParts);
    return r;
}

TEST(SafeFileWrite, ReadOnlyFolderAsUnprivilegedUser) {
    struct Case {
        const char* name;
        bool fileExists;
        int exitCode;
        QByteArray content; // of the file afterwards
        QString error;      // standard error, %1 the file
    };
    for (const Case& c : std::vector<Case>{
             {"a writable file is written in place", true, 0, "new\n", ""},
             {"no new file can be made", false, 1, "<missing>",
              "Editor: cannot write %1: Permission denied"},
         }) {
        SCOPED_TRACE(c.name);
        const OpenFolder folder;
        const QString locked = folder.path() + "/locked";
        QDir().mkpath(locked);
        const QString file = locked + "/f";
        if (c.fileExists) {
            writeFile(file, "old content\n");
            ::chmod(native(file).constData(), 0666);
        }
        ::chmod(native(locked).constData(), 0555);
        const test::EditorRun r = saveAsUnprivileged(folder, file);
        if (!r.report.isEmpty() && r.report.first().startsWith("setpriv:"))
            GTEST_SKIP() << "cannot run the save as nobody: " << r.report.first().toStdString();
        EXPECT_EQ(r.exitCode, c.exitCode);
        EXPECT_EQ(readFile(file), c.content);
        EXPECT_EQ(r.report.join(u'\n'), c.error.isEmpty() ? QString() : c.error.arg(file));
        // The copy of the old content is gone once the new one is safe.
        EXPECT_EQ(QDir(folder.path() + "/state/Editor/saving").entryList(QDir::Files).size(), 0);
    }
}

TEST(SafeFileWrite, FullDeviceIsNamedAndKeepsTheOldContent) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to mount a small file system in a mount namespace of its own";
    const OpenFolder folder;
    const QString disk = folder.path() + "/disk";
    QDir().mkpath(disk);
    writeFile(folder.path() + "/input", QByteArray(256 * 1024, 'x'));
    // Saved once as a file of its own (replaced by a new file), once as a hard link (in place).
    const char* script = R"(
        mount -t tmpfs -o size=64k tmpfs "$2" || exit 99
        printf 'old' > "$2/f"
        "$1" --apply SelectAll --out "$2/f" "$3"; echo "exit $?"
        cat "$2/f"; echo; ls -A "$2"
        ln "$2/f" "$2/g"
        "$1" --apply SelectAll --out "$2/f" "$3"; echo "exit $?"
        cat "$2/f"; echo; ls -A "$2"
    )";
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_STATE_HOME", folder.path() + "/state");
    env.insert("XDG_CONFIG_HOME", folder.path() + "/state");
    env.insert("LOGFILES", folder.path() + "/state");
    p.setProcessEnvironment(env);
    p.start("unshare", {"-m", "sh", "-c", script, "sh", qEnvironmentVariable("EDITOR_BIN"), disk,
                        folder.path() + "/input"});
    ASSERT_TRUE(p.waitForFinished(60000));
    // Without the right to make a mount namespace, or to mount in it.
    if (p.exitCode() != 0)
        GTEST_SKIP() << "cannot mount a small file system here: "
                     << p.readAllStandardError().toStdString();
    const QString error =
        QStringLiteral("Editor: cannot write %1/f: No space left on the device\n").arg(disk);
    EXPECT_EQ(QString::fromUtf8(p.readAllStandardError()), error + error);
    EXPECT_EQ(QString::fromUtf8(p.readAllStandardOutput()), "exit 1\nold\nf\nexit 1\nold\nf\ng\n");
    EXPECT_EQ(QDir(folder.path() + "/state/Editor/saving").entryList(QDir::Files).size(), 0);
}

} // namespace
} // namespace ed
