#include "editor/EditorWindow.h"

#include "editor/MenuTable.h"
#include "editor/PlainTextEditControl.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QStatusBar>

namespace ed {

EditorWindow::EditorWindow(StartUpState& startUp, QWidget* parent)
    : QMainWindow(parent), startUp_(startUp), dialogs_(this),
      logger_(clock_, launcher_, startUp.StartUpComplete, startUp.exeName), store_(&logger_),
      util_(logger_) {
    setObjectName(QStringLiteral("frmEdit"));
    logger_.setDialogs(&dialogs_);
    logger_.hooks().enableAllFormControls = [] {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            w->setEnabled(true);
            for (QWidget* child : w->findChildren<QWidget*>())
                child->setEnabled(true);
        }
    };
    text_ = new QPlainTextEdit(this);
    text_->setObjectName(QStringLiteral("rtbEdit"));
    setCentralWidget(text_);
    edit_ = new PlainTextEditControl(text_);
    ctx_ = std::make_unique<CommandContext>(
        *edit_, dialogs_, clipboard_, AppSettings(store_, startUp_.RegKeyAppName), logger_, clock_,
        launcher_, menu_, util_, form_, *this, startUp_);
    ctx_->view = edit_;
    ctx_->run = [this](const QString& item) { trigger(item); };
    buildMenus();
    statusBar();
}

EditorWindow::~EditorWindow() = default;

void EditorWindow::buildMenus() {
    QHash<QString, QMenu*> menus;
    for (const MenuItemDecl& d : menuItems()) {
        const QString name = QString::fromLatin1(d.name);
        const QString caption = QString::fromUtf8(d.caption);
        QMenu* parent = d.parent ? menus.value(QString::fromLatin1(d.parent)) : nullptr;
        if (d.flags & kMenu) {
            QMenu* m = parent ? parent->addMenu(caption) : menuBar()->addMenu(caption);
            m->setObjectName(name);
            m->menuAction()->setObjectName(name);
            m->menuAction()->setVisible(!(d.flags & kHidden));
            menus.insert(name, m);
            menu_.add(name, m->menuAction());
            continue;
        }
        if (!parent)
            continue;
        if (d.flags & kSeparator) {
            QAction* sep = parent->addSeparator();
            sep->setObjectName(name);
            continue;
        }
        if (d.flags & kLinkList) {
            // Filled with the recently used files at load.
            continue;
        }
        QAction* a = parent->addAction(caption);
        a->setObjectName(name);
        if (*d.shortcut)
            a->setShortcut(QKeySequence(QString::fromLatin1(d.shortcut)));
        a->setCheckable(d.flags & kCheckable);
        a->setVisible(!(d.flags & kHidden));
        a->setEnabled(!(d.flags & kDisabled));
        if (!d.handler) {
            a->setEnabled(false);
            a->setToolTip(tr("Not available in this version"));
            a->setStatusTip(tr("Not available in this version"));
        }
        const MenuItemDecl* decl = &d;
        connect(a, &QAction::triggered, this, [this, decl] { runMenuItem(*decl, *ctx_); });
        menu_.add(name, a);
    }
    for (QMenu* m : menus)
        m->setToolTipsVisible(true);
}

void EditorWindow::trigger(const QString& item) {
    if (const MenuItemDecl* d = findMenuItem(item))
        runMenuItem(*d, *ctx_);
}

void EditorWindow::load() {
    // Start-up has filled the names; the window's load procedure follows.
    if (form_.FileName.isEmpty()) {
        form_.LastDir = ctx_->settings.get(QStringLiteral("frmEdit"), QStringLiteral("Last Dir"));
        if (form_.LastDir.isEmpty())
            form_.LastDir = startUp_.programFolder + u'/';
        form_.FileName = util_.GetFreeFile(form_.LastDir + QStringLiteral("Text-0.Txt"));
        form_.NewFileName = form_.FileName;
        setCaption(form_.FileName);
    }
    resize(5000 / 15, 4000 / 15);
    show();
}

void EditorWindow::setCaption(const QString& caption) {
    form_.caption = caption;
    setWindowTitle(caption);
}

QString EditorWindow::caption() const { return form_.caption; }

void EditorWindow::showStatus(const QString& text) { statusBar()->showMessage(text, 15000); }

void EditorWindow::close() { QMainWindow::close(); }

void EditorWindow::closeEvent(QCloseEvent* event) { event->accept(); }

void EditorWindow::resizeEvent(QResizeEvent* event) { QMainWindow::resizeEvent(event); }

} // namespace ed
