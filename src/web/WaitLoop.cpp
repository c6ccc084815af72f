#include "web/WaitLoop.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace ed::web {

bool waitUntil(const std::function<bool()>& done, int capMs, int pollMs) {
    if (done())
        return true;
    const QDeadlineTimer deadline(capMs);
    // Wakes the loop at the cap even when nothing else happens.
    QTimer wake;
    wake.setSingleShot(true);
    wake.setTimerType(Qt::PreciseTimer);
    wake.start(capMs);
    QTimer poll;
    if (pollMs > 0)
        poll.start(pollMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace ed::web
