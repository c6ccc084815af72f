#include "app/SystemPorts.h"

#include <QProcess>
#include <QUrl>

#include <atomic>

namespace ed {

namespace {
std::atomic<ProcessLauncher::DesktopOpener> desktopOpener{nullptr};
} // namespace

void ProcessLauncher::setDesktopOpener(DesktopOpener opener) {
    desktopOpener.store(opener);
}

bool ProcessLauncher::startProcess(const QString& program, const QStringList& arguments) {
    if (program.isEmpty())
        return false;
    return QProcess::startDetached(program, arguments);
}

bool ProcessLauncher::open(const QString& target) {
    // The handler only ever sees an address ("file:///...", "http://..."), never a bare text.
    const QUrl url = desktopAddress(target);
    if (!url.isValid())
        return false;
    if (const DesktopOpener opener = desktopOpener.load())
        return opener(url);
    return QProcess::startDetached(QStringLiteral("xdg-open"), {url.toString()});
}

bool ProcessLauncher::explore(const QString& folder) {
    return open(folder);
}

} // namespace ed
