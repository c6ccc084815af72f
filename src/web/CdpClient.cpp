#include "web/CdpClient.h"

#include "app/Trap.h"
#include "web/WaitLoop.h"

#include <QJsonDocument>
#include <QJsonParseError>

namespace ed::web {

namespace {
QString seconds(int ms) {
    return ms % 1000 == 0 ? QString::number(ms / 1000) + QStringLiteral(" s")
                          : QString::number(ms) + QStringLiteral(" ms");
}
} // namespace

CdpClient::CdpClient(std::unique_ptr<CdpTransport> transport, int callTimeoutMs, QObject* parent)
    : QObject(parent), transport_(std::move(transport)), timeoutMs_(callTimeoutMs),
      alive_(std::make_shared<bool>(true)) {
    connect(transport_.get(), &CdpTransport::opened, this, [this] {
        open_ = true;
        everOpened_ = true;
        closeReason_.clear();
    });
    connect(transport_.get(), &CdpTransport::textReceived, this, &CdpClient::onText);
    connect(transport_.get(), &CdpTransport::closed, this, &CdpClient::onClosed);
}

CdpClient::~CdpClient() {
    *alive_ = false;
    transport_->disconnect(this);
    for (auto& [id, p] : pending_) {
        p->done = true;
        p->error = QStringLiteral("the session was ended");
    }
}

void CdpClient::connectTo(const QUrl& url) {
    closeReason_.clear();
    bool failed = false;
    const auto failure = connect(transport_.get(), &CdpTransport::closed, this,
                                 [&failed](const QString&) { failed = true; });
    transport_->open(url);
    const bool settled = waitUntil([&] { return open_ || failed; }, timeoutMs_);
    disconnect(failure);
    if (open_)
        return;
    transport_->close();
    if (!settled)
        throw RuntimeError(
            QStringLiteral("The browser at %1 did not accept a connection within %2.")
                .arg(url.toString(), seconds(timeoutMs_))
                .toStdString());
    throw RuntimeError(QStringLiteral("Could not connect to the browser at %1: %2")
                           .arg(url.toString(), closeReason_)
                           .toStdString());
}

bool CdpClient::isConnected() const {
    return open_;
}

void CdpClient::close() {
    if (open_)
        transport_->close();
}

int CdpClient::send(const QString& method, const QJsonObject& params, const QString& sessionId) {
    if (!open_)
        throw RuntimeError(QStringLiteral("The browser connection is closed (%1 not sent).")
                               .arg(method)
                               .toStdString());
    const int id = nextId_++;
    QJsonObject message{{QStringLiteral("id"), id},
                        {QStringLiteral("method"), method},
                        {QStringLiteral("params"), params}};
    if (!sessionId.isEmpty())
        message.insert(QStringLiteral("sessionId"), sessionId);
    transport_->sendText(QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact)));
    return id;
}

void CdpClient::post(const QString& method, const QJsonObject& params, const QString& sessionId) {
    send(method, params, sessionId);
}

QJsonObject CdpClient::call(const QString& method, const QJsonObject& params,
                            const QString& sessionId, const std::function<bool()>& enough) {
    Pending pending;
    pending.method = method;
    pending.sessionId = sessionId;
    const int id = send(method, params, sessionId);
    pending_[id] = &pending;
    const std::shared_ptr<bool> alive = alive_;
    const bool answered =
        waitUntil([&] { return pending.done || (enough && enough()); }, timeoutMs_);
    if (*alive)
        pending_.erase(id);
    if (answered && !pending.done)
        return QJsonObject();
    if (!answered)
        throw RuntimeError(QStringLiteral("The browser did not answer %1 within %2.")
                               .arg(method, seconds(timeoutMs_))
                               .toStdString());
    if (!pending.error.isEmpty())
        throw RuntimeError(pending.error.toStdString());
    return pending.result;
}

void CdpClient::onText(const QString& text) {
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(text.toUtf8(), &parseError);
    if (parseError.error != QJsonParseError::NoError || !doc.isObject()) {
        ++faults_;
        return;
    }
    const QJsonObject message = doc.object();
    const QString sessionId = message.value(QStringLiteral("sessionId")).toString();
    const QJsonValue idValue = message.value(QStringLiteral("id"));
    if (idValue.isDouble()) {
        const auto it = pending_.find(idValue.toInt());
        if (it == pending_.end())
            return; // a reply to a message sent without waiting, or one that timed out
        Pending& p = *it->second;
        if (p.sessionId != sessionId) {
            ++faults_;
            return;
        }
        const QJsonValue error = message.value(QStringLiteral("error"));
        if (error.isObject()) {
            const QJsonObject e = error.toObject();
            p.error = QStringLiteral("The browser refused %1: %2 (%3)")
                          .arg(p.method, e.value(QStringLiteral("message")).toString(),
                               QString::number(e.value(QStringLiteral("code")).toInt()));
        } else {
            p.result = message.value(QStringLiteral("result")).toObject();
        }
        p.done = true;
        pending_.erase(it);
        return;
    }
    const QJsonValue method = message.value(QStringLiteral("method"));
    if (!method.isString()) {
        ++faults_;
        return;
    }
    emit eventReceived(method.toString(), message.value(QStringLiteral("params")).toObject(),
                       sessionId);
}

void CdpClient::onClosed(const QString& reason) {
    const bool wasOpen = open_;
    open_ = false;
    closeReason_ = reason.isEmpty() ? QStringLiteral("connection closed") : reason;
    for (auto& [id, p] : pending_) {
        p->done = true;
        p->error = QStringLiteral("The browser closed the connection during %1 (%2).")
                       .arg(p->method, closeReason_);
    }
    pending_.clear();
    if (wasOpen)
        emit connectionLost(closeReason_);
}

} // namespace ed::web
