#pragma once
// Finding bytes in bytes in time linear in both: glibc's memmem is a two-way search.

#include <QByteArrayView>

#include <cstring>

namespace ed {

// The first place of `needle` (not empty) in `hay` at or after `from`, or -1.
inline qsizetype indexOfBytes(QByteArrayView hay, QByteArrayView needle, qsizetype from) {
    if (from < 0 || from > hay.size() - needle.size())
        return -1;
    const size_t left = size_t(hay.size() - from);
    const void* hit = needle.size() == 1
                          ? std::memchr(hay.data() + from, needle[0], left)
                          : memmem(hay.data() + from, left, needle.data(), size_t(needle.size()));
    return hit ? static_cast<const char*>(hit) - hay.data() : -1;
}

} // namespace ed
