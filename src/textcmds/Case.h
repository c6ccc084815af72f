#pragma once
// Letter-case commands: lower, upper, proper case, capitalize words and crippled text. Each works
// on the selection when its own selection test finds one, otherwise on the whole text.

#include "app/Command.h"
#include "util/Utf8Document.h"

#include <QString>
#include <QStringView>

namespace ed {

void mnuConvertToLowerCase_Click(CommandContext& ctx);
void mnuConvertToUpperCase_Click(CommandContext& ctx);
void mnuConvertToProperCase_Click(CommandContext& ctx);
void mnuCapitalizeEachWord_Click(CommandContext& ctx);
void mnuConvertToCrippledText_Click(CommandContext& ctx);
// Lower and upper case of a whole UTF-8 document's bytes (see Utf8Commands.h).
void mnuConvertToLowerCase_Utf8(CommandContext& ctx, Utf8Document& doc);
void mnuConvertToUpperCase_Utf8(CommandContext& ctx, Utf8Document& doc);

// Lower case one character at a time (the simple Unicode mapping), so the result has exactly the
// length of `src` and every position in it matches the same position in `src`. Characters outside
// the Basic Multilingual Plane are mapped as whole surrogate pairs; a character whose lower case
// is more than one character (dotted capital I) stays as it is. `dst` is resized, and its
// capacity reused, so calling this for every line of a document allocates only on growth.
void lowerSameLength(QStringView src, QString& dst);

// The first character of every word in title case, every other character in lower case, with the
// simple per-character mappings (same length as `s`). A word begins at the start of the text and
// after every word boundary: any Unicode white space (space, tab, CR, LF, vertical tab, form feed,
// no-break space, the typographic spaces, line and paragraph separators, ...) and the NUL
// character. Punctuation is not a boundary, so "o'neil" becomes "O'neil", "jean-luc" becomes
// "Jean-luc" and "(note" stays "(note".
QString properCase(QStringView s);

// Lower case, then every character at an even position (1-based, counted in UTF-16 units like
// every position in the document) in upper case. A character outside the Basic Multilingual Plane
// takes two positions and is upper-cased when its first unit stands at an even position.
QString crippledCase(QStringView s);

} // namespace ed
