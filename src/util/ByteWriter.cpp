#include "util/ByteWriter.h"

#include "util/HugePages.h"

#include <cstdint>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace ed {

namespace {

// Copies `n` bytes a few megabytes at a time and hands each piece of the source back to the
// system once it is copied: growing a big buffer so never holds the old and the new one in memory
// side by side. The source must not be read afterwards.
void copyReleasing(char* to, const char* from, qsizetype n) {
    constexpr qsizetype kStep = qsizetype(4) << 20;
    for (qsizetype done = 0; done < n; done += kStep) {
        const qsizetype k = qMin(kStep, n - done);
        std::memcpy(to + done, from + done, size_t(k));
#ifdef Q_OS_LINUX
        // Only the whole pages inside the piece.
        constexpr uintptr_t kPage = 4096;
        const auto begin = (reinterpret_cast<uintptr_t>(from + done) + kPage - 1) & ~(kPage - 1);
        const auto end = reinterpret_cast<uintptr_t>(from + done + k) & ~(kPage - 1);
        if (end > begin)
            madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
#endif
    }
}

} // namespace

ByteWriter::ByteWriter(qsizetype capacity)
    : out_(qMax(capacity, qsizetype(16)), Qt::Uninitialized) {
    adviseHugePages(out_.constData(), size_t(out_.size()));
    next_ = out_.data();
    end_ = next_ + out_.size();
}

void ByteWriter::grow(qsizetype bytes) {
    const qsizetype used = next_ - out_.data();
    const qsizetype size = qMax(out_.size() + out_.size() / 2, used + bytes) + 64;
    QByteArray bigger(size, Qt::Uninitialized);
    adviseHugePages(bigger.constData(), size_t(size));
    copyReleasing(bigger.data(), out_.constData(), used);
    out_ = std::move(bigger);
    next_ = out_.data() + used;
    end_ = out_.data() + out_.size();
}

QByteArray ByteWriter::finish() && {
    out_.truncate(next_ - out_.constData());
    if (out_.size() < out_.capacity() / 2)
        out_.squeeze(); // a result much smaller than guessed should not keep the room
    return std::move(out_);
}

} // namespace ed
