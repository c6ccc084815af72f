#include "ChromiumProcess.h"

#include "web/Discovery.h"
#include "web/WaitLoop.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QTcpServer>

#include <csignal>
#include <sys/types.h>
#include <unistd.h>

namespace ed::test {

QString testChromiumPath() {
    const QString set = qEnvironmentVariable("EDITOR_TEST_CHROMIUM");
    return set.isEmpty() ? QStringLiteral("/usr/bin/chromium") : set;
}

quint16 freeLoopbackPort() {
    QTcpServer probe;
    if (!probe.listen(QHostAddress::LocalHost, 0))
        return 0;
    return probe.serverPort();
}

QStringList headlessArguments() {
    return {QStringLiteral("--headless=new"), QStringLiteral("--no-sandbox"),
            QStringLiteral("--disable-gpu")};
}

ChromiumProcess::ChromiumProcess() {
    const QString program = testChromiumPath();
    if (!QFileInfo(program).isExecutable()) {
        problem_ = QStringLiteral("no Chromium at %1 (scripts/setup installs it)").arg(program);
        return;
    }
    port_ = freeLoopbackPort();
    QStringList arguments = headlessArguments();
    arguments << QStringLiteral("--remote-debugging-port=%1").arg(port_)
              << QStringLiteral("--user-data-dir=%1").arg(profile_.path())
              << QStringLiteral("--no-first-run")
              << QStringLiteral("--disable-background-networking")
              << QStringLiteral("--disable-component-update") << QStringLiteral("--disable-sync")
              << QStringLiteral("about:blank");
    process_.setProgram(program);
    process_.setArguments(arguments);
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.setStandardErrorFile(QProcess::nullDevice());
    // Its own process group, so that it goes away with every helper process it starts.
    process_.setChildProcessModifier([] { ::setsid(); });
    process_.start();
    if (!process_.waitForStarted(10000)) {
        problem_ = QStringLiteral("Chromium did not start: %1").arg(process_.errorString());
        return;
    }
    group_ = process_.processId();
    const QDeadlineTimer deadline(30000);
    while (!web::endpointAnswers(endpoint(), 2000)) {
        if (deadline.hasExpired() || process_.state() != QProcess::Running) {
            problem_ = QStringLiteral("Chromium did not answer at %1").arg(endpointText());
            kill();
            return;
        }
        web::waitUntil([] { return false; }, 100);
    }
}

ChromiumProcess::~ChromiumProcess() {
    kill();
}

void ChromiumProcess::kill() {
    if (group_ > 0) {
        ::kill(pid_t(-group_), SIGKILL);
        group_ = 0;
    }
    if (process_.state() != QProcess::NotRunning)
        process_.waitForFinished(5000);
}

void killProcessGroupOf(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return;
    // "pid (name) state ppid pgrp ...": the name may hold blanks, so count after its ")".
    const QByteArray text = stat.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    const qint64 group = fields.size() > 2 ? fields[2].toLongLong() : 0;
    if (group > 1 && group != ::getpgrp())
        ::kill(pid_t(-group), SIGKILL);
    else
        ::kill(pid_t(pid), SIGKILL);
    // Gone, or a zombie waiting for its parent.
    auto gone = [pid] {
        QFile f(QStringLiteral("/proc/%1/stat").arg(pid));
        if (!f.open(QIODevice::ReadOnly))
            return true;
        const QByteArray t = f.readAll();
        return t.mid(t.lastIndexOf(')') + 2, 1) == "Z";
    };
    web::waitUntil(gone, 5000, 20);
}

} // namespace ed::test
