#include "editor/UndoHistory.h"

#include <algorithm>
#include <cstring>

namespace ed {

namespace {

// Compared in blocks with memcmp first; the mismatching block is then walked one unit at a time.
constexpr qsizetype kBlock = 4096;

qsizetype commonPrefix(const char16_t* a, const char16_t* b, qsizetype n) {
    qsizetype i = 0;
    while (n - i >= kBlock && std::memcmp(a + i, b + i, kBlock * sizeof(char16_t)) == 0)
        i += kBlock;
    while (i < n && a[i] == b[i])
        ++i;
    return i;
}

// `a` and `b` point one past the last unit; at most n units are compared backwards.
qsizetype commonSuffix(const char16_t* a, const char16_t* b, qsizetype n) {
    qsizetype i = 0;
    while (n - i >= kBlock &&
           std::memcmp(a - i - kBlock, b - i - kBlock, kBlock * sizeof(char16_t)) == 0)
        i += kBlock;
    while (i < n && a[-i - 1] == b[-i - 1])
        ++i;
    return i;
}

} // namespace

CommonEnds commonEnds(QStringView a, QStringView b) {
    const auto* pa = reinterpret_cast<const char16_t*>(a.data());
    const auto* pb = reinterpret_cast<const char16_t*>(b.data());
    const qsizetype shorter = std::min(a.size(), b.size());
    CommonEnds e;
    e.prefix = commonPrefix(pa, pb, shorter);
    e.suffix = commonSuffix(pa + a.size(), pb + b.size(), shorter - e.prefix);
    return e;
}

void UndoHistory::record(const QString& before, const QString& after) {
    const CommonEnds e = commonEnds(before, after);
    if (e.prefix == before.size() && before.size() == after.size())
        return; // nothing changed
    for (const Step& s : redo_)
        stored_ -= s.bytes();
    redo_.clear();
    Step step;
    step.offset = e.prefix;
    step.removed = before.mid(e.prefix, before.size() - e.prefix - e.suffix);
    step.inserted = after.mid(e.prefix, after.size() - e.prefix - e.suffix);
    stored_ += step.bytes();
    undo_.push_back(std::move(step));
    dropOldest();
}

bool UndoHistory::undo(EditControl& edit) {
    if (undo_.empty())
        return false;
    Step step = std::move(undo_.back());
    undo_.pop_back();
    if (!apply(edit, step, step.inserted, step.removed))
        return false;
    redo_.push_back(std::move(step));
    return true;
}

bool UndoHistory::redo(EditControl& edit) {
    if (redo_.empty())
        return false;
    Step step = std::move(redo_.back());
    redo_.pop_back();
    if (!apply(edit, step, step.removed, step.inserted))
        return false;
    undo_.push_back(std::move(step));
    return true;
}

bool UndoHistory::apply(EditControl& edit, const Step& step, const QString& from,
                        const QString& to) {
    if (step.offset + from.size() > edit.textLength()) {
        clear();
        return false;
    }
    edit.replaceRange(int(step.offset), int(from.size()), to);
    edit.setSelStart(int(step.offset));
    edit.setSelLength(0);
    return true;
}

void UndoHistory::clear() {
    undo_.clear();
    redo_.clear();
    stored_ = 0;
}

void UndoHistory::setLimitBytes(qsizetype bytes) {
    limit_ = bytes;
    dropOldest();
}

void UndoHistory::dropOldest() {
    // Redo steps are newer than every undo step; they go only when no undo step is left.
    while (stored_ > limit_ && !undo_.empty()) {
        stored_ -= undo_.front().bytes();
        undo_.pop_front();
    }
    while (stored_ > limit_ && !redo_.empty()) {
        stored_ -= redo_.front().bytes();
        redo_.pop_front();
    }
}

} // namespace ed
