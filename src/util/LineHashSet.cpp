#include "util/LineHashSet.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace ed {

uint64_t hashBytes(const char* p, qsizetype n) {
    // 64-bit FNV-1a variant over 8-byte words, mixed at the end.
    const auto* b = reinterpret_cast<const unsigned char*>(p);
    auto bytes = size_t(n);
    uint64_t h = 0x9E3779B97F4A7C15ULL ^ bytes;
    while (bytes >= 8) {
        uint64_t w;
        std::memcpy(&w, b, 8);
        h = (h ^ w) * 0x100000001B3ULL;
        h ^= h >> 29;
        b += 8;
        bytes -= 8;
    }
    uint64_t w = 0;
    if (bytes)
        std::memcpy(&w, b, bytes);
    h = (h ^ w) * 0x100000001B3ULL;
    h ^= h >> 32;
    h *= 0xD6E8FEB86659FD93ULL;
    h ^= h >> 32;
    return h;
}

namespace {
// At most two thirds of the slots are ever used.
size_t capacityFor(qsizetype lines) {
    size_t cap = 16;
    while (cap * 2 < size_t(lines) * 3)
        cap <<= 1;
    return cap;
}
} // namespace

#ifdef Q_OS_LINUX
constexpr size_t kHugePage = size_t(2) << 20;

LineHashSet::Slots LineHashSet::allocate(size_t capacity) {
    const size_t bytes = (capacity * sizeof(uint64_t) + kHugePage - 1) / kHugePage * kHugePage;
    void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED)
        throw std::bad_alloc();
    madvise(p, bytes, MADV_HUGEPAGE); // a hint; ordinary pages do too
    return Slots(static_cast<uint64_t*>(p), SlotsDeleter{bytes});
}

void LineHashSet::SlotsDeleter::operator()(uint64_t* p) const {
    munmap(p, bytes);
}
#else
LineHashSet::Slots LineHashSet::allocate(size_t capacity) {
    void* p = std::calloc(capacity, sizeof(uint64_t));
    if (!p)
        throw std::bad_alloc();
    return Slots(static_cast<uint64_t*>(p), SlotsDeleter{capacity * sizeof(uint64_t)});
}

void LineHashSet::SlotsDeleter::operator()(uint64_t* p) const {
    std::free(p);
}
#endif

LineHashSet::LineHashSet(QByteArrayView text, qsizetype maxLines)
    : text_(text), capacity_(capacityFor(maxLines)), mask_(capacity_ - 1),
      room_(size_t(qMax(maxLines, qsizetype(0)))), slots_(allocate(capacity_)) {
    if (uint64_t(text.size()) >= kOffsetMask)
        throw std::length_error("text too long");
}

bool LineHashSet::insert(qsizetype start, qsizetype size, uint64_t hash) {
    const char* p = text_.data();
    const qsizetype n = text_.size();
    const uint64_t tag = tagOf(hash);
    size_t i = hash & mask_;
    while (const uint64_t slot = slots_[i]) {
        if ((slot >> kOffsetBits) == tag) {
            // The line stored there is equal when it starts with this one and ends where it does.
            const qsizetype at = qsizetype(slot & kOffsetMask) - 1;
            const qsizetype end = at + size;
            if (end <= n && std::memcmp(p + at, p + start, size_t(size)) == 0 &&
                (end == n || (end + 1 < n && p[end] == '\r' && p[end + 1] == '\n')))
                return false;
        }
        i = (i + 1) & mask_;
    }
    if (room_ == 0)
        throw std::length_error("more lines than the set was made for");
    --room_;
    slots_[i] = tag << kOffsetBits | uint64_t(start + 1);
    return true;
}

} // namespace ed
