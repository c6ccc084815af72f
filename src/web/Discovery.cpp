#include "web/Discovery.h"

#include "app/Trap.h"
#include "web/WaitLoop.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <memory>

namespace ed::web {

namespace {
[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}
} // namespace

std::optional<QJsonDocument> getJson(const Endpoint& endpoint, const QString& path, int timeoutMs) {
    if (!isLoopbackHost(endpoint.host))
        fail(QStringLiteral("The browser endpoint %1 is refused: only an address on this "
                            "computer is accepted.")
                 .arg(endpoint.text()));
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy::NoProxy);
    QNetworkRequest request(endpoint.httpUrl(path));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    std::unique_ptr<QNetworkReply> reply(manager.get(request));
    bool finished = false;
    QObject::connect(reply.get(), &QNetworkReply::finished, [&finished] { finished = true; });
    if (!waitUntil([&] { return finished; }, timeoutMs)) {
        reply->abort();
        fail(QStringLiteral("The browser endpoint %1 did not answer %2 within %3 ms.")
                 .arg(endpoint.text(), path, QString::number(timeoutMs)));
    }
    switch (reply->error()) {
    case QNetworkReply::NoError:
        break;
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::HostNotFoundError:
        return std::nullopt;
    default:
        fail(QStringLiteral("The browser endpoint %1 failed on %2: %3")
                 .arg(endpoint.text(), path, reply->errorString()));
    }
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status != 200)
        fail(QStringLiteral("The browser endpoint %1 answered %2 with HTTP status %3.")
                 .arg(endpoint.text(), path, QString::number(status)));
    QJsonParseError parseError;
    QJsonDocument doc = QJsonDocument::fromJson(reply->readAll(), &parseError);
    if (parseError.error != QJsonParseError::NoError)
        fail(QStringLiteral("The program at %1 is not a DevTools browser: its %2 is not JSON (%3).")
                 .arg(endpoint.text(), path, parseError.errorString()));
    return doc;
}

std::optional<std::vector<BrowserHandle>> listPages(const Endpoint& endpoint, int timeoutMs) {
    const auto doc = getJson(endpoint, QStringLiteral("/json/list"), timeoutMs);
    if (!doc)
        return std::nullopt;
    if (!doc->isArray())
        fail(QStringLiteral("The program at %1 is not a DevTools browser: /json/list is not a "
                            "list.")
                 .arg(endpoint.text()));
    std::vector<BrowserHandle> pages;
    for (const QJsonValue& v : doc->array()) {
        const QJsonObject t = v.toObject();
        if (t.value(QStringLiteral("type")).toString() != u"page")
            continue;
        BrowserHandle h;
        h.targetId = t.value(QStringLiteral("id")).toString();
        h.title = t.value(QStringLiteral("title")).toString();
        h.url = t.value(QStringLiteral("url")).toString();
        h.webSocketUrl = t.value(QStringLiteral("webSocketDebuggerUrl")).toString();
        if (h.targetId.isEmpty() || h.webSocketUrl.isEmpty())
            continue; // a page another client holds exclusively
        const QString refused = checkLoopbackUrl(QUrl(h.webSocketUrl));
        if (!refused.isEmpty())
            fail(refused);
        pages.push_back(h);
    }
    return pages;
}

bool endpointAnswers(const Endpoint& endpoint, int timeoutMs) {
    try {
        const auto doc = getJson(endpoint, QStringLiteral("/json/version"), timeoutMs);
        return doc && doc->isObject() &&
               doc->object().contains(QStringLiteral("webSocketDebuggerUrl"));
    } catch (const RuntimeError&) {
        return false;
    }
}

} // namespace ed::web
