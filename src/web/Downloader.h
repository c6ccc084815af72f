#pragma once
// Fetches a list of addresses into a folder: a few files at a time, redirects followed, a file
// given up when no data comes for a while. Bytes go to NAME.part, which becomes NAME when the
// file is complete; a file that fails or is cancelled leaves nothing behind. Runs the event loop
// until every file has ended, so the window stays live and Cancel works.

#include "app/Ports.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace ed::web {

struct DownloadOptions {
    int parallel = 4;           // files at a time
    int maxRedirects = 10;      // per file
    int stallTimeoutMs = 30000; // a file gives up after this long without data
};

struct DownloadResult {
    QString url;
    QString fileName; // the name in the folder when it downloaded
    QString error;    // why it failed; "" when it downloaded
    qint64 bytes = 0;
    bool ok() const { return error.isEmpty(); }
};

class Downloader : public QObject {
    Q_OBJECT
public:
    explicit Downloader(QString folder, DownloadOptions options = {});
    ~Downloader() override;

    // Downloads `urls` into the folder and returns one result per address, in list order.
    // `progress` (may be null) shows files done, bytes, and Cancel.
    std::vector<DownloadResult> run(const QStringList& urls, Progress* progress);
    // Stops every file still running or waiting; each of them fails as cancelled.
    void cancel();

signals:
    // The last file ended.
    void allEnded();

private:
    struct Job;
    void startNext();
    void onHeaders(Job& job);
    bool fitsOnDisk(Job& job);
    void onData(Job& job);
    void onFinished(Job& job);
    bool openPart(Job& job);
    bool createPart(Job& job, const QString& proposed);
    void startFtp(Job& job);
    void stopFtp(Job& job);
    void complete(Job& job);
    void fail(Job& job, const QString& reason);
    void finish(Job& job);
    bool taken(const QString& name) const;
    void report();

    QString folder_;
    DownloadOptions options_;
    QNetworkAccessManager network_;
    std::vector<std::unique_ptr<Job>> jobs_;
    std::vector<DownloadResult> results_;
    QSet<QString> reserved_; // names of files being written
    size_t next_ = 0;
    int running_ = 0;
    int ended_ = 0;
    qint64 bytes_ = 0;
    bool cancelled_ = false;
    Progress* progress_ = nullptr;
};

} // namespace ed::web
