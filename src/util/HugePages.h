#pragma once
// Large buffers that are about to be filled in one go (a whole document, its lines, the result)
// are faster when backed by huge pages: writing a few hundred megabytes then costs a few hundred
// page faults instead of a hundred thousand.

#include <QByteArray>
#include <QByteArrayView>

#include <cstddef>

namespace ed {

// Asks the system to back the whole 2 MB pages inside [data, data + bytes) with huge pages.
// Call it right after allocating, before the first write. Only a hint: it does nothing for small
// buffers or where the system has no such thing.
void adviseHugePages(const void* data, size_t bytes);

// A copy of `bytes` in a buffer of its own, backed by huge pages when it is large.
QByteArray copyBytes(QByteArrayView bytes);

} // namespace ed
