// The DevTools client against a scripted connection: replies in any order, messages that are not
// its replies, and calls that fail with an error reply or no reply at all.

#include "web/CdpClient.h"
#include "app/Trap.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <utility>

using namespace ed;
using namespace ed::web;

namespace {

// Opens at once; every message sent goes to `onSend`, which may queue texts to deliver.
class ScriptedTransport : public CdpTransport {
public:
    std::function<void(const QString& method, int id)> onSend;

    void open(const QUrl&) override {
        QTimer::singleShot(0, this, [this] {
            open_ = true;
            emit opened();
        });
    }
    void sendText(const QString& text) override {
        const QJsonObject m = QJsonDocument::fromJson(text.toUtf8()).object();
        if (onSend)
            onSend(m.value("method").toString(), m.value("id").toInt());
    }
    void close() override {
        if (std::exchange(open_, false))
            emit closed(QStringLiteral("closed by the program"));
    }
    bool isOpen() const override { return open_; }
    void deliver(const QString& text, int delayMs = 0) {
        QTimer::singleShot(delayMs, this, [this, text] { emit textReceived(text); });
    }

private:
    bool open_ = false;
};

QString reply(int id, const QString& resultJson, const QString& session = {}) {
    const QString s = session.isEmpty() ? "" : ",\"sessionId\":\"" + session + "\"";
    return QStringLiteral("{\"id\":%1,\"result\":%2%3}").arg(id).arg(resultJson, s);
}

struct Client {
    explicit Client(int timeoutMs = 2000) {
        auto owned = std::make_unique<ScriptedTransport>();
        t = owned.get();
        client = std::make_unique<CdpClient>(std::move(owned), timeoutMs);
        client->connectTo(QUrl("ws://127.0.0.1:1/devtools/page/X"));
    }
    ScriptedTransport* t = nullptr;
    std::unique_ptr<CdpClient> client;
};

TEST(CdpClient, RepliesAreMatchedByIdWhateverTheirOrder) {
    Client c;
    // The first request is answered only after the second: the nested call returns first.
    int firstId = 0;
    c.t->onSend = [&](const QString& method, int id) {
        if (method == "First") {
            firstId = id;
            return;
        }
        c.t->deliver(reply(id, "{\"n\":2}"), 5);
        c.t->deliver(reply(firstId, "{\"n\":1}"), 10);
    };
    QJsonObject second;
    QTimer::singleShot(1, [&] { second = c.client->call("Second"); });
    EXPECT_EQ(c.client->call("First").value("n").toInt(), 1);
    EXPECT_EQ(second.value("n").toInt(), 2);
}

TEST(CdpClient, EventsAndForeignMessagesAreNotReplies) {
    Client c;
    std::vector<std::pair<QString, QString>> events;
    QObject::connect(c.client.get(), &CdpClient::eventReceived,
                     [&](const QString& method, const QJsonObject&, const QString& session) {
                         events.emplace_back(method, session);
                     });
    c.t->onSend = [&](const QString&, int id) {
        for (const QString& text : {QStringLiteral("this is not json"), QStringLiteral("[1,2,3]"),
                                    QStringLiteral("{\"params\":{}}")})
            c.t->deliver(text);
        c.t->deliver("{\"method\":\"Page.frameStoppedLoading\",\"params\":{\"frameId\":\"F\"}}");
        c.t->deliver("{\"method\":\"Page.loadEventFired\",\"params\":{},\"sessionId\":\"S1\"}");
        // The same id from an attached session is someone else's message.
        c.t->deliver(reply(id, "{\"who\":\"child\"}", "S1"));
        c.t->deliver(reply(id + 100, "{\"who\":\"nobody\"}"));
        c.t->deliver(reply(id, "{\"who\":\"me\"}"), 5);
    };
    EXPECT_EQ(c.client->call("Runtime.evaluate").value("who").toString(), "me");
    EXPECT_EQ(events, (std::vector<std::pair<QString, QString>>{{"Page.frameStoppedLoading", ""},
                                                                {"Page.loadEventFired", "S1"}}));
    EXPECT_EQ(c.client->protocolFaults(), 4);
}

TEST(CdpClient, FailuresEndTheCallWithAnErrorNamingIt) {
    const struct {
        const char* errorReply; // "" : no reply at all
        const char* message;
    } cases[] = {
        {"{\"id\":%1,\"error\":{\"code\":-32000,\"message\":\"No frame\"}}",
         "refused Page.navigate: No frame (-32000)"},
        {"", "did not answer Page.navigate"},
    };
    for (const auto& c : cases) {
        Client client(300);
        client.t->onSend = [&](const QString&, int id) {
            if (*c.errorReply)
                client.t->deliver(QString::fromUtf8(c.errorReply).arg(id));
        };
        QElapsedTimer clock;
        clock.start();
        try {
            client.client->call("Page.navigate");
            ADD_FAILURE() << c.message << ": no error";
        } catch (const RuntimeError& e) {
            EXPECT_TRUE(QString::fromUtf8(e.what()).contains(c.message)) << e.what();
        }
        EXPECT_LT(clock.elapsed(), 1500) << c.message;
    }
}

} // namespace
