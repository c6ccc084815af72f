#include "util/SafeFileWrite.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>
#include <vector>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace ed {

QString systemErrorText(int errorNumber) {
    if (errorNumber == ENOSPC)
        return QStringLiteral("No space left on the device");
    return QString::fromLocal8Bit(std::strerror(errorNumber));
}

QString inPlaceBackupFolder() {
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (state.isEmpty() || !QDir::isAbsolutePath(state))
        state = QDir::homePath() + QStringLiteral("/.local/state");
    const QString folder = state + QStringLiteral("/Editor/saving");
    if (QDir().mkpath(folder) && QFileInfo(folder).isWritable())
        return folder;
    return QDir::tempPath();
}

#ifdef Q_OS_UNIX

namespace {

// A file descriptor closed when it goes out of scope.
class Fd {
public:
    explicit Fd(int fd = -1) : fd_(fd) {}
    ~Fd() {
        if (fd_ >= 0)
            ::close(fd_);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return fd_; }
    bool ok() const { return fd_ >= 0; }
    // Closes now; the error number of a failed close (a write the system had deferred), else 0.
    int close() {
        const int r = ::close(fd_);
        fd_ = -1;
        return r == 0 ? 0 : errno;
    }

private:
    int fd_;
};

// A failed step: the system's error number and, when the path alone does not say it, what failed.
struct Failure {
    int err = 0;
    QString what;
    explicit operator bool() const { return err != 0; }
};

Failure fail(int err, const QString& what = QString()) {
    return Failure{err == 0 ? EIO : err, what};
}

int writeAllAt(int fd, const char* data, size_t size, off_t at) {
    while (size > 0) {
        const ssize_t n = ::pwrite(fd, data, size, at);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        data += n;
        size -= size_t(n);
        at += n;
    }
    return 0;
}

// Copies the whole of `from` to offset 0 of `to`; `size` receives the bytes copied.
int copyAll(int from, int to, off_t& size) {
    std::vector<char> buf(size_t(1) << 20);
    size = 0;
    for (;;) {
        const ssize_t n = ::pread(from, buf.data(), buf.size(), size);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        if (n == 0)
            return 0;
        if (const int err = writeAllAt(to, buf.data(), size_t(n), size))
            return err;
        size += n;
    }
}

int syncFd(int fd) {
    return ::fsync(fd) == 0 ? 0 : errno;
}

// The folder part of a path and its last name ("." for a bare name).
QByteArray folderOf(const QByteArray& path) {
    const qsizetype slash = path.lastIndexOf('/');
    if (slash < 0)
        return QByteArrayLiteral(".");
    return slash == 0 ? QByteArrayLiteral("/") : path.left(slash);
}

QByteArray nameOf(const QByteArray& path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

// Follows symbolic links from `path` to the file they name, which need not exist yet.
int resolveLinks(QByteArray& path) {
    for (int hops = 0; hops < 40; ++hops) {
        struct stat st;
        if (::lstat(path.constData(), &st) != 0 || !S_ISLNK(st.st_mode))
            return 0;
        std::vector<char> buf(size_t(st.st_size > 0 ? st.st_size : 4095) + 1);
        const ssize_t n = ::readlink(path.constData(), buf.data(), buf.size());
        if (n < 0)
            return errno;
        QByteArray target(buf.data(), n);
        if (!target.startsWith('/'))
            target = folderOf(path) + '/' + target;
        path = target;
    }
    return ELOOP;
}

mode_t currentUmask() {
    // Read without changing it: another thread may be creating a file meanwhile.
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("Umask:")) {
                bool ok = false;
                const uint mask = line.mid(6).trimmed().toUInt(&ok, 8);
                if (ok)
                    return mode_t(mask);
            }
        }
    }
    return 022;
}

