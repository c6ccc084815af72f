#include "ChromiumProcess.h"

#include "web/Discovery.h"
#include "web/WaitLoop.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QTcpServer>

#include <csignal>
#include <unistd.h>

namespace ed::test {

namespace {
void startHeadless(QProcess& process, const QString& program, const QStringList& arguments) {
    process.setProgram(program);
    process.setArguments(QStringList{"--headless=new", "--no-sandbox", "--disable-gpu"} +
                         arguments);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([] { ::setsid(); });
    process.start();
    if (process.waitForStarted(10000))
        process.setProperty("group", process.processId());
}

// The whole group, even when the browser itself has gone and left helpers behind.
void killGroup(QProcess& process) {
    if (const qint64 group = process.property("group").toLongLong(); group > 0)
        ::kill(pid_t(-group), SIGKILL);
    process.setProperty("group", 0);
    process.waitForFinished(5000);
}
} // namespace

bool loadPage(web::cIEObject& session, const QString& url) {
    const QString main = session.browser().targetId;
    bool loaded = false;
    const auto c =
        QObject::connect(&session, &web::cIEObject::DocumentComplete,
                         [&](const web::DocumentRef& d, QString&) { loaded |= d.frameId == main; });
    session.NavigateToUrl(url, false);
    web::waitUntil([&] { return loaded; }, 15000, 20);
    QObject::disconnect(c);
    return loaded;
}

QString testChromiumPath() {
    const QString set = qEnvironmentVariable("EDITOR_TEST_CHROMIUM");
    return set.isEmpty() ? QStringLiteral("/usr/bin/chromium") : set;
}

quint16 freeLoopbackPort() {
    QTcpServer probe;
    return probe.listen(QHostAddress::LocalHost, 0) ? probe.serverPort() : 0;
}

ChromiumProcess::ChromiumProcess() {
    const QString program = testChromiumPath();
    if (!QFileInfo(program).isExecutable()) {
        problem_ = QStringLiteral("no Chromium at %1 (scripts/setup installs it)").arg(program);
        return;
    }
    port_ = freeLoopbackPort();
    startHeadless(process_, program,
                  {QStringLiteral("--remote-debugging-port=%1").arg(port_),
                   "--user-data-dir=" + profile_.path(), "--no-first-run",
                   "--disable-background-networking", "--disable-component-update",
                   "--disable-sync", "about:blank"});
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

void ChromiumProcess::kill() {
    killGroup(process_);
}

HeadlessLauncher::~HeadlessLauncher() {
    for (auto& process : processes_)
        killGroup(*process);
}

bool HeadlessLauncher::startProcess(const QString& program, const QStringList& arguments) {
    started.push_back(arguments);
    processes_.push_back(std::make_unique<QProcess>());
    startHeadless(*processes_.back(), program, arguments);
    return processes_.back()->state() != QProcess::NotRunning;
}

} // namespace ed::test
