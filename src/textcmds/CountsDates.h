#pragma once
// Character and line counts in a message box, and the current date and/or time put in place of
// the selection.

#include "app/Command.h"

#include <QByteArrayView>

namespace ed {

void mnuGetCharCount_Click(CommandContext& ctx);
void mnuShowLineCount_Click(CommandContext& ctx);
void mnuInsertDate_Click(CommandContext& ctx);
void mnuInsertTime_Click(CommandContext& ctx);
void mnuInsertDateTime_Click(CommandContext& ctx);

} // namespace ed
