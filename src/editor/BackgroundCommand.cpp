#include "editor/BackgroundCommand.h"

#include "app/BatchPorts.h"
#include "app/ErrorLogger.h"
#include "app/SettingsStore.h"
#include "app/SystemPorts.h"
#include "app/TextBuffer.h"
#include "app/Trap.h"
#include "editor/BusyWork.h"
#include "util/HugePages.h"
#include "util/Utility.h"

#include <QThread>
#include <QWidget>

#include <memory>
#include <new>

namespace ed {

namespace {

// What a command running on the worker uses: its own copy of everything it may touch.
struct Job : BusyToken {
    TextBuffer doc;
    QByteArray original;
    bool noCopy = false; // no memory for a copy of the document: the command did not run
    SystemClock clock;
    ProcessLauncher launcher;
    SettingsStore store;
    DeclaredMenuState menu;
    MemoryClipboard clipboard;
    FormState form;
    std::unique_ptr<Utility> util;
    std::unique_ptr<Dialogs> dialogs;
    std::unique_ptr<FormWindow> window;
    std::unique_ptr<CommandContext> ctx;
    explicit Job(Logger* log) : store(log) {}
};

// Prompts and boxes asked for by the worker, shown on the window's thread.
class ForwardedDialogs : public Dialogs {
public:
    ForwardedDialogs(QObject* ui, Dialogs* target, Job* job)
        : ui_(ui), target_(target), job_(job) {}
    QString inputBox(const QString& prompt, const QString& title,
                     const QString& defaultAnswer) override {
        QString answer;
        call([&] { answer = target_->inputBox(prompt, title, defaultAnswer); });
        return answer;
    }
    Answer messageBox(const QString& text, const QString& title, Buttons buttons,
                      Icon icon) override {
        Answer answer = buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
        if (buttons == Buttons::Ok)
            answer = Answer::Ok;
        call([&] { answer = target_->messageBox(text, title, buttons, icon); });
        return answer;
    }

private:
    template <class F> void call(F&& f) {
        QMetaObject::invokeMethod(
            ui_,
            [&] {
                if (job_->cancelled)
                    return; // a cancelled command asks nothing more
                ++job_->openDialogs;
                f();
                --job_->openDialogs;
            },
            Qt::BlockingQueuedConnection);
    }
    QObject* ui_;
    Dialogs* target_;
    Job* job_;
};

class SilentWindow : public FormWindow {
public:
    explicit SilentWindow(QString caption) : caption_(std::move(caption)) {}
    void setCaption(const QString& c) override { caption_ = c; }
    QString caption() const override { return caption_; }
    void showStatus(const QString&) override {}
    void close() override {}

private:
    QString caption_;
};

} // namespace

bool BackgroundCommands::runsOnTextAlone(const MenuItemDecl& item) {
    static const QStringList kNeedsTheWindow = {"mnuCut",
                                                "mnuCopy",
                                                "mnuPaste",
                                                "mnuSelectAll",
                                                "mnuLoadClipBoardText",
                                                "mnuSearch",
                                                "mnuFindNext",
                                                "mnuReplace",
                                                "mnuNew",
                                                "mnuGetBrowserText",
                                                "mnuGetBrowserHtml",
                                                "mnuGetBrowserLinks",
                                                "mnuGetBrowserLinksConditional",
                                                "mnuNavigateToSel",
                                                "mnuExplorer",
                                                "mnuLoadinwebbrowser",
                                                "mnuNaviagetTo",
                                                "mnuSearchGoogle",
                                                "mnuSaveWebPage",
                                                "mnuDownloadFiles",
                                                "mnuFloatFont",
                                                "mnuRemoveFormatting"};
    return availableInBatch(item) && !kNeedsTheWindow.contains(QString::fromLatin1(item.name));
}

bool BackgroundCommands::run(const MenuItemDecl& item) {
    auto job = std::make_shared<Job>(s_.logger);
    // The view's bytes are copied on the worker: a copy of a large document takes long enough
    // to be felt. Cancel waits for the copy, since the view may change right after it.
    const QByteArrayView inPlace = s_.edit->utf8InPlace();
    if (inPlace.isNull())
        job->doc.setUtf8(s_.edit->utf8());
    job->readsWindow = !inPlace.isNull();
    job->doc.setSelStart(s_.edit->selStart());
    job->doc.setSelLength(s_.edit->selLength());
    job->form = *s_.form;
    job->util = std::make_unique<Utility>(*s_.logger);
    job->dialogs = std::make_unique<ForwardedDialogs>(s_.parent, s_.dialogs, job.get());
    job->window = std::make_unique<SilentWindow>(s_.form->caption);
    job->ctx = std::make_unique<CommandContext>(job->doc, *job->dialogs, job->clipboard,
                                                AppSettings(job->store, s_.startUp->RegKeyAppName),
                                                *s_.logger, job->clock, job->launcher, job->menu,
                                                *job->util, job->form, *job->window, *s_.startUp);
    const MenuItemDecl* decl = &item;
    auto work = [job, decl, inPlace] {
        if (job->readsWindow) {
            try {
                job->doc.setUtf8(copyBytes(inPlace));
            } catch (const std::bad_alloc& e) {
                job->noCopy = true;
                job->readsWindow = false;
                job->ctx->log.logError(trapModule(*decl), trapLabel(*decl), describe(e));
                return; // the document stays as it is
            }
            job->original = job->doc.utf8();
            job->readsWindow = false;
            if (job->cancelled)
                return;
        }
        runMenuItem(*decl, *job->ctx);
    };
    if (!job->readsWindow)
        job->original = job->doc.utf8();
    if (!s_.busy->run(QStringLiteral("Working on \"%1\"...").arg(QString::fromUtf8(item.caption)),
                      work, job))
        return false; // the worker finishes on its own; its result is dropped
    if (job->noCopy)
        return true; // logged as the command's error; the document is as it was
    // The result goes to the document in one step, as the command itself would assign it.
    if (job->doc.utf8() != job->original)
        s_.edit->setUtf8(job->doc.utf8());
    s_.edit->setSelStart(job->doc.selStart());
    s_.edit->setSelLength(job->doc.selLength());
    *s_.form = job->form;
    return true;
}

} // namespace ed
