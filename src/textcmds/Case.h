#pragma once
// Letter-case commands: lower, upper, proper case, capitalize words and crippled text. Each works
// on the selection when its own selection test finds one, otherwise on the whole text.
//
// Lower and upper case use the full Unicode mappings (sharp s becomes "SS", dotted capital I
// becomes "i" and a combining dot). Proper case and crippled text map one character at a time by
// the simple mappings, and a character whose mapping would take a different number of UTF-16
// units stays as it is. Proper case starts a word at the start of the text and after every word
// boundary: any Unicode white space (space, tab, CR, LF, vertical tab, form feed, no-break
// space, the typographic spaces, line and paragraph separators, ...) and the NUL character.
// Punctuation is not a boundary, so "o'neil" becomes "O'neil". Crippled text upper-cases the
// characters at even positions (1-based, counted in UTF-16 units like every position in the
// document); a character outside the Basic Multilingual Plane takes two positions.

#include "app/Command.h"

#include <QString>
#include <QStringView>

namespace ed {

void mnuConvertToLowerCase_Click(CommandContext& ctx);
void mnuConvertToUpperCase_Click(CommandContext& ctx);
void mnuConvertToProperCase_Click(CommandContext& ctx);
void mnuCapitalizeEachWord_Click(CommandContext& ctx);
void mnuConvertToCrippledText_Click(CommandContext& ctx);

} // namespace ed
