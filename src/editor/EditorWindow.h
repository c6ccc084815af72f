#pragma once
// frmEdit: the main window. It assembles the real adapters, builds the menu bar from the menu
// table and routes each menu item to its handler; the commands themselves live elsewhere.

#include "app/Command.h"
#include "app/ErrorLogger.h"
#include "app/SettingsStore.h"
#include "app/SystemPorts.h"
#include "editor/FileIdentity.h"
#include "editor/QtPorts.h"
#include "editor/WindowAdapters.h"
#include "util/Utility.h"

#include <QKeySequence>
#include <QMainWindow>
#include <QPointer>
#include <QSet>

#include <memory>

class QLabel;
class QMenu;
class QsciScintillaBase;
class QTimer;

namespace ed {

class ScintillaEditControl;
class TextDocumentFiles;
class UndoHistory;
class BackgroundCommands;
class BusyWork;
class BrowserPort;
class SiteListState;
class RecoveryStore;
class StatusFields;
class ProgressDialog;

class EditorWindow : public QMainWindow, public FormWindow {
    Q_OBJECT
public:
    explicit EditorWindow(StartUpState& startUp, QWidget* parent = nullptr);
    ~EditorWindow() override;

    // The window's load procedure (see Form_Load).
    void load();

    // FormWindow
    void setCaption(const QString& caption) override;
    QString caption() const override;
    void showStatus(const QString& text) override;
    void close() override;
    void refreshLinks() override;
    void showAbout() override;
    void showWindow() override;
    bool isModified() const override { return modified_; }
    void setModified(bool modified) override;
    void dropRecovery() override;

    CommandContext& context() { return *ctx_; }
    ScintillaEditControl& editControl() { return *edit_; }
    QsciScintillaBase* textWidget() const { return text_; }
    ActionMenuState& menuState() { return menu_; }
    // Runs a menu item by name as if it had been clicked.
    void trigger(const QString& item);

    // Lets tests replace the dialogs with scripted ones.
    void setDialogs(Dialogs* dialogs);
    void setFileDialogs(FileDialogs* dialogs);
    UndoHistory& history() { return *history_; }
    BackgroundCommands& background() { return *background_; }
    BusyWork& busy() { return *busy_; }
    RecoveryStore& recovery() { return *recovery_; }
    ProgressDialog& progress() { return *progress_; }
    // Writes the recovery copy now (the timer does it a moment after typing stops).
    void writeRecovery();
    // Reloads the document's file when another program changed it (asks when modified).
    void checkFileOnDisk();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildMenus();
    void runItem(const QString& name);
    void makeContext(Dialogs& dialogs, FileDialogs* fileDialogs);
    void textChanged();
    void offerRecovery();
    // After the document was replaced: a fresh history.
    void restartHistory();
    // The status bar's encoding and line-break fields follow the document's format.
    void updateFormat();

    StartUpState& startUp_;
    QsciScintillaBase* text_ = nullptr;
    ScintillaEditControl* edit_ = nullptr;
    QtDialogs dialogs_;
    QtFileDialogs fileDialogs_;
    WidgetGeometry geometry_;
    QtClipboard clipboard_;
    ActionMenuState menu_;
    SystemClock clock_;
    ProcessLauncher launcher_;
    ErrorLogger logger_;
    SettingsStore store_;
    Utility util_;
    FormState form_;
    std::unique_ptr<BusyWork> busy_; // before everything that runs work on it
    std::unique_ptr<TextDocumentFiles> files_;
    std::unique_ptr<UndoHistory> history_;
    std::unique_ptr<BackgroundCommands> background_;
    std::unique_ptr<BrowserPort> browser_;
    std::unique_ptr<SiteListState> siteList_;
    std::unique_ptr<ProgressDialog> progress_;
    std::unique_ptr<CommandContext> ctx_;
    int running_ = 0;
    QMenu* fileMenu_ = nullptr;
    QList<QAction*> linkActions_;
    QSet<QKeySequence> menuKeys_; // the keys the menu table gives its items
    QAction* linkAnchor_ = nullptr;
    QPointer<QWidget> about_;
    std::unique_ptr<RecoveryStore> recovery_;
    QByteArray recoveryCopy_; // the last text handed to recovery_, its buffer used again
    QTimer* recoveryTimer_ = nullptr;
    QLabel* modifiedLabel_ = nullptr;
    StatusFields* status_ = nullptr;
    bool modified_ = false;
    qint64 pendingSinceMs_ = -1; // when the oldest change not in the recovery copy was made
    bool checkingDisk_ = false;
    FileIdentity keptDespite_; // the changed file whose reload the person declined
};

} // namespace ed
