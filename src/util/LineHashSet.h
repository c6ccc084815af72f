#pragma once
// The distinct lines of one text (model bytes, lines split at CR LF), for removing repeated lines
// in one pass: an open-addressing table of eight-byte slots, each the offset of a line's first
// occurrence and a part of its hash. Equal lines are told apart from merely equal hashes by
// comparing with the text itself, so no line is copied.

#include <QByteArrayView>

#include <cstdint>
#include <memory>

namespace ed {

uint64_t hashBytes(const char* p, qsizetype n);

class LineHashSet {
public:
    // Room for `maxLines` lines of `text`, which must outlive the set.
    LineHashSet(QByteArrayView text, qsizetype maxLines);

    static uint64_t hashOf(QByteArrayView line) { return hashBytes(line.data(), line.size()); }

    // True when the line [start, start + size) of the text (a whole line: a CR LF or the end of
    // the text follows it) was not in the set yet. `hash` is hashOf(that line). Throws
    // std::length_error past `maxLines` lines.
    bool insert(qsizetype start, qsizetype size, uint64_t hash);

    // Starts loading the slot that `hash` lands on; inserting lines with the hash of a line a few
    // places ahead prefetched hides most of the memory latency of a big table.
    void prefetch(uint64_t hash) const {
#if defined(__GNUC__) || defined(__clang__)
        __builtin_prefetch(&slots_[hash & mask_]);
#else
        (void)hash;
#endif
    }

    // Once the slot of `hash` has arrived: starts loading the line stored there, which an insert
    // of an equal line will compare with.
    void prefetchText(uint64_t hash) const {
#if defined(__GNUC__) || defined(__clang__)
        const uint64_t slot = slots_[hash & mask_];
        if (slot && (slot >> kOffsetBits) == tagOf(hash))
            __builtin_prefetch(text_.data() + (slot & kOffsetMask) - 1);
#else
        (void)hash;
#endif
    }

private:
    // A slot: the line's offset plus one in the low 40 bits (0: a free slot), the top 24 bits of
    // the hash above them.
    static constexpr int kOffsetBits = 40;
    static constexpr uint64_t kOffsetMask = (uint64_t(1) << kOffsetBits) - 1;
    static uint64_t tagOf(uint64_t hash) {
        return hash >> kOffsetBits;
    }

    // Zero-filled slots from the system; large tables get huge pages where there are any, since
    // the look-ups land on random pages.
    struct SlotsDeleter {
        size_t bytes = 0;
        void operator()(uint64_t* p) const;
    };
    using Slots = std::unique_ptr<uint64_t[], SlotsDeleter>;
    static Slots allocate(size_t capacity);

    QByteArrayView text_;
    size_t capacity_;
    size_t mask_;
    size_t room_; // lines that may still be inserted
    Slots slots_;
};

} // namespace ed
