#pragma once
// Runs a text command on a worker thread against a copy of the document, so that the window
// stays live: after half a second a busy indicator with Cancel appears, and a cancelled command
// leaves the document exactly as it was. Prompts and message boxes still appear on the window's
// thread. The result is assigned to the edit control in one step, as the command would.

#include "app/Command.h"
#include "editor/MenuTable.h"

#include <QThread>

#include <functional>
#include <memory>
#include <vector>

class QWidget;

namespace ed {

class ErrorLogger;

class BackgroundCommands {
public:
    struct Services {
        QWidget* parent;
        Dialogs* dialogs;
        ErrorLogger* logger;
        const StartUpState* startUp;
        EditControl* edit;
        FormState* form;
    };
    explicit BackgroundCommands(Services services) : s_(services) {}
    ~BackgroundCommands();

    // Commands that work on the text, prompts and settings alone (no clipboard, menu, browser
    // or window), which can therefore run away from the window's thread.
    static bool runsOnTextAlone(const MenuItemDecl& item);

    // Runs the item. Returns false when the user cancelled it (nothing was changed).
    bool run(const MenuItemDecl& item);

    void setDialogs(Dialogs* dialogs) { s_.dialogs = dialogs; }
    // Shows the busy indicator; tests replace it to press Cancel.
    std::function<void(std::function<void()> cancel)> showBusy;
    int busyDelayMs = 500;

private:
    Services s_;
    std::vector<std::unique_ptr<QThread>> threads_;
};

} // namespace ed
