#pragma once
// Load From IE > Email, Phone #s, Fax #s and Any Tag Content: what the browser's page holds,
// gathered from the page and every frame in it and inserted through InsertText, one entry a
// line (each followed by CR LF). Like the other Load From IE commands they use one fresh
// session each, and a browser that does not answer inserts an empty text and says so in the
// status bar.

#include "app/Command.h"

#include <QString>

namespace ed {

void mnuGetBrowserEmail_Click(CommandContext& ctx);
void mnuGetPhoneNumbers_Click(CommandContext& ctx);
void mnuGetFaxNumbers_Click(CommandContext& ctx);
void mnuAnyTagContent_Click(CommandContext& ctx);

// The start and stop tags of a tag-content command: two prompts titled `title`, their defaults
// the remembered "GetHtmlTagsStart" ("<a>") and "GetHtmlTagsStop" ("</a>") of section
// "frmEdit", never the selection. Each answer is saved as typed. False when either is empty or
// cancelled (a first answer already given stays saved).
bool askStartAndStopTags(CommandContext& ctx, const QString& title, QString& start, QString& stop);

} // namespace ed
