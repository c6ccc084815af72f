#include "web/Downloader.h"

#include "web/DownloadNames.h"
#include "web/FtpFetch.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStorageInfo>
#include <QTimer>

namespace ed::web {

namespace {

// A file or a symbolic link (even one that points nowhere) at `path`.
bool present(const QString& path) {
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

const QString kPartSuffix = QStringLiteral(".part");

// "HTTP 404 Not Found" for a response outside 200-299; "" otherwise (or when not HTTP).
QString refusedStatus(const QNetworkReply& reply) {
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid() || (status.toInt() >= 200 && status.toInt() <= 299))
        return QString();
    const QString phrase = QString::fromUtf8(
        reply.attribute(QNetworkRequest::HttpReasonPhraseAttribute).toByteArray());
    return QStringLiteral("HTTP %1 %2").arg(status.toInt()).arg(phrase).trimmed();
}

} // namespace

struct Downloader::Job {
    size_t index = 0;
    QUrl url;
    QNetworkReply* reply = nullptr; // deleted later by finish()
    std::unique_ptr<FtpFetch> ftp;  // an ftp:// transfer instead of a reply
    QFile part;
    QString name; // the final name, reserved while the file is written
    QTimer stall;
    qint64 bytes = 0;
    bool running = false;
    bool ended = false;
};

Downloader::Downloader(QString folder, DownloadOptions options)
    : folder_(std::move(folder)), options_(options) {
    network_.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
}

Downloader::~Downloader() {
    cancel();
}

bool Downloader::taken(const QString& name) const {
    return reserved_.contains(name) || present(QDir(folder_).filePath(name)) ||
           present(QDir(folder_).filePath(name + kPartSuffix));
}

std::vector<DownloadResult> Downloader::run(const QStringList& urls, Progress* progress) {
    jobs_.clear();
    results_.clear();
    next_ = 0;
    running_ = 0;
    ended_ = 0;
    bytes_ = 0;
    cancelled_ = false;
    progress_ = progress;
    for (const QString& url : urls) {
        auto job = std::make_unique<Job>();
        job->index = jobs_.size();
        job->url = QUrl(url, QUrl::TolerantMode);
        job->stall.setSingleShot(true);
        job->stall.setInterval(options_.stallTimeoutMs);
        Job* raw = job.get();
        connect(&job->stall, &QTimer::timeout, this, [this, raw] {
            fail(*raw, QStringLiteral("no data came for %1 s")
                           .arg(QLocale::c().toString(options_.stallTimeoutMs / 1000.0)));
        });
        jobs_.push_back(std::move(job));
        DownloadResult result;
        result.url = url;
        results_.push_back(result);
    }
    if (progress_)
        progress_->begin(QStringLiteral("Download Files"), [this] { cancel(); });
    report();
    startNext();
    if (ended_ < int(jobs_.size())) {
        QEventLoop loop;
        connect(this, &Downloader::allEnded, &loop, &QEventLoop::quit);
        while (ended_ < int(jobs_.size()))
            loop.exec();
    }
    if (progress_)
        progress_->end();
    progress_ = nullptr;
    return results_;
}

void Downloader::cancel() {
    cancelled_ = true;
    for (const auto& job : jobs_)
        fail(*job, QStringLiteral("cancelled"));
}

void Downloader::startNext() {
    while (!cancelled_ && running_ < options_.parallel && next_ < jobs_.size()) {
        Job& job = *jobs_[next_++];
        const QString scheme = job.url.scheme().toLower();
        if (!job.url.isValid() || job.url.host().isEmpty()) {
            fail(job, QStringLiteral("not a valid address"));
            continue;
        }
        if (scheme == u"ftp") {
            startFtp(job);
            continue;
        }
        if (!network_.supportedSchemes().contains(scheme)) {
            fail(job, QStringLiteral("%1:// addresses cannot be downloaded here").arg(scheme));
            continue;
        }
        QNetworkRequest request(job.url);
        request.setMaximumRedirectsAllowed(options_.maxRedirects);
        job.reply = network_.get(request);
        job.running = true;
        ++running_;
        Job* raw = &job;
        connect(job.reply, &QNetworkReply::metaDataChanged, this, [this, raw] { onHeaders(*raw); });
        connect(job.reply, &QNetworkReply::redirected, this, [raw] { raw->stall.start(); });
        connect(job.reply, &QNetworkReply::readyRead, this, [this, raw] { onData(*raw); });
        connect(job.reply, &QNetworkReply::finished, this, [this, raw] { onFinished(*raw); });
        job.stall.start();
    }
}

bool Downloader::fitsOnDisk(Job& job) {
    const QVariant length = job.reply->header(QNetworkRequest::ContentLengthHeader);
    const QStorageInfo disk(folder_);
    if (length.isValid() && disk.isValid() && length.toLongLong() > disk.bytesAvailable()) {
        fail(job, QStringLiteral("the file has %1 bytes, the disk has room for %2 only")
                      .arg(length.toLongLong())
                      .arg(disk.bytesAvailable()));
        return false;
    }
    return true;
}

void Downloader::onHeaders(Job& job) {
    if (job.ended)
        return;
    job.stall.start();
    // A file too large for the disk fails before its first byte; a refused status waits for
    // the end of the response (a redirect is followed, not refused).
    const QVariant status = job.reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid() || (status.toInt() >= 200 && status.toInt() <= 299))
        fitsOnDisk(job);
}

