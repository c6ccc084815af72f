#pragma once
// The browser as the editor's commands see it: a maker of one fresh session object per command,
// and the words to tell the user where the program looks for a browser. The window supplies the
// DevTools one; tests supply their own.

#include "app/Ports.h"
#include "app/SettingsStore.h"
#include "web/CdpOptions.h"
#include "web/cIEObject.h"

#include <QString>

#include <memory>

namespace ed {

class BrowserPort {
public:
    virtual ~BrowserPort() = default;
    // A new session object, not attached yet (the command calls GetActiveBrowser and
    // InitializeObject itself).
    virtual std::unique_ptr<web::cIEObject> createSession() = 0;
    // Where the program looks for a browser: "127.0.0.1:9222".
    virtual QString endpointDescription() const = 0;
    // A command line that starts a browser the program can reach.
    virtual QString startCommand() const = 0;
    // Empty, or why the endpoint setting cannot be used (shown instead of looking).
    virtual QString endpointProblem() const = 0;
};

// The status-bar text when no browser answers: "no browser found at 127.0.0.1:9222; start one
// with chromium --remote-debugging-port=9222", or the endpoint problem when there is one.
QString noBrowserMessage(const BrowserPort& browser);

namespace web {

// Settings of the browser, section "frmEdit".
inline QString browserSettingsSection() {
    return QStringLiteral("frmEdit");
}
inline QString browserEndpointKey() {
    return QStringLiteral("Browser Endpoint");
}
inline QString browserPathKey() {
    return QStringLiteral("Browser Path");
}

// Sessions with a Chromium-family browser over the DevTools protocol, at the endpoint and with
// the browser program named in the settings (read again for every session).
class DevToolsBrowserPort : public BrowserPort {
public:
    DevToolsBrowserPort(AppSettings settings, Logger& log, Clipboard& clipboard,
                        Launcher& launcher);

    std::unique_ptr<cIEObject> createSession() override;
    QString endpointDescription() const override;
    QString startCommand() const override;
    QString endpointProblem() const override;

    // Overrides of the session defaults (tests shorten the waits).
    CdpOptions& options() { return options_; }
    int navigateWaitMs = 60000;
    int launchWaitMs = 30000;
    QStringList browserCandidates = defaultBrowserCandidates();
    QString profileDir = defaultProfileDir();

private:
    QString endpointSetting() const;
    QString browserPath() const;

    mutable AppSettings settings_;
    Logger& log_;
    Clipboard& clipboard_;
    Launcher& launcher_;
    CdpOptions options_;
};

} // namespace web
} // namespace ed
