#include "util/LineHashSet.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace ed {

uint64_t hashChars(const char16_t* p, qsizetype n) {
    // 64-bit FNV-1a variant over 8-byte words, mixed at the end.
    const auto* b = reinterpret_cast<const unsigned char*>(p);
    size_t bytes = size_t(n) * 2;
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
// Every line of a document may be distinct; the table stays at most half full.
size_t capacityFor(size_t expected) {
    size_t cap = 16;
    while (cap < expected * 2)
        cap <<= 1;
    return cap;
}
} // namespace

#ifdef Q_OS_LINUX
constexpr size_t kHugePage = size_t(2) << 20;

LineHashSet::Slots LineHashSet::allocate(size_t capacity) {
    const size_t bytes = (capacity * sizeof(Slot) + kHugePage - 1) / kHugePage * kHugePage;
    void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED)
        throw std::bad_alloc();
    madvise(p, bytes, MADV_HUGEPAGE); // a hint; ordinary pages do too
    return Slots(static_cast<Slot*>(p), SlotsDeleter{bytes});
}

void LineHashSet::SlotsDeleter::operator()(Slot* p) const {
    munmap(p, bytes);
}
#else
LineHashSet::Slots LineHashSet::allocate(size_t capacity) {
    void* p = std::calloc(capacity, sizeof(Slot));
    if (!p)
        throw std::bad_alloc();
    return Slots(static_cast<Slot*>(p), SlotsDeleter{capacity * sizeof(Slot)});
}

void LineHashSet::SlotsDeleter::operator()(Slot* p) const {
    std::free(p);
}
#endif

LineHashSet::LineHashSet(size_t expected)
    : slots_(allocate(capacityFor(expected))), capacity_(capacityFor(expected)),
      mask_(capacity_ - 1) {}

void LineHashSet::place(const Slot& slot, uint64_t hash) {
    size_t i = hash & mask_;
    while (slots_[i].data)
        i = (i + 1) & mask_;
    slots_[i] = slot;
}

void LineHashSet::grow() {
    Slots old = std::move(slots_);
    const size_t oldCapacity = capacity_;
    slots_ = allocate(oldCapacity * 2);
    capacity_ = oldCapacity * 2;
    mask_ = capacity_ - 1;
    for (size_t k = 0; k < oldCapacity; ++k) {
        const Slot& s = old[k];
        if (s.data)
            place(s, hashChars(s.data, s.size));
    }
}

bool LineHashSet::insert(QStringView s, uint64_t hash) {
    if (uint64_t(s.size()) > std::numeric_limits<uint32_t>::max())
        throw std::length_error("line too long");
    if ((count_ + 1) * 2 > capacity_)
        grow();
    static const char16_t empty = 0;
    const char16_t* data = s.utf16() ? s.utf16() : &empty;
    const auto size = uint32_t(s.size());
    const auto tag = uint32_t(hash >> 32);
    size_t i = hash & mask_;
    while (const char16_t* d = slots_[i].data) {
        const Slot& slot = slots_[i];
        if (slot.tag == tag && slot.size == size &&
            (d == data || std::memcmp(d, data, size_t(size) * 2) == 0))
            return false;
        i = (i + 1) & mask_;
    }
    slots_[i] = Slot{data, size, tag};
    ++count_;
    return true;
}

} // namespace ed
