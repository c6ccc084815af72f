#include "editor/BusyWork.h"

#include "app/Ports.h"

#include <QEventLoop>
#include <QProgressDialog>
#include <QTimer>
#include <QWidget>

namespace ed {

BusyWork::~BusyWork() {
    for (const auto& t : threads_)
        t->wait();
}

bool BusyWork::run(const QString& what, std::function<void()> work,
                   const std::shared_ptr<BusyToken>& token, bool cancellable) {
    // Workers of cancelled work that have finished since are let go.
    std::erase_if(threads_, [](const std::unique_ptr<QThread>& t) { return t->isFinished(); });
    threads_.emplace_back(QThread::create(std::move(work)));
    QThread* thread = threads_.back().get();

    QEventLoop loop;
    QObject::connect(thread, &QThread::finished, &loop, &QEventLoop::quit);
    auto cancel = [token, &loop, cancellable] {
        if (!cancellable)
            return;
        token->cancelled = true;
        // The window may change its data as soon as this returns: wait (briefly: copying is all
        // the work does meanwhile) until the work has let go of it.
        while (token->readsWindow)
            QThread::msleep(1);
        loop.quit();
    };
    std::unique_ptr<QProgressDialog> progress;
    bool shown = false;
    QTimer busy;
    busy.setInterval(delayMs);
    QObject::connect(&busy, &QTimer::timeout, [&] {
        if (progress) {
            if (const int p = token->percent; p >= 0) {
                progress->setMaximum(100);
                progress->setValue(qMin(p, 99));
            }
            return;
        }
        if (token->openDialogs > 0)
            return; // the user is answering a prompt: not busy yet
        busy.stop();
        shown = true;
        if (showBusy) {
            showBusy(cancel);
            if (!token->cancelled)
                loop.quit();
            return;
        }
        progress = std::make_unique<QProgressDialog>(what, QStringLiteral("Cancel"), 0, 0, parent_);
        progress->setWindowTitle(defaultTitle());
        progress->setWindowModality(Qt::WindowModal);
        progress->setMinimumDuration(0);
        if (cancellable)
            QObject::connect(progress.get(), &QProgressDialog::canceled, cancel);
        else
            progress->setCancelButton(nullptr);
        progress->show();
        busy.setInterval(100);
        busy.start(); // from now on it follows the work's progress
        loop.quit();  // from now on the modal indicator guards the window
    });
    thread->start();
    busy.start();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (shown && !token->cancelled && !thread->isFinished())
        loop.exec();
    busy.stop();
    progress.reset();
    if (token->cancelled)
        return false;
    thread->wait();
    threads_.pop_back();
    return true;
}

} // namespace ed
