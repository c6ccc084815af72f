#pragma once
// Commands that drop whole lines: lines containing or not containing a text, numeric lines that
// fail a comparison, and repeated lines.

#include "app/Command.h"
#include "util/Utf8Document.h"

namespace ed {

void mnuRemoveLinesContainingText_Click(CommandContext& ctx);
void mnuRemoveLinesNotContainingText_Click(CommandContext& ctx);
void mnuByNumericValue_Click(CommandContext& ctx);
void mnuRemoveRepeats_Click(CommandContext& ctx);
// The text and number filters on the whole of a UTF-8 document's bytes (see Utf8Commands.h).
void mnuRemoveLinesContainingText_Utf8(CommandContext& ctx, Utf8Document& doc);
void mnuRemoveLinesNotContainingText_Utf8(CommandContext& ctx, Utf8Document& doc);
void mnuByNumericValue_Utf8(CommandContext& ctx, Utf8Document& doc);

} // namespace ed
