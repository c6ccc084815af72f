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

// Fields of the editor window that commands read and change.
struct FormState {
    QString FileName;    // full path of the document
    QString LastDir;     // folder of the document, persisted as "Last Dir"
    QString NewFileName; // the last name made for an untitled document
    bool RightMargin = false;
    QString UndoText; // the insert/undo buffer
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
    // Runs another command of the registry by its item name (Save As runs Save, and so on).
    std::function<void(const QString& item)> run;
};

using Handler = void (*)(CommandContext&);

} // namespace ed
