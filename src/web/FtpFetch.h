#pragma once
// One ftp:// download on a thread of its own through libcurl (the downloader's network library
// speaks HTTP only). The bytes go into a file the caller opened; progress and the end are
// reported as signals on the caller's thread, and cancel() ends the transfer within a moment.

#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>
#include <thread>

namespace ed::web {

class FtpFetch : public QObject {
    Q_OBJECT
public:
    // Starts fetching `url` into the open file `fd` (named `path` in messages). The transfer
    // gives up after `stallMs` without data.
    FtpFetch(const QUrl& url, int fd, const QString& path, int stallMs);
    // Cancels and waits for the thread: the file is no longer written afterwards.
    ~FtpFetch() override;
    void cancel();

    struct Shared; // what the thread works with

signals:
    void received(qint64 bytes);      // the bytes written so far
    void ended(const QString& error); // "" when the file is complete

private:
    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

} // namespace ed::web
