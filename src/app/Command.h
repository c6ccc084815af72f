#pragma once
// What a command handler works with: the ports, the window's document state and the settings,
// gathered in one context. The window and the batch runner each build one.

#include "app/Ports.h"
#include "app/SettingsStore.h"
#include "app/StartUp.h"

#include <QStringList>

#include <array>
#include <functional>

namespace ed {

class Utility;
class BrowserPort;
class SiteListState;
class UndoHistory;

// Fields of the editor window that commands read and change.
struct FormState {
    QString FileName;    // full path of the document
    QString LastDir;     // folder of the document, persisted as "Last Dir"
    QString NewFileName; // the last name made for an untitled document
    bool RightMargin = false;
    QByteArray UndoText; // the insert/undo buffer (model bytes, as EditControl::utf8())
    qint32 SearchPos = 0;
    bool OpenSelectPending = false;
    bool KeepInitDirOnce = false;
    std::array<QString, 16> LinkItems;
    QString caption; // the window's caption; always the document's path
};

// The caption and other window-only services; the batch runner supplies a quiet one.
class FormWindow {
public:
    virtual ~FormWindow() = default;
    virtual void setCaption(const QString& caption) = 0;
    virtual QString caption() const = 0;
    // One line in the status bar; the batch runner prints it to stderr with --report.
    virtual void showStatus(const QString& text) = 0;
    // Closes the window (File > Close).
    virtual void close() = 0;
    // The recently used files in FormState::LinkItems changed: rebuild their menu entries.
    virtual void refreshLinks() {}
    // Shows the About box.
    virtual void showAbout() {}
    // Shows the window (the last step of its load).
    virtual void showWindow() {}
    // Whether the document differs from what was last loaded or saved. Only the window tracks
    // it; elsewhere nothing is ever unsaved.
    virtual bool isModified() const { return false; }
    virtual void setModified(bool modified) { (void)modified; }
    // The document was saved, or its changes were dropped on purpose: its recovery copy goes.
    virtual void dropRecovery() {}
};

// Loading and saving the document as the edit control holds it, as text or as RTF. The store
// remembers the file's encoding and line-break style and writes them back.
class DocumentFiles {
public:
    virtual ~DocumentFiles() = default;
    enum class LoadResult { Loaded, Failed, Cancelled };
    // Replaces the document with the file's content. Failed with `error` set when it fails (the
    // document is then left empty); Cancelled when the user stopped a long load (the document
    // is then left as it was).
    virtual LoadResult load(const QString& path, bool rtf, QString& error) = 0;
    // Writes the document followed by one line break; atomically: all or nothing.
    virtual bool save(const QString& path, bool rtf, QString& error) = 0;
    // Forgets the remembered format: the next save writes a new document's format.
    virtual void reset() = 0;
    // The file the document's content came from: loaded from or last saved to; "" when none
    // (a new document, a failed load).
    virtual QString origin() const { return {}; }
    // True when the file at origin() is no longer the one loaded or saved: another program
    // changed, replaced or removed it since.
    virtual bool originChanged() const { return false; }
    // False when the document holds characters that the file's encoding cannot store.
    virtual bool encodingFits() const { return true; }
    // The next saves write UTF-8.
    virtual void useUtf8() {}
};

// The window's size, position and on-top state in twips (15 twips a pixel), and the screen's.
class FormGeometry {
public:
    virtual ~FormGeometry() = default;
    virtual QString formName() const = 0;
    virtual int width() const = 0;
    virtual int height() const = 0;
    virtual int left() const = 0;
    virtual int top() const = 0;
    virtual int screenWidth() const = 0;
    virtual int screenHeight() const = 0;
    virtual bool isMinimized() const = 0;
    // Moves and sizes the window in one step (twips).
    virtual void setGeometry(int left, int top, int width, int height) = 0;
    virtual void maximize() = 0;
    // Topmost on or off, with the window's rectangle in pixels.
    virtual void setTopmost(bool topmost, int x, int y, int cx, int cy) = 0;
};

struct CommandContext {
    CommandContext(EditControl& edit, Dialogs& dialogs, Clipboard& clipboard, AppSettings settings,
                   Logger& log, const Clock& clock, Launcher& launcher, MenuState& menu,
                   Utility& util, FormState& form, FormWindow& window, const StartUpState& startUp)
        : edit(edit), dialogs(dialogs), clipboard(clipboard), settings(std::move(settings)),
          log(log), clock(clock), launcher(launcher), menu(menu), util(util), form(form),
          window(window), startUp(startUp) {}

    EditControl& edit;
    Dialogs& dialogs;
    Clipboard& clipboard;
    AppSettings settings;
    Logger& log;
    const Clock& clock;
    Launcher& launcher;
    MenuState& menu;
    Utility& util;
    FormState& form;
    FormWindow& window;
    const StartUpState& startUp;
    // Only the window has these; commands that need them are not offered to the batch runner.
    EditView* view = nullptr;
    FileDialogs* fileDialogs = nullptr;
    BrowserPort* browser = nullptr;
    DocumentFiles* files = nullptr;
    FormGeometry* geometry = nullptr;
    // The window's undo/redo history of whole commands.
    UndoHistory* history = nullptr;
    // The window's site-list walk (list, index and timer).
    SiteListState* siteList = nullptr;
    // The window's progress dialog for long network work; none elsewhere.
    Progress* progress = nullptr;
    // Set by a command that told the user it could not do all of its work (files that did not
    // download); the batch runner then ends with status 1.
    bool commandFailed = false;
    // Runs another command of the registry by its item name (Save As runs Save, and so on).
    std::function<void(const QString& item)> run;
    // The quiet search of the command line (selects the first match, no message on a miss).
    std::function<void(const QString& text)> searchQuietly;
};

using Handler = void (*)(CommandContext&);

} // namespace ed
