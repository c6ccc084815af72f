#pragma once
// Many-level undo and redo of the window's document. The edit control reports every change as
// the bytes removed and inserted at an offset; the history groups them into steps: all changes
// of one command are one step, and typing is one step per burst (changes next to each other,
// with no pause of more than a couple of seconds and no command in between). A step keeps only
// what changed, so a small edit in a large document costs a few bytes. The history keeps at most
// a given amount of stored bytes and forgets its oldest steps first.
//
// This is separate from the insert buffer (FormState::UndoText), which keeps its own one-level
// behaviour.

#include <QByteArray>
#include <QByteArrayView>

#include <deque>
#include <memory>
#include <vector>

namespace ed {

struct StyleSnapshot;

// What the history changes when it takes a step back or again: the document's bytes.
class HistoryTarget {
public:
    virtual ~HistoryTarget() = default;
    virtual QByteArrayView historyBytes() const = 0;
    // Replaces `length` bytes at `offset` by `with`; this change is not reported back. False when
    // the person cancelled a change that took long: nothing changed.
    virtual bool replaceHistoryBytes(qsizetype offset, qsizetype length, QByteArrayView with) = 0;
    // The caret goes to `offset` with nothing selected.
    virtual void placeHistoryCaret(qsizetype offset) = 0;
    // Puts the character formats of a stretch back as they were.
    virtual void restoreHistoryStyles(const StyleSnapshot& styles) = 0;
};

// `removed` at `offset` became `inserted`; for a change of formats alone, the formats of a
// stretch went from `stylesBefore` to `stylesAfter`.
struct ByteChange {
    qsizetype offset = 0;
    QByteArray removed;
    QByteArray inserted;
    std::shared_ptr<const StyleSnapshot> stylesBefore;
    std::shared_ptr<const StyleSnapshot> stylesAfter;
    qsizetype bytes() const; // memory it holds
};

class UndoHistory {
public:
    static constexpr qsizetype kDefaultLimitBytes = qsizetype(256) * 1024 * 1024;
    // Typing after a pause this long starts a new step.
    static constexpr qint64 kBurstPauseMs = 2000;

    explicit UndoHistory(HistoryTarget& target, qsizetype limitBytes = kDefaultLimitBytes)
        : target_(target), limit_(limitBytes) {}

    // A change of the document. Typed changes join the open typing step when they continue it;
    // other changes join the open step of the command under way. Clears what could be redone.
    void record(ByteChange change, bool typed, qint64 nowMs = 0);
    // Ends the open step: the next change starts a new one.
    void close();

    // Takes back the latest step (or does again the latest undone one), then puts the caret at
    // the start of the changed part. False when there is nothing to do, when the person cancelled
    // (the step stays where it was), or when the document no longer fits the history (it was
    // changed without being recorded): the history is then emptied.
    bool undo();
    bool redo();

    bool canUndo() const { return !undo_.empty(); }
    bool canRedo() const { return !redo_.empty(); }
    void clear();

    // Bytes the steps hold, undo and redo together.
    qsizetype storedBytes() const { return stored_; }
    qsizetype limitBytes() const { return limit_; }
    // A smaller limit forgets the oldest steps at once.
    void setLimitBytes(qsizetype bytes);
    qsizetype undoCount() const { return qsizetype(undo_.size()); }
    qsizetype redoCount() const { return qsizetype(redo_.size()); }

private:
    struct Step {
        std::vector<ByteChange> changes;
        qsizetype bytes = 0;
        bool typed = false;
    };

    bool step(bool undo);
    // True when `change` continues the typing of `open`.
    static bool continues(const Step& open, const ByteChange& change);
    void dropOldest();
    void dropRedo();

    HistoryTarget& target_;
    std::deque<Step> undo_;
    std::deque<Step> redo_;
    bool open_ = false; // the newest undo step still takes changes
    bool replaying_ = false;
    qint64 lastTypedMs_ = 0;
    qsizetype stored_ = 0;
    qsizetype limit_;
};

} // namespace ed
