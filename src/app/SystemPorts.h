#pragma once
// Ports backed by the real system, shared by the window and the batch runner.

#include "app/Ports.h"

class QUrl;

namespace ed {

class SystemClock : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

// Starts processes with an argument list (never through a shell) and hands files, folders and
// addresses to the desktop's default handlers, always as addresses.
class ProcessLauncher : public Launcher {
public:
    bool open(const QString& target) override;
    bool explore(const QString& folder) override;

    // How addresses reach the desktop's handlers in this process. The window program installs
    // its desktop session's own (which needs the graphical libraries); until then, and in the
    // batch runner, xdg-open is started with the address.
    using DesktopOpener = bool (*)(const QUrl& address);
    static void setDesktopOpener(DesktopOpener opener);

protected:
    bool startProcess(const QString& program, const QStringList& arguments) override;
};

} // namespace ed
