#include "editor/Recovery.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QUrl>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ed {

namespace {

const QByteArray kMagic = "Editor recovery 1\n"; // then the text as UTF-8 with CR LF breaks
const QString kSuffix = QStringLiteral(".recovery");

bool writeAll(int fd, const QByteArray& bytes) {
    const char* p = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, p, size_t(left));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        p += n;
        left -= n;
    }
    return true;
}

// Writes `bytes` to `file` all or nothing: a private temporary file, flushed, then renamed.
void writeAtomically(const QString& folder, const QString& file, const QByteArray& bytes) {
    QDir().mkpath(folder);
    ::chmod(QFile::encodeName(folder).constData(), 0700);
    const QByteArray target = QFile::encodeName(file);
    const QByteArray temp = target + ".tmp";
    const int fd =
        ::open(temp.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0)
        return;
    const bool ok = writeAll(fd, bytes) && ::fsync(fd) == 0;
    ::close(fd);
    if (!ok || ::rename(temp.constData(), target.constData()) != 0) {
        ::unlink(temp.constData());
        return;
    }
    const int dir = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
}

bool running(qint64 pid) {
    if (pid <= 0)
        return false;
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
}

} // namespace

RecoveryStore::RecoveryStore(QString folder)
    : folder_(folder.isEmpty() ? userFolder() : std::move(folder)) {
    worker_.setMaxThreadCount(1);
    worker_.setExpiryTimeout(-1);
}

RecoveryStore::~RecoveryStore() {
    flush();
}

QString RecoveryStore::userFolder() {
    QString base = qEnvironmentVariable("XDG_STATE_HOME");
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QDir::homePath() + QStringLiteral("/.local/state");
    return base + QStringLiteral("/Editor");
}

QString RecoveryStore::fileFor(const QString& path) const {
    const QByteArray hash =
        QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    return folder_ + u'/' + QString::fromLatin1(hash) + u'-' +
           QString::number(QCoreApplication::applicationPid()) + kSuffix;
}

void RecoveryStore::write(const QString& path, const QByteArray& text, const QDateTime& time) {
    const QString file = fileFor(path);
    if (!current_.isEmpty() && current_ != file)
        remove();
    current_ = file;
    worker_.start([folder = folder_, file, path, text, time] {
        QByteArray bytes = kMagic;
        bytes += QByteArray::number(QCoreApplication::applicationPid()) + '\n';
        bytes += QUrl::toPercentEncoding(path) + '\n';
        bytes += time.toString(Qt::ISODateWithMs).toLatin1() + '\n';
        bytes += text;
        writeAtomically(folder, file, bytes);
    });
}

void RecoveryStore::remove() {
    if (current_.isEmpty())
        return;
    worker_.start([file = current_] { discard(file); });
    current_.clear();
}

void RecoveryStore::flush() {
    worker_.waitForDone();
}

bool RecoveryStore::read(const QString& file, RecoveredDocument& out) {
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = f.readAll();
    if (!bytes.startsWith(kMagic))
        return false;
    qsizetype pos = kMagic.size();
    QByteArray fields[3];
    for (QByteArray& field : fields) {
        const qsizetype end = bytes.indexOf('\n', pos);
        if (end < 0)
            return false;
        field = bytes.mid(pos, end - pos);
        pos = end + 1;
    }
    out.file = file;
    out.pid = fields[0].toLongLong();
    out.path = QUrl::fromPercentEncoding(fields[1]);
    out.time = QDateTime::fromString(QString::fromLatin1(fields[2]), Qt::ISODateWithMs);
    out.text = bytes.sliced(pos);
    return !out.path.isEmpty();
}

void RecoveryStore::discard(const QString& file) {
    QFile::remove(file);
}

std::vector<RecoveredDocument> RecoveryStore::orphans() const {
    std::vector<RecoveredDocument> found;
    const QDir dir(folder_);
    for (const QString& name : dir.entryList({QStringLiteral("*") + kSuffix}, QDir::Files)) {
        RecoveredDocument doc;
        if (read(dir.filePath(name), doc) && doc.pid != QCoreApplication::applicationPid() &&
            !running(doc.pid))
            found.push_back(std::move(doc));
    }
    std::sort(
        found.begin(), found.end(),
        [](const RecoveredDocument& a, const RecoveredDocument& b) { return a.time > b.time; });
    return found;
}

} // namespace ed
