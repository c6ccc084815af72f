#pragma once
// Commands that drop whole lines: lines containing or not containing a text, numeric lines that
// fail a comparison, and repeated lines.

#include "app/Command.h"

namespace ed {

void mnuRemoveLinesContainingText_Click(CommandContext& ctx);
void mnuRemoveLinesNotContainingText_Click(CommandContext& ctx);
void mnuByNumericValue_Click(CommandContext& ctx);
void mnuRemoveRepeats_Click(CommandContext& ctx);

} // namespace ed
