#pragma once
// The one declaration of every menu item: name, caption, parent menu, shortcut, initial state and
// handler. The window's menu bar, the batch runner and its --list are all built from this table.

#include "app/Command.h"

#include <QString>

#include <vector>

namespace ed {

enum ItemFlag : unsigned {
    kNone = 0,
    kDisabled = 1u << 0,   // starts disabled
    kCheckable = 1u << 1,  // has a check mark
    kHidden = 1u << 2,     // starts invisible
    kMenu = 1u << 3,       // a menu or submenu that holds items
    kSeparator = 1u << 4,  // a separator line
    kWindowOnly = 1u << 5, // needs the window (dialogs, fonts, placement): not in the batch runner
    kLinkList = 1u << 6,   // placeholder of the recently used files
};

struct MenuItemDecl {
    const char* name;     // "mnuAddPrefix"
    const char* caption;  // "Prefix"
    const char* parent;   // the menu that holds it; nullptr for the menu bar
    const char* shortcut; // "Ctrl+S", "F3", or ""
    unsigned flags;
    Handler handler;    // nullptr: the command is not available yet
    const char* label;  // error-trap label when it is not name + "_Click"; nullptr otherwise
    const char* module; // error-trap module; nullptr means "frmEdit"
};

const std::vector<MenuItemDecl>& menuItems();
const MenuItemDecl* findMenuItem(const QString& name);

// The item's name without "mnu": what the batch runner calls it.
QString batchName(const MenuItemDecl& item);
const MenuItemDecl* findByBatchName(const QString& name);
QString trapLabel(const MenuItemDecl& item);
QString trapModule(const MenuItemDecl& item);
bool isCommand(const MenuItemDecl& item);
bool availableInBatch(const MenuItemDecl& item);
// True in Editor for the items whose handler is Editor-full's (window, browser, mail); always
// false in Editor-full, which runs them all.
bool runsInFullProgram(const MenuItemDecl& item);

// Runs an item's handler under the error trap of its label. Returns false when it was logged.
bool runMenuItem(const MenuItemDecl& item, CommandContext& ctx);

} // namespace ed
