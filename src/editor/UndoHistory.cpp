#include "editor/UndoHistory.h"

#include "editor/ViewStyles.h"

#include <utility>

namespace ed {

qsizetype ByteChange::bytes() const {
    return removed.size() + inserted.size() + (stylesBefore ? stylesBefore->memoryBytes() : 0) +
           (stylesAfter ? stylesAfter->memoryBytes() : 0);
}

bool UndoHistory::continues(const Step& open, const ByteChange& change) {
    if (!open.typed || open.changes.empty())
        return false;
    const ByteChange& last = open.changes.back();
    const qsizetype lastEnd = last.offset + last.inserted.size();
    // Typing on, deleting backwards from where the last change ended, or deleting forwards at it.
    return change.offset == lastEnd || change.offset + change.removed.size() == last.offset ||
           change.offset + change.removed.size() == lastEnd || change.offset == last.offset;
}

void UndoHistory::record(ByteChange change, bool typed, qint64 nowMs) {
    if (replaying_ || change.bytes() == 0)
        return;
    dropRedo();
    const bool pause = typed && nowMs - lastTypedMs_ > kBurstPauseMs;
    if (typed)
        lastTypedMs_ = nowMs;
    Step* open = open_ && !undo_.empty() ? &undo_.back() : nullptr;
    if (open && (open->typed != typed || (typed && (pause || !continues(*open, change))))) {
        open = nullptr;
    }
    if (!open) {
        undo_.push_back(Step());
        open = &undo_.back();
        open->typed = typed;
        open_ = true;
    }
    const qsizetype size = change.bytes();
    ByteChange* last = open->changes.empty() ? nullptr : &open->changes.back();
    if (typed && last && !last->stylesBefore && change.removed.isEmpty() &&
        change.offset == last->offset + last->inserted.size()) {
        last->inserted += change.inserted; // typing on: one change grows
    } else {
        open->changes.push_back(std::move(change));
    }
    open->bytes += size;
    stored_ += size;
    while (stored_ > limit_ && !undo_.empty())
        dropOldest();
}

void UndoHistory::close() {
    open_ = false;
}

bool UndoHistory::undo() {
    return step(true);
}

bool UndoHistory::redo() {
    return step(false);
}

bool UndoHistory::step(bool undo) {
    close();
    std::deque<Step>& from = undo ? undo_ : redo_;
    std::deque<Step>& to = undo ? redo_ : undo_;
    if (from.empty())
        return false;
    Step s = std::move(from.back());
    from.pop_back();
    // A step applies only to the document it was recorded on: check what it expects to find.
    const auto fits = [&](const ByteChange& c) {
        const QByteArray& expect = undo ? c.inserted : c.removed;
        const QByteArrayView doc = target_.historyBytes();
        return c.offset >= 0 && c.offset + expect.size() <= doc.size() &&
               doc.sliced(c.offset, expect.size()) == expect;
    };
    replaying_ = true;
    qsizetype caret = -1;
    bool cancelled = false;
    const auto apply = [&](const ByteChange& c) {
        if (!fits(c))
            return false;
        const QByteArray& gone = undo ? c.inserted : c.removed;
        const QByteArray& back = undo ? c.removed : c.inserted;
        if ((!gone.isEmpty() || !back.isEmpty()) &&
            !target_.replaceHistoryBytes(c.offset, gone.size(), back)) {
            cancelled = true;
            return false;
        }
        if (const auto& styles = undo ? c.stylesBefore : c.stylesAfter)
            target_.restoreHistoryStyles(*styles);
        caret = c.offset;
        return true;
    };
    bool ok = true;
    size_t applied = 0;
    if (undo) {
        for (auto it = s.changes.rbegin(); ok && it != s.changes.rend(); ++it, ++applied)
            ok = apply(*it);
    } else {
        for (auto it = s.changes.begin(); ok && it != s.changes.end(); ++it, ++applied)
            ok = apply(*it);
    }
    replaying_ = false;
    if (cancelled && applied == 1) { // cancelled before anything changed: the step stays
        from.push_back(std::move(s));
        return false;
    }
    if (!ok) {
        clear();
        return false;
    }
    if (caret >= 0)
        target_.placeHistoryCaret(caret);
    to.push_back(std::move(s));
    return true;
}

void UndoHistory::clear() {
    undo_.clear();
    redo_.clear();
    stored_ = 0;
    open_ = false;
}

void UndoHistory::setLimitBytes(qsizetype bytes) {
    limit_ = bytes;
    while (stored_ > limit_ && (!undo_.empty() || !redo_.empty())) {
        if (!redo_.empty()) {
            stored_ -= redo_.front().bytes;
            redo_.pop_front();
        } else {
            dropOldest();
        }
    }
}

void UndoHistory::dropOldest() {
    stored_ -= undo_.front().bytes;
    undo_.pop_front();
    if (undo_.empty())
        open_ = false;
}

void UndoHistory::dropRedo() {
    for (const Step& s : redo_)
        stored_ -= s.bytes;
    redo_.clear();
}

} // namespace ed
