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

PackedText::PackedText(QStringView text) : narrow_(QtPrivate::isLatin1(text)) {
    if (narrow_)
        latin1_ = text.toLatin1();
    else
        wide_ = text.toString();
}

QString PackedText::unpacked() const {
    return narrow_ ? QString::fromLatin1(latin1_) : wide_;
}

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
    step.removed =
        PackedText(QStringView(before).mid(e.prefix, before.size() - e.prefix - e.suffix));
    step.inserted =
        PackedText(QStringView(after).mid(e.prefix, after.size() - e.prefix - e.suffix));
    stored_ += step.bytes();
    undo_.push_back(std::move(step));
    dropOldest();
}

std::optional<HistoryChange> UndoHistory::next(bool undo, qsizetype documentLength) {
    const std::deque<Step>& from = undo ? undo_ : redo_;
    if (from.empty())
        return std::nullopt;
    const Step& step = from.back();
    const PackedText& now = undo ? step.inserted : step.removed;
    if (step.offset + now.size() > documentLength) {
        clear(); // the document was changed behind the history's back
        return std::nullopt;
    }
    return HistoryChange{step.offset, now.size(), (undo ? step.removed : step.inserted).unpacked()};
}

void UndoHistory::done(bool undo) {
    std::deque<Step>& from = undo ? undo_ : redo_;
    std::deque<Step>& to = undo ? redo_ : undo_;
    if (from.empty())
        return;
    to.push_back(std::move(from.back()));
    from.pop_back();
}

bool UndoHistory::undo(EditControl& edit) {
    return step(true, edit);
}

bool UndoHistory::redo(EditControl& edit) {
    return step(false, edit);
}

bool UndoHistory::step(bool undo, EditControl& edit) {
    const std::optional<HistoryChange> change = next(undo, edit.textLength());
    if (!change)
        return false;
    edit.replaceRange(int(change->offset), int(change->length), change->text);
    edit.setSelStart(int(change->offset));
    edit.setSelLength(0);
    done(undo);
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
