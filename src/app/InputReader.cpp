#include "app/InputReader.h"

#include "util/HugePages.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace ed {

qint64 inputByteLimit() {
    const long pages = ::sysconf(_SC_AVPHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0)
        return qint64(1) << 30;
    return std::max<qint64>(qint64(pages) * pageSize / 6, qint64(64) << 20);
}

namespace {
QString megabytes(qint64 bytes) {
    return QString::number((bytes + (1 << 20) - 1) >> 20);
}

QString tooLarge(const QString& name, qint64 limit) {
    return QStringLiteral("%1 is larger than the %2 MB this machine has memory for")
        .arg(name, megabytes(limit));
}
} // namespace

bool readAllBounded(int fd, const QString& name, qint64 limit, QByteArray& bytes, QString& error) {
    struct stat st {};
    qint64 expected = 0;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        if (st.st_size > limit) {
            error = tooLarge(name, limit);
            return false;
        }
        expected = st.st_size;
    }
    QByteArray out;
    try {
        // One more byte than the file has, so its end is seen without growing the buffer.
        out.resize(std::min(expected, limit) + 1);
        adviseHugePages(out.constData(), size_t(out.size()));
        qint64 used = 0;
        for (;;) {
            if (used == out.size()) {
                if (used > limit) {
                    error = tooLarge(name, limit);
                    return false;
                }
                out.resize(std::min(std::max<qint64>(used * 2, 1 << 16), limit + 1));
                adviseHugePages(out.constData() + used, size_t(out.size() - used));
            }
            const ssize_t n = ::read(fd, out.data() + used, size_t(out.size() - used));
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                error = QStringLiteral("cannot read %1: %2")
                            .arg(name, QString::fromLocal8Bit(std::strerror(errno)));
                return false;
            }
            if (n == 0)
                break;
            used += n;
        }
        if (used > limit) {
            error = tooLarge(name, limit);
            return false;
        }
        out.truncate(used);
    } catch (const std::bad_alloc&) {
        error = QStringLiteral("%1 does not fit in the memory of this machine").arg(name);
        return false;
    }
    bytes = std::move(out);
    return true;
}

} // namespace ed
