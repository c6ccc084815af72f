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

// The message names the endpoint and program in the settings; another computer's browser is
// refused, never attached to nor started.
TEST(BrowserPort, TellsWhereItLooksAndRefusesOtherComputers) {
    PortFixture f;
    f.port.browserCandidates = {};
    f.set(web::browserEndpointKey(), "localhost:9400");
    f.set(web::browserPathKey(), "/opt/google/chrome/google-chrome");
    EXPECT_EQ(noBrowserMessage(f.port), "no browser found at localhost:9400; start one with "
                                        "google-chrome --remote-debugging-port=9400");
    EXPECT_EQ(f.settings.writes, 2) << "reading the settings writes nothing";

    f.set(web::browserEndpointKey(), "192.168.1.20:9222");
    const QString problem = f.port.endpointProblem();
    EXPECT_TRUE(problem.contains("192.168.1.20:9222") && problem.contains("refused")) << problem;
    EXPECT_EQ(noBrowserMessage(f.port), problem);
    const auto ie = f.port.createSession();
    EXPECT_TRUE(ie->GetActiveBrowser(true).isEmpty());
    EXPECT_FALSE(ie->InitializeObject());
    ASSERT_FALSE(f.log.errors.empty());
    EXPECT_TRUE(f.log.errors[0].detail.contains("refused"));
    EXPECT_TRUE(f.launcher.started.empty());
}

} // namespace
