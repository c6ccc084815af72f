#include "editor/FileIdentity.h"

#include <QFile>

#include <sys/stat.h>

namespace ed {

FileIdentity FileIdentity::of(const QString& path) {
    FileIdentity id;
    struct stat st {};
    if (path.isEmpty() || ::stat(QFile::encodeName(path).constData(), &st) != 0)
        return id;
    id.exists = true;
    id.size = st.st_size;
    id.mtimeNs = std::int64_t(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    id.inode = st.st_ino;
    id.device = st.st_dev;
    return id;
}

} // namespace ed
