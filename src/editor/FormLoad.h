#pragma once
// The editor window's load procedure, step by step, over the ports.

#include "app/Command.h"

#include <functional>

namespace ed {

// Runs the load. `CommandLine` is the start-up's command line; a search text after "~" is
// searched for at the end, quietly.
void Form_Load(CommandContext& ctx, QString commandLine);
// The folder of a new document when no folder was used before: the program's own, unless the
// user cannot write there (an installed copy in /usr/bin); then the user's documents folder, else
// the home folder. `writable` tells whether a folder exists and takes new files.
using FolderCheck = std::function<bool(const QString& folder)>;
QString newDocumentFolder(const QString& programFolder, const FolderCheck& writable,
                          const QString& documentsFolder, const QString& homeFolder);
// The same with the real checks and the user's own folders.
QString newDocumentFolder(const QString& programFolder);
// The unload: placement saved.
void Form_Unload(CommandContext& ctx);

} // namespace ed
