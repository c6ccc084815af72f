#pragma once
// Headless Chromium for the browser tests: started on a free loopback port with a fresh profile,
// in a process group of its own that is killed, helpers and all, when the object goes away.

#include "app/SystemPorts.h"
#include "web/Endpoint.h"
#include "web/cIEObject.h"

#include <QProcess>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace ed::test {

// The browser program of the tests: $EDITOR_TEST_CHROMIUM, else /usr/bin/chromium.
QString testChromiumPath();
// A loopback port nothing listens on right now.
quint16 freeLoopbackPort();

// Sends `session` to `url` and waits, the event loop running, until its top document has
// loaded, whatever its frames do first. False when it has not within 15 s.
bool loadPage(web::cIEObject& session, const QString& url);

class ChromiumProcess {
public:
    ChromiumProcess();
    ~ChromiumProcess() { kill(); }
    ChromiumProcess(const ChromiumProcess&) = delete;
    ChromiumProcess& operator=(const ChromiumProcess&) = delete;

    // Empty when the browser answers at its endpoint; otherwise why the tests cannot run.
    const QString& problem() const { return problem_; }
    web::Endpoint endpoint() const { return {QStringLiteral("127.0.0.1"), port_}; }
    QString endpointText() const { return endpoint().text(); }
    void kill();

private:
    QTemporaryDir profile_;
    QProcess process_;
    quint16 port_ = 0;
    QString problem_;
};

// Starts the browsers the program asks for headless, each in a process group of its own that is
// killed at the end.
class HeadlessLauncher : public ProcessLauncher {
public:
    std::vector<QStringList> started;
    ~HeadlessLauncher() override;

protected:
    bool startProcess(const QString& program, const QStringList& arguments) override;

private:
    std::vector<std::unique_ptr<QProcess>> processes_;
};

} // namespace ed::test
