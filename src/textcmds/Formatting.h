#pragma once
// The commands that change how the characters look, never what they are: Float Font (sizes
// rising and falling along the text) and Remove Formatting (back to the saved font). Only the
// window shows formats; without it (the batch runner) both leave the document as it is.

#include "app/Command.h"

#include <QList>

namespace ed {

void mnuFloatFont_Click(CommandContext& ctx);
void mnuRemoveFormatting_Click(CommandContext& ctx);

// The sizes of one wave: from `first` a point more each step up to `largest`, then a point less
// each step down to just above `first`. Only `largest` when it is not above `first`.
QList<double> sizeWave(double first, double largest);

} // namespace ed
