#include "editor/EditorWindow.h"

#include "editor/AboutBox.h"
#include "editor/BackgroundCommand.h"
#include "editor/BusyWork.h"
#include "editor/DocumentCommands.h"
#include "editor/DocumentStore.h"
#include "editor/FormLoad.h"
#include "editor/HistoryCommands.h"
#include "editor/LinkMenu.h"
#include "editor/MenuKeys.h"
#include "editor/MenuTable.h"
#include "editor/ProgressDialog.h"
#include "editor/Recovery.h"
#include "editor/ScintillaEditControl.h"
#include "editor/SearchCommands.h"
#include "editor/StatusFields.h"
#include "editor/UndoHistory.h"
#include "util/HugePages.h"
#include "web/BrowserPort.h"
#include "web/SiteList.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTimer>

#include <Qsci/qsciscintillabase.h>

#include <cstring>

namespace ed {

namespace {
// The recovery copy is written this long after typing stops, and at the latest this long after
// the first change it does not hold yet.
constexpr int kRecoveryDelayMs = 2000;
constexpr qint64 kRecoveryLatestMs = 5000;
} // namespace

EditorWindow::EditorWindow(StartUpState& startUp, QWidget* parent)
    : QMainWindow(parent), startUp_(startUp), dialogs_(this), fileDialogs_(this), geometry_(this),
      logger_(clock_, launcher_, startUp.StartUpComplete, startUp.exeName), store_(&logger_),
      util_(logger_) {
    setObjectName(QStringLiteral("frmEdit"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    logger_.setDialogs(&dialogs_);
    logger_.hooks().enableAllFormControls = [] {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            w->setEnabled(true);
            for (QWidget* child : w->findChildren<QWidget*>())
                child->setEnabled(true);
        }
    };
    text_ = new QsciScintillaBase(this);
    text_->setObjectName(QStringLiteral("rtbEdit"));
    setCentralWidget(text_);
    edit_ = new ScintillaEditControl(text_);
    edit_->setSelectionFont(FontSpec());
    busy_ = std::make_unique<BusyWork>(this);
    edit_->setBusyWork(busy_.get());
    files_ = std::make_unique<WidgetDocumentFiles>(*edit_, busy_.get());
    history_ = std::make_unique<UndoHistory>(*edit_);
    background_ = std::make_unique<BackgroundCommands>(BackgroundCommands::Services{
        this, &dialogs_, &logger_, &startUp_, edit_, &form_, busy_.get()});
    browser_ = std::make_unique<web::DevToolsBrowserPort>(
        AppSettings(store_, startUp_.RegKeyAppName), logger_, clipboard_, launcher_);
    siteList_ = std::make_unique<SiteListState>(std::make_unique<QtSiteTimer>());
    siteList_->tmrSiteList->onTick([this] { tmrSiteList_Timer(*ctx_); });
    progress_ = std::make_unique<ProgressDialog>(this);
    text_->installEventFilter(this);
    makeContext(dialogs_, &fileDialogs_);
    buildMenus();
    // F10 opens the menu bar, as on other desktops.
    auto* menuKey = new QAction(this);
    menuKey->setObjectName(QStringLiteral("actMenuBar"));
    menuKey->setShortcut(QKeySequence(Qt::Key_F10));
    addAction(menuKey);
    connect(menuKey, &QAction::triggered, this, [this] {
        for (QAction* a : menuBar()->actions())
            if (a->isVisible()) {
                menuBar()->setActiveAction(a);
                break;
            }
    });
    status_ = new StatusFields(statusBar(), *edit_);
    modifiedLabel_ = new QLabel(tr("Modified"), this);
    modifiedLabel_->setObjectName(QStringLiteral("lblModified"));
    modifiedLabel_->setVisible(false);
    statusBar()->addPermanentWidget(modifiedLabel_);
    recovery_ = std::make_unique<RecoveryStore>();
    recoveryTimer_ = new QTimer(this);
    recoveryTimer_->setSingleShot(true);
    recoveryTimer_->setInterval(kRecoveryDelayMs);
    connect(recoveryTimer_, &QTimer::timeout, this, [this] { writeRecovery(); });
    connect(edit_, &ScintillaEditControl::changed, this,
            [this](qsizetype offset, const QByteArray& removed, const QByteArray& inserted,
                   bool typed) {
                history_->record(ByteChange{offset, removed, inserted, {}, {}}, typed,
                                 QDateTime::currentMSecsSinceEpoch());
                if (typed)
                    updateHistoryItems(*ctx_);
                textChanged();
            });
    connect(edit_, &ScintillaEditControl::formatsChanged, this, [this](const ByteChange& change) {
        history_->record(change, false);
        textChanged();
    });
    connect(edit_, &ScintillaEditControl::notice, this,
            [this](const QString& text) { showStatus(text); });
}

EditorWindow::~EditorWindow() {
    // A window torn down without a close (the process ends) leaves its recovery copy behind.
    recovery_->flush();
}

void EditorWindow::textChanged() {
    if (!modified_)
        setModified(true);
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (pendingSinceMs_ < 0)
        pendingSinceMs_ = now;
    if (!recoveryTimer_->isActive() || now - pendingSinceMs_ < kRecoveryLatestMs)
        recoveryTimer_->start();
}

void EditorWindow::setModified(bool modified) {
    modified_ = modified;
    modifiedLabel_->setVisible(modified);
    if (!modified) {
        recoveryTimer_->stop();
        pendingSinceMs_ = -1;
        recoveryCopy_ = QByteArray();
    }
}

void EditorWindow::writeRecovery() {
    recoveryTimer_->stop();
    pendingSinceMs_ = -1;
    if (!modified_)
        return;
    // The copy of a large document goes into the buffer of the previous one once the recovery
    // writer has let go of it: copying into fresh memory costs a page fault per page, which for
    // 100 MB is most of a second on some machines.
    const QByteArrayView text = edit_->utf8InPlace();
    if (!recoveryCopy_.isDetached() || recoveryCopy_.capacity() < text.size()) {
        recoveryCopy_ = copyBytes(text);
    } else {
        recoveryCopy_.resize(text.size());
        if (!text.isEmpty())
            std::memcpy(recoveryCopy_.data(), text.data(), size_t(text.size()));
    }
    recovery_->write(form_.caption, recoveryCopy_, QDateTime::currentDateTime());
}

void EditorWindow::dropRecovery() {
    recoveryTimer_->stop();
    pendingSinceMs_ = -1;
    recovery_->remove();
}

void EditorWindow::restartHistory() {
    history_->clear();
    updateHistoryItems(*ctx_);
}

void EditorWindow::offerRecovery() {
    for (const RecoveredDocument& doc : recovery_->orphans()) {
        const Answer a = ctx_->dialogs.ask(
            QStringLiteral("Recover the unsaved changes of %1 from %2?")
                .arg(doc.path, QLocale().toString(doc.time, QLocale::ShortFormat)),
            defaultTitle(), Buttons::YesNo, Icon::Question, Answer::Yes);
        if (a != Answer::Yes) {
            RecoveryStore::discard(doc.file);
            continue;
        }
        // The recovered text is the document now, unsaved, under its own name; this process
        // keeps the copy from here on. The file on disk is not its origin: Save asks first.
        files_->reset();
        edit_->setUtf8(doc.text);
        adoptFileName(*ctx_, doc.path);
        restartHistory();
        setModified(true);
        writeRecovery();
        recovery_->flush();
        RecoveryStore::discard(doc.file);
        updateFormat();
        showStatus(tr("Recovered the unsaved changes of %1").arg(doc.path));
        return; // one at a time: the others are offered at the next start
    }
}

bool EditorWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate)
        QTimer::singleShot(0, this, [this] { checkFileOnDisk(); });
    return QMainWindow::event(event);
}

