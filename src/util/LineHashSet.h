#pragma once
// An open-addressing set of string views, for removing repeated lines in one pass.

#include <QStringView>

#include <cstdint>
#include <vector>

namespace ed {

class LineHashSet {
public:
    explicit LineHashSet(size_t expected);
    // True when `s` was not in the set yet. The set keeps the view, not a copy.
    bool insert(QStringView s);

private:
    struct Slot {
        const char16_t* data = nullptr;
        qsizetype size = 0;
        uint64_t hash = 0;
    };
    void grow();
    std::vector<Slot> slots_;
    size_t count_ = 0;
    size_t mask_ = 0;
};

uint64_t hashChars(const char16_t* p, qsizetype n);

} // namespace ed
