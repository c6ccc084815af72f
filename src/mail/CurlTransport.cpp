// The libcurl SMTP sender. With STARTTLS the upgrade is required (CURLUSESSL_ALL): a server that
// does not offer it ends the session before AUTH, so the password never goes out in clear.

#include "mail/CurlTransport.h"

#include <curl/curl.h>


#include <cstring>
#include <memory>
#include <mutex>

namespace ed::mail {

namespace {

struct Upload {
    const QByteArray* data = nullptr;
    qsizetype offset = 0;
};

size_t readMessage(char* buffer, size_t size, size_t count, void* userData) {
    auto* up = static_cast<Upload*>(userData);
    const size_t room = size * count;
    const size_t left = size_t(up->data->size() - up->offset);
    const size_t n = left < room ? left : room;
    std::memcpy(buffer, up->data->constData() + up->offset, n);
    up->offset += qsizetype(n);
    return n;
}

int progress(void* userData, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    const auto* cancelled = static_cast<const std::function<bool()>*>(userData);
    return (*cancelled && (*cancelled)()) ? 1 : 0;
}

// The server's first refusal (a 4xx or 5xx reply), collected from the protocol trace.
int trace(CURL*, curl_infotype type, char* data, size_t size, void* userData) {
    if (type == CURLINFO_HEADER_IN) {
        auto* reply = static_cast<QString*>(userData);
        const QString line = QString::fromUtf8(data, qsizetype(size)).trimmed();
        if (reply->isEmpty() && (line.startsWith(u'4') || line.startsWith(u'5')))
            *reply = line;
    }
    return 0;
}

struct CurlDeleter {
    void operator()(CURL* c) const { curl_easy_cleanup(c); }
};
struct SlistDeleter {
    void operator()(curl_slist* l) const { curl_slist_free_all(l); }
};

QByteArray angleAddress(const QString& address) {
    return "<" + address.trimmed().toUtf8() + ">";
}

} // namespace

CurlTransport::CurlTransport() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

SendOutcome CurlTransport::send(const SmtpServer& server, const QString& from, const QString& to,
                                const QByteArray& message, const std::function<bool()>& cancelled) {
    SendOutcome outcome;
    std::unique_ptr<CURL, CurlDeleter> curl(curl_easy_init());
    if (!curl) {
        outcome.reason = QStringLiteral("The mail library could not start.");
        return outcome;
    }
    CURL* c = curl.get();
    const bool ipv6 = server.host.contains(u':');
    const QByteArray host = ipv6 ? "[" + server.host.toUtf8() + "]" : server.host.toUtf8();
    const QByteArray url = (server.security == Security::Tls ? "smtps://" : "smtp://") + host +
                           ":" + QByteArray::number(server.port);
    const QByteArray user = server.user.toUtf8();
    const QByteArray password = server.password.toUtf8();
    const QByteArray mailFrom = angleAddress(from);
    std::unique_ptr<curl_slist, SlistDeleter> recipients(
        curl_slist_append(nullptr, angleAddress(to).constData()));
    Upload upload{&message, 0};
    QString lastReply;

    curl_easy_setopt(c, CURLOPT_URL, url.constData());
    curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "smtp,smtps");
    curl_easy_setopt(c, CURLOPT_USE_SSL,
                     long(server.security == Security::None ? CURLUSESSL_NONE : CURLUSESSL_ALL));
    if (!user.isEmpty()) {
        curl_easy_setopt(c, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(c, CURLOPT_PASSWORD, password.constData());
    }
    curl_easy_setopt(c, CURLOPT_MAIL_FROM, mailFrom.constData());
    curl_easy_setopt(c, CURLOPT_MAIL_RCPT, recipients.get());
    curl_easy_setopt(c, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(c, CURLOPT_INFILESIZE_LARGE, curl_off_t(message.size()));
    curl_easy_setopt(c, CURLOPT_READFUNCTION, readMessage);
    curl_easy_setopt(c, CURLOPT_READDATA, &upload);
    curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, long(server.connectTimeoutSeconds));
    // A server that stops answering: under 1 byte a second for the idle time ends the send.
    curl_easy_setopt(c, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(c, CURLOPT_LOW_SPEED_TIME, long(server.idleTimeoutSeconds));
    curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(c, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(c, CURLOPT_XFERINFOFUNCTION, progress);
    curl_easy_setopt(c, CURLOPT_XFERINFODATA, &cancelled);
    curl_easy_setopt(c, CURLOPT_VERBOSE, 1L);
    curl_easy_setopt(c, CURLOPT_DEBUGFUNCTION, trace);
    curl_easy_setopt(c, CURLOPT_DEBUGDATA, &lastReply);
    char errorBuffer[CURL_ERROR_SIZE] = {};
    curl_easy_setopt(c, CURLOPT_ERRORBUFFER, errorBuffer);

    const CURLcode rc = curl_easy_perform(c);
    if (rc == CURLE_OK) {
        outcome.sent = true;
        return outcome;
    }
    if (rc == CURLE_ABORTED_BY_CALLBACK) {
        outcome.cancelled = true;
        outcome.reason = QStringLiteral("cancelled");
        return outcome;
    }
    QString reason = QString::fromUtf8(errorBuffer).trimmed();
    if (reason.isEmpty())
        reason = QString::fromUtf8(curl_easy_strerror(rc));
    if (rc == CURLE_USE_SSL_FAILED)
        reason = QStringLiteral("the server does not offer STARTTLS, nothing was sent");
    else if (rc == CURLE_OPERATION_TIMEDOUT)
        reason = QStringLiteral("the server stopped answering (%1)").arg(reason);
    if (!lastReply.isEmpty() && rc != CURLE_USE_SSL_FAILED)
        reason = lastReply;
    outcome.reason = reason;
    return outcome;
}

} // namespace ed::mail
