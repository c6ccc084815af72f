#include "util/HugePages.h"

#include <QtGlobal>

#include <cstdint>
#include <cstring>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace ed {

void adviseHugePages(const void* data, size_t bytes) {
#if defined(Q_OS_LINUX) && defined(MADV_HUGEPAGE)
    constexpr uintptr_t kHuge = uintptr_t(2) << 20;
    if (!data || bytes < 2 * kHuge)
        return;
    const auto begin = (reinterpret_cast<uintptr_t>(data) + kHuge - 1) & ~(kHuge - 1);
    const auto end = (reinterpret_cast<uintptr_t>(data) + bytes) & ~(kHuge - 1);
    if (end > begin)
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#else
    (void)data;
    (void)bytes;
#endif
}

QByteArray copyBytes(QByteArrayView bytes) {
    if (bytes.isEmpty())
        return QByteArray();
    QByteArray out(bytes.size(), Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(out.size()));
    std::memcpy(out.data(), bytes.data(), size_t(bytes.size()));
    return out;
}

} // namespace ed