void EditorWindow::checkFileOnDisk() {
    const QString path = files_->origin();
    if (checkingDisk_ || running_ > 0 || path.isEmpty() || path != form_.caption ||
        !files_->originChanged())
        return;
    const FileIdentity now = FileIdentity::of(path);
    if (!now.exists || now == keptDespite_)
        return; // a removed file is written again by Save; a declined reload is not asked again
    checkingDisk_ = true;
    bool reload = !modified_;
    if (modified_)
        reload = ctx_->dialogs.ask(QStringLiteral("%1 was changed by another program. Reload it "
                                                  "and lose your changes?")
                                       .arg(path),
                                   defaultTitle(), Buttons::YesNo, Icon::Exclamation,
                                   Answer::No) == Answer::Yes;
    if (reload) {
        if (LoadNewFile(*ctx_, path))
            restartHistory();
        updateFormat();
        showStatus(tr("Reloaded %1: another program changed it").arg(path));
    } else {
        keptDespite_ = now;
    }
    checkingDisk_ = false;
}

void EditorWindow::makeContext(Dialogs& dialogs, FileDialogs* fileDialogs) {
    ctx_ = std::make_unique<CommandContext>(
        *edit_, dialogs, clipboard_, AppSettings(store_, startUp_.RegKeyAppName), logger_, clock_,
        launcher_, menu_, util_, form_, *this, startUp_);
    ctx_->view = edit_;
    ctx_->fileDialogs = fileDialogs;
    ctx_->files = files_.get();
    ctx_->geometry = &geometry_;
    ctx_->history = history_.get();
    ctx_->browser = browser_.get();
    ctx_->siteList = siteList_.get();
    ctx_->progress = progress_.get();
    ctx_->run = [this](const QString& item) { trigger(item); };
    ctx_->searchQuietly = [this](const QString& text) {
        QString s = text;
        FindText(*ctx_, s, nullptr, true);
    };
}

