#pragma once
// Work that may take a while runs on a worker thread so that the window stays live. Until half a
// second has passed, keyboard and mouse wait (what the user types meanwhile arrives after it);
// then a modal busy indicator with Cancel guards the window. A cancelled piece of work finishes
// on its own in the background and whatever it produced is dropped.

#include <QString>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class QWidget;

namespace ed {

// Shared between the window's thread and the worker.
struct BusyToken {
    std::atomic<bool> cancelled{false};
    // Prompts the worker has open on the window's thread: no indicator while the user answers.
    std::atomic<int> openDialogs{0};
    // How far the work got, 0 to 100, when it knows; -1 when it does not.
    std::atomic<int> percent{-1};
    // True while the work still reads data the window owns (the view's bytes): Cancel returns
    // to the window only once the work has cleared it.
    std::atomic<bool> readsWindow{false};
};

class BusyWork {
public:
    explicit BusyWork(QWidget* parent) : parent_(parent) {}
    ~BusyWork(); // waits for cancelled workers still finishing
    BusyWork(const BusyWork&) = delete;
    BusyWork& operator=(const BusyWork&) = delete;

    // Runs `work` on a worker; `what` names it on the indicator. Returns false when the user
    // cancelled. `work` must own (or share) everything it touches: after a cancel it outlives
    // this call.
    bool run(const QString& what, std::function<void()> work,
             const std::shared_ptr<BusyToken>& token, bool cancellable = true);

    // Shows the busy indicator; tests replace it to press Cancel (which does nothing for work
    // that cannot be cancelled).
    std::function<void(std::function<void()> cancel)> showBusy;
    int delayMs = 500;

private:
    QWidget* parent_;
    std::vector<std::unique_ptr<QThread>> threads_;
};

} // namespace ed
