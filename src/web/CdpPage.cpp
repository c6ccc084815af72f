#include "web/CdpPage.h"

#include "app/Trap.h"
#include "web/WaitLoop.h"
#include "web/WebSocketTransport.h"
#include "web/WebText.h"

#include <QJsonArray>

namespace ed::web {

namespace {

[[noreturn]] void fail(const QString& message) {
    throw RuntimeError(message.toStdString());
}

const QString kWorldName = QStringLiteral("EditorReader");

// The element that holds window.frames[i]: frames are numbered in document order of their
// frame, iframe and object elements.
QString frameOwnerScript(int index) {
    return QStringLiteral("(() => { const w = window.frames[%1]; if (!w) return null;"
                          " for (const e of document.querySelectorAll('iframe,frame,object'))"
                          " { if (e.contentWindow === w) return e; } return null; })()")
        .arg(index);
}

QString frameUrl(const QJsonObject& frame) {
    return frame.value(QStringLiteral("url")).toString() +
           frame.value(QStringLiteral("urlFragment")).toString();
}

} // namespace

CdpPage::CdpPage(const BrowserHandle& window, const Endpoint& endpoint, const CdpOptions& options,
                 std::unique_ptr<CdpTransport> transport)
    : handle_(window), endpoint_(endpoint), options_(options) {
    const QUrl url(window.webSocketUrl);
    const QString refused = checkLoopbackUrl(url);
    if (!refused.isEmpty())
        fail(refused);
    if (!transport)
        transport = std::make_unique<WebSocketTransport>();
    client_ = std::make_unique<CdpClient>(std::move(transport), options.callTimeoutMs);
    QObject::connect(client_.get(), &CdpClient::eventReceived, client_.get(),
                     [this](const QString& method, const QJsonObject& params,
                            const QString& sessionId) { onEvent(method, params, sessionId); });
    QObject::connect(client_.get(), &CdpClient::connectionLost, client_.get(),
                     [this](const QString& reason) {
                         if (events_.connectionLost)
                             events_.connectionLost(reason);
                     });
    client_->connectTo(url);
    client_->call(QStringLiteral("Page.enable"));
    const QJsonObject tree = client_->call(QStringLiteral("Page.getFrameTree"))
                                 .value(QStringLiteral("frameTree"))
                                 .toObject();
    mainFrameId_ =
        tree.value(QStringLiteral("frame")).toObject().value(QStringLiteral("id")).toString();
    rememberFrames(tree);
    // Each attached target waits until its events are switched on (see attachedToTarget), so a
    // quick frame of another site cannot finish loading unseen.
    client_->call(QStringLiteral("Target.setAutoAttach"),
                  {{QStringLiteral("autoAttach"), true},
                   {QStringLiteral("waitForDebuggerOnStart"), true},
                   {QStringLiteral("flatten"), true}});
    // Frames of other sites that navigate say so through the target events.
    client_->call(QStringLiteral("Target.setDiscoverTargets"),
                  {{QStringLiteral("discover"), true}});
}

CdpPage::~CdpPage() {
    client_->disconnect();
    client_->close();
}

void CdpPage::rememberFrames(const QJsonObject& tree) {
    const QJsonObject frame = tree.value(QStringLiteral("frame")).toObject();
    frameUrls_.insert(frame.value(QStringLiteral("id")).toString(), frameUrl(frame));
    for (const QJsonValue& child : tree.value(QStringLiteral("childFrames")).toArray())
        rememberFrames(child.toObject());
}

void CdpPage::onEvent(const QString& method, const QJsonObject& params, const QString& sessionId) {
    if (method == u"Page.frameNavigated") {
        onFrameNavigated(params.value(QStringLiteral("frame")).toObject(), sessionId);
    } else if (method == u"Page.navigatedWithinDocument") {
        frameUrls_.insert(params.value(QStringLiteral("frameId")).toString(),
                          params.value(QStringLiteral("url")).toString());
    } else if (method == u"Page.frameStartedLoading" || method == u"Page.frameStartedNavigating") {
        if (sessionId.isEmpty() &&
            params.value(QStringLiteral("frameId")).toString() == mainFrameId_)
            navigationStarted_ = true;
    } else if (method == u"Page.frameStoppedLoading") {
        const DocumentRef frame{params.value(QStringLiteral("frameId")).toString()};
        QString url = frameUrls_.value(frame.frameId);
        if (events_.documentComplete)
            events_.documentComplete(frame, url);
    } else if (method == u"Target.attachedToTarget") {
        const QString child = params.value(QStringLiteral("sessionId")).toString();
        const QJsonObject info = params.value(QStringLiteral("targetInfo")).toObject();
        if (info.value(QStringLiteral("type")).toString() == u"iframe") {
            // A frame of another site runs in a target of its own whose id is the frame's id;
            // it may have navigated before its session could report it, so its address is
            // taken from the target.
            const QString frameId = info.value(QStringLiteral("targetId")).toString();
            if (frameUrls_.value(frameId).isEmpty())
                frameUrls_.insert(frameId, info.value(QStringLiteral("url")).toString());
            childSessions_.insert(frameId, child);
            client_->post(QStringLiteral("Page.enable"), {}, child);
            client_->post(QStringLiteral("Target.setAutoAttach"),
                          {{QStringLiteral("autoAttach"), true},
                           {QStringLiteral("waitForDebuggerOnStart"), true},
                           {QStringLiteral("flatten"), true}},
                          child);
        }
        // Every attached target (frames, workers) waits on start until told to run.
        client_->post(QStringLiteral("Runtime.runIfWaitingForDebugger"), {}, child);
    } else if (method == u"Target.detachedFromTarget") {
        const QString child = params.value(QStringLiteral("sessionId")).toString();
        for (auto it = childSessions_.begin(); it != childSessions_.end();) {
            if (it.value() == child)
                it = childSessions_.erase(it);
            else
                ++it;
        }
    } else if (method == u"Target.targetInfoChanged") {
        // A frame of another site that navigated says so here as well.
        const QJsonObject info = params.value(QStringLiteral("targetInfo")).toObject();
        if (info.value(QStringLiteral("type")).toString() == u"iframe")
            frameUrls_.insert(info.value(QStringLiteral("targetId")).toString(),
                              info.value(QStringLiteral("url")).toString());
    }
}

void CdpPage::onFrameNavigated(const QJsonObject& frame, const QString& sessionId) {
    const QString id = frame.value(QStringLiteral("id")).toString();
    frameUrls_.insert(id, frameUrl(frame));
    if (sessionId.isEmpty() && !frame.contains(QStringLiteral("parentId")))
        mainFrameId_ = id;
}

void CdpPage::navigate(const QString& url) {
    // The browser answers only once the new page's response is in; the navigation has begun
    // as soon as the main frame starts loading, and that is when the call returns.
    navigationStarted_ = false;
    client_->call(QStringLiteral("Page.navigate"), {{QStringLiteral("url"), url}}, QString(),
                  [this] { return navigationStarted_; });
}

CdpPage::World CdpPage::isolatedWorld(const QString& frameId) {
    const QJsonObject params{{QStringLiteral("frameId"), frameId},
                             {QStringLiteral("worldName"), kWorldName}};
    auto create = [&](const QString& sessionId) {
        return World{sessionId,
                     client_->call(QStringLiteral("Page.createIsolatedWorld"), params, sessionId)
                         .value(QStringLiteral("executionContextId"))
                         .toInt()};
    };
    if (childSessions_.contains(frameId))
        return create(childSessions_.value(frameId));
    try {
        return create(QString());
    } catch (const RuntimeError&) {
        // A frame of another site lives in its own process; its session may still be on the way.
        if (!waitUntil([&] { return childSessions_.contains(frameId) || !isConnected(); },
                       options_.frameAttachWaitMs))
            throw;
        if (!childSessions_.contains(frameId))
            throw;
        return create(childSessions_.value(frameId));
    }
}

CdpPage::Evaluation CdpPage::evaluate(const DocumentRef& document, const QString& expression,
                                      bool byValue) {
    const QString frameId = document.isEmpty() ? mainFrameId_ : document.frameId;
    const World world = isolatedWorld(frameId);
    const QJsonObject reply = client_->call(QStringLiteral("Runtime.evaluate"),
                                            {{QStringLiteral("expression"), expression},
                                             {QStringLiteral("contextId"), world.contextId},
                                             {QStringLiteral("returnByValue"), byValue}},
                                            world.sessionId);
    if (reply.contains(QStringLiteral("exceptionDetails"))) {
        const QJsonObject details = reply.value(QStringLiteral("exceptionDetails")).toObject();
        QString text = details.value(QStringLiteral("exception"))
                           .toObject()
                           .value(QStringLiteral("description"))
                           .toString();
        if (text.isEmpty())
            text = details.value(QStringLiteral("text")).toString();
        fail(QStringLiteral("Reading the page failed: %1").arg(text));
    }
    return {reply.value(QStringLiteral("result")).toObject(), world.sessionId};
}

QJsonValue CdpPage::evaluateValue(const DocumentRef& document, const QString& expression) {
    return evaluate(document, expression, true).result.value(QStringLiteral("value"));
}

int CdpPage::frameCount() {
    return evaluateValue(topDocument(), QStringLiteral("window.frames.length")).toInt();
}

DocumentRef CdpPage::frameDocument(int index) {
    return childFrame(topDocument(), index);
}

DocumentRef CdpPage::childFrame(const DocumentRef& parent, int index) {
    const Evaluation owner = evaluate(parent, frameOwnerScript(index), false);
    const QString objectId = owner.result.value(QStringLiteral("objectId")).toString();
    if (objectId.isEmpty())
        fail(QStringLiteral("The page has no frame %1.").arg(index));
    const QString& sessionId = owner.sessionId;
    const QJsonObject node = client_
                                 ->call(QStringLiteral("DOM.describeNode"),
                                        {{QStringLiteral("objectId"), objectId}}, sessionId)
                                 .value(QStringLiteral("node"))
                                 .toObject();
    client_->post(QStringLiteral("Runtime.releaseObject"), {{QStringLiteral("objectId"), objectId}},
                  sessionId);
    const QString frameId = node.value(QStringLiteral("frameId")).toString();
    if (frameId.isEmpty())
        fail(QStringLiteral("Frame %1 of the page has no document.").arg(index));
    return {frameId};
}

QString CdpPage::documentHtml(const DocumentRef& document) {
    return toCrLf(evaluateValue(document, QStringLiteral("(() => { const e = "
                                                         "document.documentElement; return e ? "
                                                         "e.innerHTML : ''; })()"))
                      .toString());
}

QString CdpPage::documentText(const DocumentRef& document) {
    return toCrLf(evaluateValue(document, QStringLiteral("(() => { const e = "
                                                         "document.documentElement; return e ? "
                                                         "e.innerText : ''; })()"))
                      .toString());
}

QStringList CdpPage::documentLinks(const DocumentRef& document) {
    const QJsonValue links = evaluateValue(
        document, QStringLiteral("Array.from(document.links, a => typeof a.href === 'string' ? "
                                 "a.href : ((a.href && a.href.baseVal) || ''))"));
    QStringList out;
    for (const QJsonValue& v : links.toArray())
        out << v.toString();
    return out;
}

QList<DocumentRef> CdpPage::allDocuments() {
    QList<DocumentRef> out;
    appendWithFrames(topDocument(), 0, out);
    return out;
}

void CdpPage::appendWithFrames(const DocumentRef& document, int depth, QList<DocumentRef>& out) {
    // Frames nested deeper than this are not read (a page that nests itself without end).
    constexpr int kMaxDepth = 32;
    out << document;
    if (depth >= kMaxDepth)
        return;
    int n = 0;
    try {
        n = evaluateValue(document, QStringLiteral("window.frames.length")).toInt();
    } catch (const RuntimeError&) {
        if (depth == 0)
            throw;
        return; // a frame that went away meanwhile
    }
    for (int i = 0; i < n; ++i) {
        DocumentRef frame;
        try {
            frame = childFrame(document, i);
        } catch (const RuntimeError&) {
            continue;
        }
        appendWithFrames(frame, depth + 1, out);
    }
}

QJsonObject CdpPage::targetInfo() {
    return client_
        ->call(QStringLiteral("Target.getTargetInfo"),
               {{QStringLiteral("targetId"), handle_.targetId}})
        .value(QStringLiteral("targetInfo"))
        .toObject();
}

QString CdpPage::locationUrl() {
    return targetInfo().value(QStringLiteral("url")).toString();
}

QString CdpPage::locationName() {
    const QJsonObject info = targetInfo();
    const QString title = info.value(QStringLiteral("title")).toString();
    return title.isEmpty() ? info.value(QStringLiteral("url")).toString() : title;
}

QStringList CdpPage::allFrameIds() {
    QStringList ids;
    std::function<void(const QJsonObject&)> walk = [&](const QJsonObject& tree) {
        ids << tree.value(QStringLiteral("frame"))
                   .toObject()
                   .value(QStringLiteral("id"))
                   .toString();
        for (const QJsonValue& child : tree.value(QStringLiteral("childFrames")).toArray())
            walk(child.toObject());
    };
    walk(client_->call(QStringLiteral("Page.getFrameTree"))
             .value(QStringLiteral("frameTree"))
             .toObject());
    for (auto it = childSessions_.cbegin(); it != childSessions_.cend(); ++it) {
        if (!ids.contains(it.key()))
            ids << it.key();
    }
    return ids;
}

QString CdpPage::selectionText() {
    const QString script = QStringLiteral("String(window.getSelection())");
    for (const QString& frameId : allFrameIds()) {
        QString text;
        try {
            text = evaluateValue({frameId}, script).toString();
        } catch (const RuntimeError&) {
            if (frameId == mainFrameId_)
                throw;
            continue; // a frame that went away meanwhile
        }
        if (!text.isEmpty())
            return toCrLf(text);
    }
    return QString();
}

QByteArray CdpPage::savedPage(bool archive) {
    if (archive)
        return client_
            ->call(QStringLiteral("Page.captureSnapshot"),
                   {{QStringLiteral("format"), QStringLiteral("mhtml")}})
            .value(QStringLiteral("data"))
            .toString()
            .toUtf8();
    return evaluateValue(topDocument(),
                         QStringLiteral("(() => { const d = document.doctype; const head = d ? "
                                        "'<!DOCTYPE ' + d.name + '>\\n' : ''; return head + "
                                        "(document.documentElement ? "
                                        "document.documentElement.outerHTML : ''); })()"))
        .toString()
        .toUtf8();
}

} // namespace ed::web
