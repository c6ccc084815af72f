#pragma once
// The editor window's load procedure, step by step, over the ports.

#include "app/Command.h"

namespace ed {

// Runs the load. `CommandLine` is the start-up's command line; a search text after "~" is
// searched for at the end, quietly.
void Form_Load(CommandContext& ctx, QString commandLine);
// The unload: placement saved.
void Form_Unload(CommandContext& ctx);

} // namespace ed
