#pragma once
// Ports backed by the real system, shared by the window and the batch runner.

#include "app/Ports.h"

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

protected:
    bool startProcess(const QString& program, const QStringList& arguments) override;
};

} // namespace ed
