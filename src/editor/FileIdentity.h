#pragma once
// What tells one version of a file from another without reading it: size, modification time
// and inode. Another program's save changes at least one of them.

#include <QString>

#include <cstdint>

namespace ed {

struct FileIdentity {
    bool exists = false;
    std::int64_t size = 0;
    std::int64_t mtimeNs = 0;
    std::uint64_t inode = 0;
    std::uint64_t device = 0;

    // The identity of the file at `path` now (exists false when it is missing).
    static FileIdentity of(const QString& path);
    bool operator==(const FileIdentity&) const = default;
};

} // namespace ed