bool Downloader::openPart(Job& job) {
    const QString refused = refusedStatus(*job.reply);
    if (!refused.isEmpty()) {
        fail(job, refused);
        return false;
    }
    if (!fitsOnDisk(job))
        return false;
    return createPart(
        job, downloadFileName(job.reply->rawHeader("Content-Disposition"), job.reply->url()));
}

bool Downloader::createPart(Job& job, const QString& proposed) {
    // Another program may take a name between the look and the creation: then the next one.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QString name =
            uniqueFileName(proposed, [this](const QString& n) { return taken(n); });
        job.part.setFileName(QDir(folder_).filePath(name + kPartSuffix));
        if (job.part.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
            job.name = name;
            reserved_.insert(name);
            return true;
        }
        if (!present(job.part.fileName()))
            break;
    }
    const QString why = job.part.errorString();
    const QString path = QDir::toNativeSeparators(job.part.fileName());
    job.part.setFileName(QString()); // not ours: never removed
    fail(job, QStringLiteral("cannot create %1: %2").arg(path, why));
    return false;
}

void Downloader::startFtp(Job& job) {
    job.running = true;
    ++running_;
    if (!createPart(job, downloadFileName(QByteArray(), job.url)))
        return;
    job.ftp = std::make_unique<FtpFetch>(job.url, job.part.handle(),
                                         QDir::toNativeSeparators(job.part.fileName()),
                                         options_.stallTimeoutMs);
    Job* raw = &job;
    connect(job.ftp.get(), &FtpFetch::received, this, [this, raw](qint64 total) {
        if (raw->ended)
            return;
        bytes_ += total - raw->bytes;
        raw->bytes = total;
        report();
    });
    connect(job.ftp.get(), &FtpFetch::ended, this, [this, raw](const QString& error) {
        if (raw->ended)
            return;
        stopFtp(*raw);
        if (error.isEmpty())
            complete(*raw);
        else
            fail(*raw, error);
    });
}

void Downloader::stopFtp(Job& job) {
    if (!job.ftp)
        return;
    disconnect(job.ftp.get(), nullptr, this, nullptr);
    job.ftp.reset(); // the file is not written any more after this
}

void Downloader::onData(Job& job) {
    if (job.ended)
        return;
    job.stall.start();
    if (!job.part.isOpen() && !openPart(job))
        return;
    const QByteArray chunk = job.reply->readAll();
    if (chunk.isEmpty())
        return;
    if (job.part.write(chunk) != chunk.size()) {
        fail(job, QStringLiteral("cannot write %1: %2")
                      .arg(QDir::toNativeSeparators(job.part.fileName()), job.part.errorString()));
        return;
    }
    job.bytes += chunk.size();
    bytes_ += chunk.size();
    report();
}

void Downloader::onFinished(Job& job) {
    if (job.ended)
        return;
    job.stall.stop();
    if (job.reply->error() != QNetworkReply::NoError) {
        // A refused status names itself; anything else is the network's own reason.
        const QString refused = refusedStatus(*job.reply);
        if (job.reply->error() == QNetworkReply::TooManyRedirectsError)
            fail(job, QStringLiteral("more than %1 redirects").arg(options_.maxRedirects));
        else
            fail(job, refused.isEmpty() ? job.reply->errorString() : refused);
        return;
    }
    onData(job);
    if (job.ended || (!job.part.isOpen() && !openPart(job)))
        return;
    complete(job);
}

void Downloader::complete(Job& job) {
    job.part.close();
    if (job.part.error() != QFileDevice::NoError) {
        fail(job, QStringLiteral("cannot write %1: %2")
                      .arg(QDir::toNativeSeparators(job.part.fileName()), job.part.errorString()));
        return;
    }
    // Another program may have made a file of that name meanwhile: then the next free name.
    QString name = job.name;
    if (present(QDir(folder_).filePath(name)))
        name = uniqueFileName(name, [this](const QString& n) { return taken(n); });
    if (!job.part.rename(QDir(folder_).filePath(name))) {
        fail(job,
             QStringLiteral("cannot rename %1 to %2: %3")
                 .arg(QDir::toNativeSeparators(job.part.fileName()), name, job.part.errorString()));
        return;
    }
    job.part.setFileName(QString()); // complete: never removed
    results_[job.index].fileName = name;
    results_[job.index].bytes = job.bytes;
    finish(job);
}

void Downloader::fail(Job& job, const QString& reason) {
    if (job.ended)
        return;
    results_[job.index].error = reason;
    stopFtp(job);
    if (!job.part.fileName().isEmpty()) {
        job.part.close();
        job.part.remove();
    }
    finish(job);
}

void Downloader::finish(Job& job) {
    job.ended = true;
    job.stall.stop();
    stopFtp(job);
    reserved_.remove(job.name);
    if (job.reply) {
        // Deleting a reply that still runs ends its transfer; an abort here, inside one of the
        // reply's own signals, would make it report its end twice.
        disconnect(job.reply, nullptr, this, nullptr);
        job.reply->deleteLater();
        job.reply = nullptr;
    }
    if (job.running) {
        job.running = false;
        --running_;
    }
    ++ended_;
    report();
    startNext();
    if (ended_ == int(jobs_.size()))
        emit allEnded();
}

void Downloader::report() {
    if (!progress_)
        return;
    const int total = int(jobs_.size());
    progress_->update(QStringLiteral("%1 of %2 files, %3")
                          .arg(ended_)
                          .arg(total)
                          .arg(QLocale().formattedDataSize(bytes_)),
                      ended_, total);
}

} // namespace ed::web
