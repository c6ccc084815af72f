#pragma once
// Recovery copies of unsaved documents: written atomically on a worker thread under the user's
// state folder, one file per document and process, and offered back at the next start when the
// Editor that wrote them is no longer running.

#include <QDateTime>
#include <QString>
#include <QThreadPool>

#include <vector>

namespace ed {

struct RecoveredDocument {
    QString file; // the recovery file itself
    QString path; // the document's path
    QDateTime time;
    qint64 pid = 0;
    QByteArray text; // the document model (UTF-8, CR LF breaks)
};

class RecoveryStore {
public:
    // `folder` "" is the user's: $XDG_STATE_HOME/Editor, else ~/.local/state/Editor.
    explicit RecoveryStore(QString folder = QString());
    ~RecoveryStore(); // finishes the scheduled writes
    RecoveryStore(const RecoveryStore&) = delete;
    RecoveryStore& operator=(const RecoveryStore&) = delete;

    static QString userFolder();
    const QString& folder() const { return folder_; }

    // Schedules writing `text` as this process's recovery copy of the document `path`. A copy
    // kept for another path goes.
    void write(const QString& path, const QByteArray& text, const QDateTime& time);
    // Schedules removing this process's copy (after the writes before it).
    void remove();
    // Waits for everything scheduled.
    void flush();
    // This process's copy ("" when none is written or scheduled).
    const QString& currentFile() const { return current_; }

    // Copies left by Editors that are no longer running, newest first.
    std::vector<RecoveredDocument> orphans() const;
    static bool read(const QString& file, RecoveredDocument& out);
    static void discard(const QString& file);

private:
    QString fileFor(const QString& path) const;
    QString folder_;
    QString current_;
    QThreadPool worker_; // one thread: the writes and removals run in the order scheduled
};

} // namespace ed
