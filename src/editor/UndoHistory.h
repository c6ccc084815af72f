#pragma once
// Many-level undo and redo of the window's commands. Each step keeps only what changed: the
// text removed, the text inserted and where, with the common beginning and end of the two
// documents left out, so a small edit in a large document costs a few bytes. The history keeps at
// most a given amount of stored text and forgets its oldest steps first.
//
// The window records every change of the document, as the text before and after it. This is
// separate from the insert buffer (FormState::UndoText), which keeps its own one-level behaviour.

#include "app/Ports.h"

#include <QString>

#include <deque>

namespace ed {

class UndoHistory {
public:
    static constexpr qsizetype kDefaultLimitBytes = qsizetype(256) * 1024 * 1024;

    explicit UndoHistory(qsizetype limitBytes = kDefaultLimitBytes) : limit_(limitBytes) {}

    // One step from `before` to `after`; nothing when they are equal. Clears what could be redone.
    void record(const QString& before, const QString& after);

    // Takes back the latest step (or does again the latest undone one) in `edit` with the
    // smallest replacement, then puts the caret at the start of the changed part with nothing
    // selected. False when there is nothing to do, or when the document no longer fits the
    // history (it was changed without being recorded): the history is then emptied.
    bool undo(EditControl& edit);
    bool redo(EditControl& edit);

    bool canUndo() const { return !undo_.empty(); }
    bool canRedo() const { return !redo_.empty(); }
    void clear();

    // Bytes of text the steps hold (two per UTF-16 unit), undo and redo together.
    qsizetype storedBytes() const { return stored_; }
    qsizetype limitBytes() const { return limit_; }
    // A smaller limit forgets the oldest steps at once.
    void setLimitBytes(qsizetype bytes);
    qsizetype undoCount() const { return qsizetype(undo_.size()); }
    qsizetype redoCount() const { return qsizetype(redo_.size()); }

private:
    struct Step {
        qsizetype offset = 0;
        QString removed;  // what `before` held at offset
        QString inserted; // what `after` holds there
        qsizetype bytes() const { return 2 * (removed.size() + inserted.size()); }
    };

    // Replaces `from` by `to` at the step's offset if the document still has room for it.
    bool apply(EditControl& edit, const Step& step, const QString& from, const QString& to);
    void dropOldest();

    std::deque<Step> undo_;
    std::deque<Step> redo_;
    qsizetype stored_ = 0;
    qsizetype limit_;
};

// Lengths of the longest common beginning and, in what remains, the longest common end.
struct CommonEnds {
    qsizetype prefix = 0;
    qsizetype suffix = 0;
};
CommonEnds commonEnds(QStringView a, QStringView b);

} // namespace ed
