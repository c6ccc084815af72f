#pragma once
// Many-level undo and redo of the window's commands. Each step keeps only what changed: the
// text removed, the text inserted and where, with the common beginning and end of the two
// documents left out, so a small edit in a large document costs a few bytes. The history keeps at
// most a given amount of stored text and forgets its oldest steps first.
//
// The window records every change of the document, as the text before and after it. This is
// separate from the insert buffer (FormState::UndoText), which keeps its own one-level behaviour.

#include "app/Ports.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <optional>

namespace ed {

// Text kept by the history: one byte a character when every character fits in one (most
// documents), two otherwise.
class PackedText {
public:
    PackedText() = default;
    explicit PackedText(QStringView text);
    QString unpacked() const;
    qsizetype size() const { return narrow_ ? latin1_.size() : wide_.size(); }
    qsizetype bytes() const { return narrow_ ? latin1_.size() : 2 * wide_.size(); }

private:
    bool narrow_ = true;
    QByteArray latin1_;
    QString wide_;
};

// What an undo or redo does to the document: `length` units at `offset` become `text`.
struct HistoryChange {
    qsizetype offset = 0;
    qsizetype length = 0;
    QString text;
};

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

    // The same in two halves, for a caller that may be stopped in between: the change the next
    // undo (redo) makes to a document of `documentLength` units, and then, once it was made,
    // the move of the step. nullopt when there is nothing to do or the document no longer fits
    // (the history is then emptied).
    std::optional<HistoryChange> next(bool undo, qsizetype documentLength);
    void done(bool undo);

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
        PackedText removed;  // what `before` held at offset
        PackedText inserted; // what `after` holds there
        qsizetype bytes() const { return removed.bytes() + inserted.bytes(); }
    };

    bool step(bool undo, EditControl& edit);
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
