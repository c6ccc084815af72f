#include "app/SystemPorts.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QUrl>

namespace ed {

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
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return QDesktopServices::openUrl(url);
    return QProcess::startDetached(QStringLiteral("xdg-open"), {url.toString()});
}

bool ProcessLauncher::explore(const QString& folder) {
    return open(folder);
}

} // namespace ed
