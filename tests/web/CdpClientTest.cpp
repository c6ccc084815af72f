// The DevTools client against a scripted connection: replies in any order, bad messages,
// a connection that ends or never answers.

#include "web/CdpClient.h"
#include "app/Trap.h"
#include "web/WaitLoop.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

using namespace ed;
using namespace ed::web;

namespace {

// Answers by a script: for every message sent, `onSend` may queue texts to deliver later.
class ScriptedTransport : public CdpTransport {
public:
    std::function<void(const QJsonObject&)> onSend;
    bool refuse = false;
    bool isOpen_ = false;

    void open(const QUrl&) override {
        QTimer::singleShot(0, this, [this] {
            if (refuse) {
                emit closed(QStringLiteral("Connection refused"));
                return;
            }
            isOpen_ = true;
            emit opened();
        });
    }
    void sendText(const QString& text) override {
        if (onSend)
            onSend(QJsonDocument::fromJson(text.toUtf8()).object());
    }
    void close() override {
        if (isOpen_) {
            isOpen_ = false;
            emit closed(QStringLiteral("closed by the program"));
        }
    }
    bool isOpen() const override { return isOpen_; }

    void deliver(const QString& text, int delayMs = 0) {
        QTimer::singleShot(delayMs, this, [this, text] { emit textReceived(text); });
    }
    void dropConnection(int delayMs) {
        QTimer::singleShot(delayMs, this, [this] {
            isOpen_ = false;
            emit closed(QStringLiteral("remote host closed the connection"));
        });
    }
};

QString reply(int id, const QString& resultJson, const QString& session = {}) {
    QString s =
        session.isEmpty() ? QString() : QStringLiteral(",\"sessionId\":\"%1\"").arg(session);
    return QStringLiteral("{\"id\":%1,\"result\":%2%3}").arg(id).arg(resultJson, s);
}

struct Fixture {
    ScriptedTransport* transport = nullptr;
    std::unique_ptr<CdpClient> client;
    explicit Fixture(int timeoutMs = 2000) {
        auto t = std::make_unique<ScriptedTransport>();
        transport = t.get();
        client = std::make_unique<CdpClient>(std::move(t), timeoutMs);
        client->connectTo(QUrl("ws://127.0.0.1:1/devtools/page/X"));
    }
};

int idOf(const QJsonObject& m) {
    return m.value("id").toInt();
}

TEST(CdpClient, RepliesAreMatchedByIdWhateverTheirOrder) {
    Fixture f;
    // The first request is answered only after the second: the nested call returns first.
    int firstId = 0;
    f.transport->onSend = [&](const QJsonObject& m) {
        if (m.value("method") == "First") {
            firstId = idOf(m);
        } else if (m.value("method") == "Second") {
            f.transport->deliver(reply(idOf(m), "{\"n\":2}"), 5);
            f.transport->deliver(reply(firstId, "{\"n\":1}"), 10);
        }
    };
    QJsonObject second;
    QTimer::singleShot(1, [&] { second = f.client->call("Second"); });
    const QJsonObject first = f.client->call("First");
    EXPECT_EQ(first.value("n").toInt(), 1);
    EXPECT_EQ(second.value("n").toInt(), 2);
}

TEST(CdpClient, EventsAndForeignMessagesAreNotReplies) {
    Fixture f;
    std::vector<std::pair<QString, QString>> events;
    QObject::connect(f.client.get(), &CdpClient::eventReceived,
                     [&](const QString& method, const QJsonObject&, const QString& session) {
                         events.emplace_back(method, session);
                     });
    f.transport->onSend = [&](const QJsonObject& m) {
        const int id = idOf(m);
        f.transport->deliver("this is not json");
        f.transport->deliver("[1,2,3]");
        f.transport->deliver("{\"params\":{}}");
        f.transport->deliver(
            "{\"method\":\"Page.frameStoppedLoading\",\"params\":{\"frameId\":\"F\"}}");
        f.transport->deliver(
            "{\"method\":\"Page.loadEventFired\",\"params\":{},\"sessionId\":\"S1\"}");
        // The same id from an attached session is someone else's message.
        f.transport->deliver(reply(id, "{\"who\":\"child\"}", "S1"));
        f.transport->deliver(reply(id + 100, "{\"who\":\"nobody\"}"));
        f.transport->deliver(reply(id, "{\"who\":\"me\"}"), 5);
    };
    const QJsonObject r = f.client->call("Runtime.evaluate");
    EXPECT_EQ(r.value("who").toString(), "me");
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0], std::make_pair(QString("Page.frameStoppedLoading"), QString()));
    EXPECT_EQ(events[1], std::make_pair(QString("Page.loadEventFired"), QString("S1")));
    EXPECT_EQ(f.client->protocolFaults(), 4);
}

TEST(CdpClient, FailuresEndTheCallWithAnErrorNamingIt) {
    struct Case {
        const char* name;
        std::function<void(ScriptedTransport&, int id)> script;
        const char* message;
        int maxMs;
    } cases[] = {
        {"error reply",
         [](ScriptedTransport& t, int id) {
             t.deliver(
                 QStringLiteral("{\"id\":%1,\"error\":{\"code\":-32000,\"message\":\"No frame\"}}")
                     .arg(id));
         },
         "refused Page.navigate: No frame (-32000)", 1000},
        {"connection drops mid-call", [](ScriptedTransport& t, int) { t.dropConnection(20); },
         "closed the connection during Page.navigate", 1000},
        {"reply never comes", [](ScriptedTransport&, int) {}, "did not answer Page.navigate", 1500},
    };
    for (const Case& c : cases) {
        Fixture f(300);
        f.transport->onSend = [&](const QJsonObject& m) { c.script(*f.transport, idOf(m)); };
        QElapsedTimer clock;
        clock.start();
        try {
            f.client->call("Page.navigate");
            ADD_FAILURE() << c.name << ": no error";
        } catch (const RuntimeError& e) {
            EXPECT_TRUE(QString::fromUtf8(e.what()).contains(QString::fromUtf8(c.message)))
                << c.name << ": " << e.what();
        }
        EXPECT_LT(clock.elapsed(), c.maxMs) << c.name;
    }
}

TEST(CdpClient, RefusedConnectionIsAnError) {
    auto t = std::make_unique<ScriptedTransport>();
    t->refuse = true;
    CdpClient client(std::move(t), 1000);
    try {
        client.connectTo(QUrl("ws://127.0.0.1:1/devtools/page/X"));
        ADD_FAILURE() << "connected";
    } catch (const RuntimeError& e) {
        EXPECT_TRUE(QString::fromUtf8(e.what()).contains("Connection refused")) << e.what();
    }
}

} // namespace
