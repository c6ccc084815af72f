#pragma once
// Runs a text command on a worker thread against a copy of the document, so that the window
// stays live: after half a second a busy indicator with Cancel appears, and a cancelled command
// leaves the document exactly as it was. Prompts and message boxes still appear on the window's
// thread. The result goes to the edit control in one step, as the command would assign it: only
// the part that differs is replaced.

#include "app/Command.h"
#include "editor/MenuTable.h"

class QWidget;

namespace ed {

class BusyWork;
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
        BusyWork* busy;
    };
    explicit BackgroundCommands(Services services) : s_(services) {}

    // Commands that work on the text, prompts and settings alone (no clipboard, menu, browser
    // or window), which can therefore run away from the window's thread.
    static bool runsOnTextAlone(const MenuItemDecl& item);

    // Runs the item. Returns false when the user cancelled it (nothing was changed).
    bool run(const MenuItemDecl& item);

    void setDialogs(Dialogs* dialogs) { s_.dialogs = dialogs; }

private:
    Services s_;
};

} // namespace ed
