#include "util/LineHashSet.h"

#include <cstring>

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
    std::memcpy(&w, b, bytes);
    h = (h ^ w) * 0x100000001B3ULL;
    h ^= h >> 32;
    h *= 0xD6E8FEB86659FD93ULL;
    h ^= h >> 32;
    return h;
}

LineHashSet::LineHashSet(size_t expected) {
    size_t cap = 16;
    while (cap < expected * 2)
        cap <<= 1;
    slots_.resize(cap);
    mask_ = cap - 1;
}

void LineHashSet::grow() {
    std::vector<Slot> old = std::move(slots_);
    slots_.assign(old.size() * 2, Slot{});
    mask_ = slots_.size() - 1;
    for (const Slot& s : old) {
        if (!s.data)
            continue;
        size_t i = s.hash & mask_;
        while (slots_[i].data)
            i = (i + 1) & mask_;
        slots_[i] = s;
    }
}

bool LineHashSet::insert(QStringView s) {
    if ((count_ + 1) * 2 > slots_.size())
        grow();
    const char16_t* data = s.utf16();
    static const char16_t empty = 0;
    if (!data)
        data = &empty;
    const uint64_t h = hashChars(data, s.size());
    size_t i = h & mask_;
    while (slots_[i].data) {
        const Slot& slot = slots_[i];
        if (slot.hash == h && slot.size == s.size() &&
            std::memcmp(slot.data, data, size_t(s.size()) * 2) == 0)
            return false;
        i = (i + 1) & mask_;
    }
    slots_[i] = Slot{data, s.size(), h};
    ++count_;
    return true;
}

} // namespace ed
