#pragma once
// Tidying spaces, blank lines and line breaks. A line is blank when it is empty after trimming
// its leading and trailing spaces (tabs are not spaces).

#include "app/Command.h"
#include "util/Utf8Document.h"

#include <QString>
#include <QStringView>

namespace ed {

void mnuRemoveAllSpaces_Click(CommandContext& ctx);
// The same two on the whole of a UTF-8 document's bytes (see Utf8Commands.h).
void mnuRemoveAllSpaces_Utf8(CommandContext& ctx, Utf8Document& doc);
void mnuTrimLeadingAndTrailingSpaces_Utf8(CommandContext& ctx, Utf8Document& doc);
void mnuTrimLeadingAndTrailingSpaces_Click(CommandContext& ctx);
void mnuCnvDblSpcToSingle_Click(CommandContext& ctx);
void mnuReplaceDoubleBlankLineWithSingle_Click(CommandContext& ctx);
void mnuTrimSpaces_Click(CommandContext& ctx); // "Remove all blank lines"
void mnuRemoveCRLF_Click(CommandContext& ctx);
void mnuInsertBlankLines_Click(CommandContext& ctx);

// Every run of spaces shortened to one space.
QString collapseSpaces(QStringView s);

// Lines joined into paragraphs: a double line break (and every "^") becomes a paragraph break
// CR LF CR LF, every other CR LF a space, and then each pair of spaces (left to right, one pass)
// one space.
QString joinParagraphs(QStringView s);

} // namespace ed
