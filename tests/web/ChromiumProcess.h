#pragma once
// A headless Chromium for the browser tests: started on a free loopback port with a fresh
// profile, and killed with all its child processes when the object goes away, whatever the
// test did.

#include "web/Endpoint.h"

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace ed::test {

// The browser program of the tests: $EDITOR_TEST_CHROMIUM, else /usr/bin/chromium.
QString testChromiumPath();
// A loopback port nothing listens on right now.
quint16 freeLoopbackPort();
// The switches every test browser gets besides the port and the profile.
QStringList headlessArguments();

class ChromiumProcess {
public:
    ChromiumProcess();
    ~ChromiumProcess();
    ChromiumProcess(const ChromiumProcess&) = delete;
    ChromiumProcess& operator=(const ChromiumProcess&) = delete;

    // Empty when the browser answers at its endpoint; otherwise why the tests cannot run.
    const QString& problem() const { return problem_; }
    web::Endpoint endpoint() const { return {QStringLiteral("127.0.0.1"), port_}; }
    QString endpointText() const { return endpoint().text(); }
    // Kills the browser and every process of its group at once.
    void kill();

private:
    QTemporaryDir profile_;
    QProcess process_;
    qint64 group_ = 0;
    quint16 port_ = 0;
    QString problem_;
};

// Kills the process group of `pid` (as read from /proc) and waits briefly for it to go.
void killProcessGroupOf(qint64 pid);

} // namespace ed::test
