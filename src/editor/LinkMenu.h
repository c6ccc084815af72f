#pragma once
// The recently used files on the File menu: at most 16, newest first, no duplicates, kept in
// section "frmEdit" under "Link Menu Item 1" to "Link Menu Item 16".

#include "app/Command.h"

namespace ed {

constexpr int kLinkCount = 16;

void GetLnksFromRegistry(CommandContext& ctx);
void PutLinkOnMenu(CommandContext& ctx, const QString& fileName);
void RemoveLinkFromMenu(CommandContext& ctx, const QString& fileName);
// A click on recently used file number `index` (0 = newest).
void mnuLnk_Click(CommandContext& ctx, int index);

} // namespace ed
