// Email, Phone #s, Fax #s and Any Tag Content against a real headless Chromium, in this process
// and through the batch runner: a page with addresses in its text, in mailto: links and in a frame
// of another site (with a frame of its own), numbers written nationally and internationally, a page
// of 10,000 addresses, and a page with nothing to find. One browser for the whole suite.

#include "ChromiumProcess.h"
#include "TestHttpServer.h"
#include "support/Fakes.h"

#include "web/BrowserPort.h"
#include "web/CdpConnector.h"
#include "web/cIEObject.h"

#include <deque>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::web;

namespace {

class ChromiumHarvest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        browser_ = std::make_unique<test::ChromiumProcess>();
        server_ = std::make_unique<test::TestHttpServer>();
        test::TestHttpServer& s = *server_;
        s.serve("/contacts.html",
                ("<html><body><h1>Contacts</h1>"
                 "<p>Write to Sales@Example.com or support@example.org.</p>"
                 "<a href=\"mailto:first@example.com,second%40example.net?subject=Hi%20there\">"
                 "mail us</a> <a href=\"mailto:%46IRST@example.com\">again</a> "
                 "<a href=\"http://example.com/\">site</a>"
                 "<p>Call (212) 555-0142 or +44 20 7946 0958. Fax: 212-555-0199</p>"
                 "<p style=\"display:none\">hidden@example.com 415-555-0100</p>"
                 "<iframe src=\"" +
                 s.otherSiteUrl("/frame.html") + "\"></iframe></body></html>")
                    .toUtf8());
        s.serve("/frame.html", ("<html><body><p>Frame: frame@example.org, +33 1 42 68 53 00</p>"
                                "<iframe src=\"" +
                                s.url("/nested.html") + "\"></iframe></body></html>")
                                   .toUtf8());
        s.serve("/nested.html", "<html><body>Nested: deep@example.net 1-415-555-2671"
                                "</body></html>");
        s.serve("/nothing.html", "<html><body><p>Nothing to see here, 42.</p></body></html>");
        QByteArray many = "<html><body><p>";
        for (int i = 0; i < 10000; ++i)
            many += "user" + QByteArray::number(i) + "@example.com ";
        s.serve("/many.html", many + "</p></body></html>");
    }
    static void TearDownTestSuite() {
        browser_.reset();
        server_.reset();
    }

    void SetUp() override {
        if (!browser_->problem().isEmpty())
            GTEST_SKIP() << browser_->problem().toStdString();
        ASSERT_FALSE(qEnvironmentVariable("EDITOR_BIN").isEmpty());
    }

    // Shows `path` in the browser's window and waits until it has loaded.
    void show(const QString& path) {
        test::RecordingLogger log;
        MemoryClipboard clipboard;
        test::FakeLauncher launcher;
        BrowserServices services(log, clipboard, launcher,
                                 std::make_shared<CdpConnector>(browser_->endpointText()));
        services.navigateWaitMs = 15000;
        services.browserCandidates = {};
        cIEObject ie(services);
        ASSERT_TRUE(ie.InitializeObject());
        // The top document completes once its frames have loaded.
        EXPECT_TRUE(test::loadPage(ie, server_->url(path)));
        EXPECT_TRUE(log.errors.empty());
    }

    // Runs `item` in this process on an empty document, as the window would.
    QString harvestHere(const char* item, std::deque<QString> answers = {}) {
        test::Harness h;
        h.setSetting("frmEdit", "Browser Endpoint", browser_->endpointText());
        test::FakeLauncher launcher;
        DevToolsBrowserPort port(AppSettings(h.settings, h.startUp.RegKeyAppName), h.log,
                                 h.clipboard, launcher);
        h.ctx.browser = &port;
        h.dialogs.answers = std::move(answers);
        h.run(item);
        for (const auto& e : h.log.errors)
            ADD_FAILURE() << e.location.toStdString() << ": " << e.detail.toStdString();
        return h.edit.text();
    }

    test::EditorRun harvest(const QStringList& args) {
        return test::runEditorBatch(args, "",
                                    {{"frmEdit/Browser Endpoint", browser_->endpointText()}});
    }

    inline static std::unique_ptr<test::ChromiumProcess> browser_;
    inline static std::unique_ptr<test::TestHttpServer> server_;
};

TEST_F(ChromiumHarvest, ThePageAndEveryFrameAreHarvested) {
    show("/contacts.html");
    const test::EditorRun email = harvest({"--apply", "GetBrowserEmail"});
    EXPECT_EQ(email.exitCode, 0) << email.report.join('\n').toStdString();
    EXPECT_EQ(email.out, "first@example.com\r\nsecond@example.net\r\nSales@Example.com\r\n"
                         "support@example.org\r\nframe@example.org\r\ndeep@example.net\r\n\r\n");

    struct Case {
        const char* item;
        std::deque<QString> answers;
        QString inserted;
    };
    const Case cases[] = {
        {"mnuGetPhoneNumbers",
         {},
         "(212) 555-0142\tNew York, NY\r\n+44 20 7946 0958\tLondon\r\n"
         "+33 1 42 68 53 00\tParis\r\n(415) 555-2671\tSan Francisco, CA\r\n"},
        {"mnuGetFaxNumbers", {}, "(212) 555-0199\tNew York, NY\r\n"},
        {"mnuAnyTagContent", {"<H1>", "</h1>"}, ">Contacts\r\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item);
        // On an empty document InsertText puts a line break after the text.
        EXPECT_EQ(harvestHere(c.item, c.answers), c.inserted + "\r\n");
    }
}

TEST_F(ChromiumHarvest, TenThousandAddressesAndAPageWithoutAny) {
    show("/many.html");
    const test::EditorRun many = harvest({"--apply", "GetBrowserEmail"});
    EXPECT_EQ(many.exitCode, 0) << many.report.join('\n').toStdString();
    const QList<QByteArray> lines = many.out.split('\n');
    ASSERT_EQ(lines.size(), 10002); // each address, the saved line break, and after it nothing
    EXPECT_EQ(lines[0], "user0@example.com\r");
    EXPECT_EQ(lines[9999], "user9999@example.com\r");

    show("/nothing.html");
    for (const char* item : {"mnuGetBrowserEmail", "mnuGetPhoneNumbers", "mnuGetFaxNumbers"})
        EXPECT_EQ(harvestHere(item), "\r\n") << item;
}

} // namespace
