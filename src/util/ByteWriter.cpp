#include "util/ByteWriter.h"

#include "util/HugePages.h"

namespace ed {

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
    std::memcpy(bigger.data(), out_.constData(), size_t(used));
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
