#pragma once
// Tidying spaces, blank lines and line breaks. A line is blank when it is empty after trimming
// its leading and trailing spaces (tabs are not spaces).

#include "app/Command.h"

namespace ed {

void mnuRemoveAllSpaces_Click(CommandContext& ctx);
void mnuTrimLeadingAndTrailingSpaces_Click(CommandContext& ctx);
void mnuCnvDblSpcToSingle_Click(CommandContext& ctx);
void mnuReplaceDoubleBlankLineWithSingle_Click(CommandContext& ctx);
void mnuTrimSpaces_Click(CommandContext& ctx); // "Remove all blank lines"
void mnuRemoveCRLF_Click(CommandContext& ctx);
void mnuInsertBlankLines_Click(CommandContext& ctx);

} // namespace ed
