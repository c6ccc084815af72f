#pragma once
// An open-addressing set of string views, for removing repeated lines in one pass.

#include <QStringView>

#include <cstdint>
#include <memory>

namespace ed {

uint64_t hashChars(const char16_t* p, qsizetype n);

class LineHashSet {
public:
    explicit LineHashSet(size_t expected);

    static uint64_t hashOf(QStringView s) { return hashChars(s.utf16(), s.size()); }

    // True when `s` was not in the set yet. The set keeps the view, not a copy, so the text must
    // outlive the set. `hash` is hashOf(s).
    bool insert(QStringView s, uint64_t hash);
    bool insert(QStringView s) { return insert(s, hashOf(s)); }

    // Starts loading the slot that `hash` lands on; inserting many lines with the hash of a line
    // a few places ahead prefetched hides most of the memory latency of a big table.
    void prefetch(uint64_t hash) const {
#if defined(__GNUC__) || defined(__clang__)
        __builtin_prefetch(&slots_[hash & mask_]);
#else
        (void)hash;
#endif
    }

    // Once the slot of `hash` has arrived: starts loading the text of the line stored there, which
    // an insert of an equal line will compare with.
    void prefetchText(uint64_t hash) const {
#if defined(__GNUC__) || defined(__clang__)
        const Slot& slot = slots_[hash & mask_];
        if (slot.data && slot.tag == uint32_t(hash >> 32))
            __builtin_prefetch(slot.data);
#else
        (void)hash;
#endif
    }

private:
    // 16 bytes: four slots to a cache line. `data == nullptr` marks a free slot.
    struct Slot {
        const char16_t* data;
        uint32_t size;
        uint32_t tag; // upper half of the hash
    };
    // Zero-filled slots from the system; large tables get huge pages where there are any, since
    // the look-ups land on random pages.
    struct SlotsDeleter {
        size_t bytes = 0;
        void operator()(Slot* p) const;
    };
    using Slots = std::unique_ptr<Slot[], SlotsDeleter>;
    static Slots allocate(size_t capacity);

    void grow();
    void place(const Slot& slot, uint64_t hash);

    Slots slots_;
    size_t capacity_ = 0;
    size_t count_ = 0;
    size_t mask_ = 0;
};

} // namespace ed