// Writes a new file next to `target` and renames it over `target`. `old` is the target's status
// when it exists. `inPlace` is set when the target should rather be written in place: the folder
// takes no new file, or the new file cannot get the old one's owner and group.
Failure replaceFile(const QByteArray& target, const QByteArray& bytes, const struct stat* old,
                    bool& inPlace) {
    QByteArray temp = folderOf(target) + "/." + nameOf(target) + ".saving-XXXXXX";
    Fd fd(::mkostemp(temp.data(), O_CLOEXEC));
    if (!fd.ok()) {
        // A read-only folder, or a name too long for the temporary name beside it.
        inPlace = old && (errno == EACCES || errno == EPERM || errno == ENAMETOOLONG);
        return fail(errno);
    }
    auto failed = [&](int err) {
        ::unlink(temp.constData());
        return fail(err);
    };
    if (const int err = writeAllAt(fd.get(), bytes.constData(), size_t(bytes.size()), 0))
        return failed(err);
    if (old) {
        if (::fchown(fd.get(), old->st_uid, old->st_gid) != 0) {
            const int chownErr = errno;
            struct stat mine;
            if (::fstat(fd.get(), &mine) != 0 || mine.st_uid != old->st_uid ||
                mine.st_gid != old->st_gid) {
                inPlace = true; // the replacement would change the file's owner
                return failed(chownErr);
            }
        }
        // After the owner: changing it clears the set-id bits.
        if (::fchmod(fd.get(), old->st_mode & 07777) != 0)
            return failed(errno);
    } else if (::fchmod(fd.get(), 0666 & ~currentUmask()) != 0) {
        return failed(errno);
    }
    if (const int err = syncFd(fd.get()))
        return failed(err);
    if (const int err = fd.close())
        return failed(err);
    if (::rename(temp.constData(), target.constData()) != 0)
        return failed(errno);
    // The new name on disk too; a folder that cannot be flushed is no failure of the write.
    const Fd folder(::open(folderOf(target).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.ok())
        ::fsync(folder.get());
    return {};
}

// Writes `bytes` over the content of `target`, keeping the file itself (its links, owner and
// mode). What is guaranteed: before the first byte of the file changes, a complete copy of its
// old content is written and flushed to a file of its own in inPlaceBackupFolder(). If the new
// content cannot be written and flushed in full, the old content is written back and the copy
// removed; if that fails too, or the program stops while writing, the copy stays and holds the
// old content. The copy is removed once the new content is flushed.
Failure writeInPlace(const QByteArray& target, const QByteArray& bytes) {
    Fd out(::open(target.constData(), O_WRONLY | O_CLOEXEC));
    if (!out.ok())
        return fail(errno);
    struct stat st;
    if (::fstat(out.get(), &st) != 0)
        return fail(errno);
    if (!S_ISREG(st.st_mode)) {
        // A device or a pipe: its content cannot be copied aside, nor half-written.
        if (const int err = writeAllAt(out.get(), bytes.constData(), size_t(bytes.size()), 0))
            return fail(err == ESPIPE ? EINVAL : err);
        return {};
    }

    const QString folder = inPlaceBackupFolder();
    QByteArray backup = QFile::encodeName(folder) + '/' + nameOf(target).left(128) + ".old-XXXXXX";
    const auto keepFailure = [&](int err) {
        return fail(err, QStringLiteral("cannot keep a copy of its old content in %1: %2")
                             .arg(folder, systemErrorText(err)));
    };
    Fd copy(::mkostemp(backup.data(), O_CLOEXEC));
    if (!copy.ok())
        return keepFailure(errno);
    const Fd in(::open(target.constData(), O_RDONLY | O_CLOEXEC));
    off_t oldSize = 0;
    int err = in.ok() ? copyAll(in.get(), copy.get(), oldSize) : errno;
    if (!err)
        err = syncFd(copy.get());
    if (err) {
        ::unlink(backup.constData());
        return keepFailure(err);
    }

    err = writeAllAt(out.get(), bytes.constData(), size_t(bytes.size()), 0);
    if (!err && ::ftruncate(out.get(), off_t(bytes.size())) != 0)
        err = errno;
    if (!err)
        err = syncFd(out.get());
    if (!err) {
        ::unlink(backup.constData());
        return {};
    }
    // Put the old content back: it fits in the blocks the file already had.
    off_t restored = 0;
    int restoreErr = copyAll(copy.get(), out.get(), restored);
    if (!restoreErr && ::ftruncate(out.get(), oldSize) != 0)
        restoreErr = errno;
    if (!restoreErr)
        restoreErr = syncFd(out.get());
    if (!restoreErr) {
        ::unlink(backup.constData());
        return fail(err);
    }
    return fail(err, QStringLiteral("%1; its old content is kept in %2")
                         .arg(systemErrorText(err), QFile::decodeName(backup)));
}

} // namespace

bool writeFileSafely(const QString& path, const QByteArray& bytes, QString& error) {
    auto report = [&](const Failure& f) {
        error = QStringLiteral("cannot write %1: %2")
                    .arg(path, f.what.isEmpty() ? systemErrorText(f.err) : f.what);
        return false;
    };
    QByteArray target = QFile::encodeName(path);
    if (const int err = resolveLinks(target))
        return report(fail(err));
    struct stat st;
    const bool exists = ::stat(target.constData(), &st) == 0;
    if (exists && S_ISDIR(st.st_mode)) {
        error = QStringLiteral("%1 is a folder, not a file").arg(path);
        return false;
    }
    // A file this user may not write is not replaced behind its back.
    if (exists && ::access(target.constData(), W_OK) != 0)
        return report(fail(errno));
    bool inPlace = exists && (!S_ISREG(st.st_mode) || st.st_nlink > 1);
    if (!inPlace) {
        const Failure f = replaceFile(target, bytes, exists ? &st : nullptr, inPlace);
        if (!f)
            return true;
        if (!inPlace)
            return report(f);
    }
    if (const Failure f = writeInPlace(target, bytes))
        return report(f);
    return true;
}

#else

bool writeFileSafely(const QString& path, const QByteArray& bytes, QString& error) {
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size() || !f.commit()) {
        error = QStringLiteral("cannot write %1: %2").arg(path, f.errorString());
        return false;
    }
    return true;
}

#endif

} // namespace ed
