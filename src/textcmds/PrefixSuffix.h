#pragma once
#include "app/Command.h"
#include "util/Utf8Document.h"

namespace ed {
void mnuAddPrefix_Click(CommandContext& ctx);
void mnuAddSuffix_Click(CommandContext& ctx);
// The same commands on the whole of a UTF-8 document's bytes (see Utf8Commands.h).
void mnuAddPrefix_Utf8(CommandContext& ctx, Utf8Document& doc);
void mnuAddSuffix_Utf8(CommandContext& ctx, Utf8Document& doc);
} // namespace ed
