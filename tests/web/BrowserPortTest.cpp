// The browser port made from the settings: endpoint and program, and what the user is told.

#include "web/BrowserPort.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;

namespace {

struct PortFixture {
    test::MemorySettings settings;
    test::RecordingLogger log;
    MemoryClipboard clipboard;
    test::FakeLauncher launcher;
    web::DevToolsBrowserPort port{AppSettings(settings, "App"), log, clipboard, launcher};
    void set(const QString& key, const QString& value) {
        settings.write("App", web::browserSettingsSection(), key, value);
    }
};

TEST(BrowserPort, TellsWhereItLooksAndHowToStartABrowser) {
    PortFixture f;
    f.port.browserCandidates = {};
    EXPECT_EQ(f.port.endpointDescription(), "127.0.0.1:9222");
    EXPECT_EQ(f.port.endpointProblem(), "");
    EXPECT_EQ(noBrowserMessage(f.port),
              "no browser found at 127.0.0.1:9222; start one with chromium "
              "--remote-debugging-port=9222");
    f.set(web::browserEndpointKey(), "localhost:9400");
    f.set(web::browserPathKey(), "/opt/google/chrome/google-chrome");
    EXPECT_EQ(noBrowserMessage(f.port),
              "no browser found at localhost:9400; start one with google-chrome "
              "--remote-debugging-port=9400");
    EXPECT_EQ(f.settings.writes, 2) << "reading the settings writes nothing";
}

TEST(BrowserPort, ANonLoopbackEndpointIsRefusedWithAClearMessage) {
    PortFixture f;
    f.set(web::browserEndpointKey(), "192.168.1.20:9222");
    EXPECT_TRUE(f.port.endpointProblem().contains("192.168.1.20:9222"));
    EXPECT_TRUE(f.port.endpointProblem().contains("refused"));
    EXPECT_EQ(noBrowserMessage(f.port), f.port.endpointProblem());

    const auto ie = f.port.createSession();
    EXPECT_TRUE(ie->GetActiveBrowser(true).isEmpty());
    EXPECT_FALSE(ie->InitializeObject());
    ASSERT_EQ(f.log.errors.size(), 2u); // the look before launching, then the attach's own
    EXPECT_EQ(f.log.errors[0].module, "cIEObject");
    EXPECT_EQ(f.log.errors[0].location, "Function GetActiveBrowser");
    EXPECT_TRUE(f.log.errors[0].detail.contains("refused"));
    EXPECT_TRUE(f.launcher.started.empty());
}

} // namespace
