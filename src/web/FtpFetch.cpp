#include "web/FtpFetch.h"

#include <QLocale>

#include <curl/curl.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace ed::web {

struct FtpFetch::Shared {
    QByteArray url;
    int fd = -1;
    QString path;
    int stallMs = 30000;
    std::atomic<bool> cancelled{false};
    QString writeError;
    qint64 written = 0;
    FtpFetch* owner = nullptr; // signals are emitted through it while the thread runs
};

namespace {

size_t writeChunk(char* data, size_t size, size_t count, void* user) {
    auto* s = static_cast<FtpFetch::Shared*>(user);
    const size_t total = size * count;
    size_t done = 0;
    while (done < total) {
        const ssize_t n = ::write(s->fd, data + done, total - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            s->writeError = QString::fromLocal8Bit(std::strerror(n < 0 ? errno : ENOSPC));
            return 0;
        }
        done += size_t(n);
    }
    s->written += qint64(total);
    emit s->owner->received(s->written);
    return total;
}

int onProgress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<FtpFetch::Shared*>(user)->cancelled ? 1 : 0;
}

QString fetch(FtpFetch::Shared& s) {
    CURL* curl = curl_easy_init();
    if (!curl)
        return QStringLiteral("the FTP transfer could not be set up");
    char message[CURL_ERROR_SIZE] = {};
    curl_easy_setopt(curl, CURLOPT_URL, s.url.constData());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "ftp");
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, message);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, writeChunk);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &s);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, onProgress);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &s);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, long(s.stallMs));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, std::max(1L, long((s.stallMs + 999) / 1000)));
    const CURLcode result = curl_easy_perform(curl);
    curl_easy_cleanup(curl);
    switch (result) {
    case CURLE_OK:
        return QString();
    case CURLE_ABORTED_BY_CALLBACK:
        return QStringLiteral("cancelled");
    case CURLE_WRITE_ERROR:
        return QStringLiteral("cannot write %1: %2").arg(s.path, s.writeError);
    case CURLE_OPERATION_TIMEDOUT:
        return QStringLiteral("no data came for %1 s")
            .arg(QLocale::c().toString(s.stallMs / 1000.0));
    default:
        return message[0] ? QString::fromLocal8Bit(message)
                          : QString::fromLatin1(curl_easy_strerror(result));
    }
}

} // namespace

FtpFetch::FtpFetch(const QUrl& url, int fd, const QString& path, int stallMs)
    : shared_(std::make_shared<Shared>()) {
    shared_->url = url.toEncoded();
    shared_->fd = fd;
    shared_->path = path;
    shared_->stallMs = stallMs;
    shared_->owner = this;
    thread_ = std::thread([this, s = shared_] {
        const QString error = fetch(*s);
        emit ended(error);
    });
}

FtpFetch::~FtpFetch() {
    cancel();
    if (thread_.joinable())
        thread_.join();
}

void FtpFetch::cancel() {
    shared_->cancelled = true;
}

} // namespace ed::web
