#pragma once
// Output bytes written straight into one buffer that grows only when a guess of its size was too
// small: the whole-document commands on UTF-8 bytes write their result through it.

#include <QByteArray>
#include <QByteArrayView>

#include <cstring>

namespace ed {

class ByteWriter {
public:
    // Room for `capacity` bytes up front.
    explicit ByteWriter(qsizetype capacity);

    // The write position, with room for at least `bytes` more behind it. Writing there does not
    // move the position: advance() does.
    char* room(qsizetype bytes) {
        if (end_ - next_ < bytes)
            grow(bytes);
        return next_;
    }
    void advance(char* to) { next_ = to; }
    void append(QByteArrayView bytes) {
        std::memcpy(room(bytes.size()), bytes.data(), size_t(bytes.size()));
        next_ += bytes.size();
    }
    QByteArray finish() &&;

private:
    void grow(qsizetype bytes);

    QByteArray out_;
    char* next_;
    char* end_;
};

} // namespace ed
