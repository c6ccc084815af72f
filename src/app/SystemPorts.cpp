#include "app/SystemPorts.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QUrl>

namespace ed {

bool ProcessLauncher::startDetached(const QString& program, const QStringList& arguments) {
    if (program.isEmpty())
        return false;
    return QProcess::startDetached(program, arguments);
}

namespace {
QUrl toUrl(const QString& target) {
    const QUrl url(target, QUrl::StrictMode);
    if (url.isValid() && url.scheme().size() > 1)
        return url;
    return QUrl::fromLocalFile(QFileInfo(target).absoluteFilePath());
}
} // namespace

bool ProcessLauncher::open(const QString& target) {
    const QUrl url = toUrl(target);
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return QDesktopServices::openUrl(url);
    return QProcess::startDetached(QStringLiteral("xdg-open"), {url.toString()});
}

bool ProcessLauncher::explore(const QString& folder) { return open(folder); }

} // namespace ed
