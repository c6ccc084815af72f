// The endpoint: only loopback addresses, and the HTTP side of a DevTools browser.

#include "web/Discovery.h"
#include "ChromiumProcess.h"
#include "TestHttpServer.h"
#include "web/Endpoint.h"

#include "app/Trap.h"
#include "support/Fakes.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;

namespace {

TEST(Endpoint, AcceptsOnlyLoopbackHostAndPort) {
    struct Case {
        const char* text;
        bool ok;
        const char* host;
        int port;
        const char* problem; // a word the error must contain
    } cases[] = {
        {"127.0.0.1:9222", true, "127.0.0.1", 9222, ""},
        {" localhost:9333 ", true, "localhost", 9333, ""},
        {"[::1]:9222", true, "::1", 9222, ""},
        {"10.0.0.5:9222", false, "", 0, "refused"},
        {"[::ffff:10.0.0.1]:9222", false, "", 0, "refused"},
        {"127.0.0.1", false, "", 0, "host:port"},
        {"127.0.0.1:0", false, "", 0, "port"},
        {"::1:9222", false, "", 0, "host:port"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        QString error;
        const auto e = parseEndpoint(QString::fromUtf8(c.text), &error);
        EXPECT_EQ(e.has_value(), c.ok);
        if (e) {
            EXPECT_EQ(e->host, QString::fromUtf8(c.host));
            EXPECT_EQ(e->port, c.port);
        } else {
            EXPECT_TRUE(error.contains(c.problem) && error.contains(QString(c.text).trimmed()))
                << error;
        }
    }
    EXPECT_EQ(parseEndpoint("[::1]:9222")->httpUrl("/json/list").toString(),
              "http://[::1]:9222/json/list");
}

TEST(Discovery, TakesPageTargetsInTheEndpointsOrder) {
    test::TestHttpServer server;
    server.serve("/json/list", R"([
        {"id":"W1","type":"service_worker","url":"x","webSocketDebuggerUrl":"ws://127.0.0.1:1/devtools/page/W1"},
        {"id":"U1","type":"browser_ui","url":"chrome://x","webSocketDebuggerUrl":"ws://127.0.0.1:1/devtools/page/U1"},
        {"id":"P1","type":"page","title":"One","url":"http://a/","webSocketDebuggerUrl":"ws://127.0.0.1:1/devtools/page/P1"},
        {"id":"P2","type":"page","title":"Two","url":"http://b/","webSocketDebuggerUrl":"ws://localhost:1/devtools/page/P2"}
    ])",
                 "application/json");
    const auto pages = listPages({QStringLiteral("127.0.0.1"), server.port()}, 2000);
    ASSERT_TRUE(pages.has_value());
    ASSERT_EQ(pages->size(), 2u);
    EXPECT_EQ(pages->at(0).targetId, "P1");
    EXPECT_EQ(pages->at(0).title, "One");
    EXPECT_EQ(pages->at(1).webSocketUrl, "ws://localhost:1/devtools/page/P2");
}

TEST(Discovery, FaultyEndpointsAreErrorsNamingTheProblem) {
    test::TestHttpServer server;
    struct Case {
        const char* listing;
        const char* problem;
    } cases[] = {
        {"<html>not json</html>", "not JSON"},
        {R"({"id":"P1"})", "not a list"},
        {R"([{"id":"P1","type":"page","webSocketDebuggerUrl":"ws://10.1.1.1:9222/devtools/page/P1"}])",
         "not on this computer"},
    };
    const Endpoint endpoint{QStringLiteral("127.0.0.1"), server.port()};
    for (const Case& c : cases) {
        server.serve("/json/list", QByteArray(c.listing), "application/json");
        try {
            listPages(endpoint, 2000);
            ADD_FAILURE() << "accepted " << c.listing;
        } catch (const RuntimeError& e) {
            EXPECT_TRUE(QString(e.what()).contains(c.problem)) << e.what();
        }
    }

    test::TestHttpServer::Answer hang;
    hang.never = true;
    server.serve("/json/list", hang);
    QElapsedTimer clock;
    clock.start();
    EXPECT_THROW(listPages(endpoint, 300), RuntimeError);
    EXPECT_LT(clock.elapsed(), 3000);
}

} // namespace
