#pragma once
// Add Prefix and Add Suffix: every line becomes prefix + line (or line + suffix) with the spaces
// at both ends of the whole trimmed, followed by CR LF.

#include "app/Command.h"

namespace ed {
void mnuAddPrefix_Click(CommandContext& ctx);
void mnuAddSuffix_Click(CommandContext& ctx);
} // namespace ed
