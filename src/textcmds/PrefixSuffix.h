#pragma once
#include "app/Command.h"

namespace ed {
void mnuAddPrefix_Click(CommandContext& ctx);
void mnuAddSuffix_Click(CommandContext& ctx);
} // namespace ed
