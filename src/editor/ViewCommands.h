#pragma once
// Fonts, word wrap, Close and About.

#include "app/Command.h"

namespace ed {

// Applies the saved font ("Font" in section "frmEdit") to the whole document.
void SetFont(CommandContext& ctx);
// Applies a font to the selection; an empty name means "Arial".
void ApplyFont(CommandContext& ctx, const QString& name, double size, bool bold, bool italic);

void mnuChangeFont_Click(CommandContext& ctx);
void mnuNoWrap_Click(CommandContext& ctx);
void mnuExit_Click(CommandContext& ctx);
void mnuAbout_Click(CommandContext& ctx);

} // namespace ed