void EditorWindow::setDialogs(Dialogs* dialogs) {
    makeContext(*dialogs, ctx_->fileDialogs);
    background_->setDialogs(dialogs);
    logger_.setDialogs(dialogs);
}

void EditorWindow::setFileDialogs(FileDialogs* dialogs) {
    ctx_->fileDialogs = dialogs;
}

bool EditorWindow::eventFilter(QObject* watched, QEvent* event) {
    // The text widget would take some of the menu's keys for itself (Ctrl+Z and Ctrl+Y as its own
    // undo, Ctrl+X as Cut): every key a menu item declares runs that item (Undo, Redo, Close).
    if (watched == text_ && event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo) ||
            menuKeys_.contains(QKeySequence(key->keyCombination()))) {
            event->ignore();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void EditorWindow::buildMenus() {
    QHash<QString, QMenu*> menus;
    const QHash<QString, QString> texts = menuTexts();
    for (const MenuItemDecl& d : menuItems()) {
        const QString name = QString::fromLatin1(d.name);
        const QString caption = texts.value(name, QString::fromUtf8(d.caption));
        QMenu* parent = d.parent ? menus.value(QString::fromLatin1(d.parent)) : nullptr;
        if (d.flags & kMenu) {
            QMenu* m = parent ? parent->addMenu(caption) : menuBar()->addMenu(caption);
            m->setObjectName(name);
            m->menuAction()->setObjectName(name);
            m->menuAction()->setVisible(!(d.flags & kHidden));
            m->setToolTipsVisible(true);
            menus.insert(name, m);
            menu_.add(name, m->menuAction());
            if (name == u"mnuTools")
                connect(m, &QMenu::aboutToShow, this, [this] { mnuTools_Click(*ctx_); });
            if (name == u"mnuEdit")
                connect(m, &QMenu::aboutToShow, this, [this] {
                    history_->close();
                    updateHistoryItems(*ctx_);
                });
            continue;
        }
        if (!parent)
            continue;
        if (d.flags & kSeparator) {
            parent->addSeparator()->setObjectName(name);
            continue;
        }
        if (d.flags & kLinkList) {
            // The recently used files go in front of this invisible anchor.
            fileMenu_ = parent;
            linkAnchor_ = parent->addAction(QString());
            linkAnchor_->setObjectName(name);
            linkAnchor_->setVisible(false);
            continue;
        }
        QAction* a = parent->addAction(caption);
        a->setObjectName(name);
        QList<QKeySequence> keys;
        if (*d.shortcut) {
            keys << QKeySequence(QString::fromLatin1(d.shortcut));
            menuKeys_ << keys.first();
        }
        a->setShortcuts(keys + standardKeys(name));
        a->setCheckable(d.flags & kCheckable);
        a->setVisible(!(d.flags & kHidden));
        a->setEnabled(!(d.flags & kDisabled));
        if (!d.handler) {
            a->setEnabled(false);
            a->setToolTip(tr("Not available in this version"));
            a->setStatusTip(tr("Not available in this version"));
        }
        connect(a, &QAction::triggered, this, [this, name, a] {
            // Qt has already flipped the check mark; the handler sets it from the state before.
            if (a->isCheckable())
                a->setChecked(!a->isChecked());
            runItem(name);
        });
        menu_.add(name, a);
    }
}

void EditorWindow::runItem(const QString& name) {
    const MenuItemDecl* d = findMenuItem(name);
    if (!d)
        return;
    // Each command is one step of the history; commands run by commands are part of theirs.
    const bool outermost = running_ == 0;
    const QString captionBefore = form_.caption;
    const quint64 changesBefore = edit_->changeCount();
    if (outermost)
        history_->close();
    ++running_;
    if (outermost && BackgroundCommands::runsOnTextAlone(*d))
        background_->run(*d);
    else
        runMenuItem(*d, *ctx_);
    --running_;
    if (!outermost)
        return;
    history_->close();
    // New, Open and Delete start a fresh history, unless the person cancelled them.
    const bool newDocument =
        (name == u"mnuNew" || name == u"mnuOpen" || name == u"mnuOpenSelect" ||
         name == u"mnuDelete") &&
        (edit_->changeCount() != changesBefore || form_.caption != captionBefore);
    if (newDocument)
        history_->clear();
    updateHistoryItems(*ctx_);
    updateFormat();
}

void EditorWindow::updateFormat() {
    status_->showFormat(files_->format(), documentExtension(form_.caption) == u"rtf");
}

void EditorWindow::trigger(const QString& item) {
    runItem(item);
}

void EditorWindow::refreshLinks() {
    if (!fileMenu_)
        return;
    for (QAction* a : linkActions_) {
        fileMenu_->removeAction(a);
        a->deleteLater();
    }
    linkActions_.clear();
    for (int i = 0; i < kLinkCount; ++i) {
        const QString name = form_.LinkItems[size_t(i)];
        if (name.isEmpty())
            continue;
        auto* a =
            new QAction(QStringLiteral("&%1 %2").arg(
                            i < 9 ? QString::number(i + 1) : QString(QChar(u'A' + i - 9)), name),
                        fileMenu_);
        a->setObjectName(QStringLiteral("mnuLnk%1").arg(i + 1));
        connect(a, &QAction::triggered, this, [this, i] {
            const QString before = form_.caption;
            const bool wasModified = modified_;
            mnuLnk_Click(*ctx_, i);
            // A recent file that was not opened (Cancel, a missing file) keeps the history.
            if (form_.caption != before || wasModified != modified_)
                restartHistory();
            updateFormat();
        });
        fileMenu_->insertAction(linkAnchor_, a);
        linkActions_ << a;
    }
}

void EditorWindow::load() {
    Form_Load(*ctx_, startUp_.CommandLine);
    restartHistory();
    updateFormat();
    offerRecovery();
}

void EditorWindow::showWindow() {
    show();
}

void EditorWindow::setCaption(const QString& caption) {
    form_.caption = caption;
    setWindowTitle(caption);
}

QString EditorWindow::caption() const {
    return form_.caption;
}

void EditorWindow::showStatus(const QString& text) {
    statusBar()->showMessage(text, 15000);
}

void EditorWindow::close() {
    QMainWindow::close();
}

void EditorWindow::showAbout() {
    if (!about_)
        about_ =
            makeAboutBox(this, store_.filePath(startUp_.RegKeyAppName), ErrorLogger::logFilePath());
    about_->show();
    about_->raise();
}

void EditorWindow::closeEvent(QCloseEvent* event) {
    if (!confirmDiscard(*ctx_)) {
        event->ignore();
        return;
    }
    if (about_)
        about_->close();
    Form_Unload(*ctx_);
    event->accept();
}

} // namespace ed
