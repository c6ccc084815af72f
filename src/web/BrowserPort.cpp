#include "web/BrowserPort.h"

#include "web/CdpConnector.h"

#include <QFileInfo>

namespace ed {

QString noBrowserMessage(const BrowserPort& browser) {
    const QString problem = browser.endpointProblem();
    if (!problem.isEmpty())
        return problem;
    return QStringLiteral("no browser found at %1; start one with %2")
        .arg(browser.endpointDescription(), browser.startCommand());
}

namespace web {

DevToolsBrowserPort::DevToolsBrowserPort(AppSettings settings, Logger& log, Clipboard& clipboard,
                                         Launcher& launcher)
    : settings_(std::move(settings)), log_(log), clipboard_(clipboard), launcher_(launcher) {}

QString DevToolsBrowserPort::endpointSetting() const {
    return settings_.get(browserSettingsSection(), browserEndpointKey(), defaultEndpointText());
}

QString DevToolsBrowserPort::browserPath() const {
    return settings_.get(browserSettingsSection(), browserPathKey(), QString());
}

std::unique_ptr<cIEObject> DevToolsBrowserPort::createSession() {
    BrowserServices services(log_, clipboard_, launcher_,
                             std::make_shared<CdpConnector>(endpointSetting(), options_));
    services.browserPath = browserPath();
    services.browserCandidates = browserCandidates;
    services.profileDir = profileDir;
    services.navigateWaitMs = navigateWaitMs;
    services.launchWaitMs = launchWaitMs;
    return std::make_unique<cIEObject>(std::move(services));
}

QString DevToolsBrowserPort::endpointDescription() const {
    return CdpConnector(endpointSetting()).endpointText();
}

QString DevToolsBrowserPort::startCommand() const {
    QString program = browserPath();
    if (program.isEmpty()) {
        for (const QString& candidate : browserCandidates) {
            if (QFileInfo(candidate).isFile()) {
                program = candidate;
                break;
            }
        }
    }
    program = program.isEmpty() ? QStringLiteral("chromium") : QFileInfo(program).fileName();
    const CdpConnector connector(endpointSetting());
    const QString port = connector.problem().isEmpty() ? QString::number(connector.endpoint().port)
                                                       : QStringLiteral("9222");
    return QStringLiteral("%1 --remote-debugging-port=%2").arg(program, port);
}

QString DevToolsBrowserPort::endpointProblem() const {
    return CdpConnector(endpointSetting()).problem();
}

} // namespace web
} // namespace ed
