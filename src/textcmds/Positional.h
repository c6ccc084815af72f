#pragma once
// Positional edits: break, insert into or cut every line at a marker the user types (Insert CR
// At, Insert Text At, Truncate Left Side, Truncate Right Side). The marker is found without
// regard to letter case, character for character (the simple lower case of both), so a place
// found in the lower case is the same character in the line; all four remember the answer under
// "Previous Switch At Text".
//
// An empty marker occurs at every position of a line: its n-th occurrence is the n-th character
// (counted in UTF-16 units, as all positions are), and an empty line holds none. So an empty
// marker cuts each line at a fixed column. A cut never falls between the two halves of a
// character outside the Basic Multilingual Plane: such a character stays whole on the first side.

#include "app/Command.h"

#include <QString>

namespace ed {

void mnuInsertCRAt_Click(CommandContext& ctx);
void mnuInsertTextAt_Click(CommandContext& ctx);
void mnuRemoveLeftSide_Click(CommandContext& ctx);
void mnuRemoveRightSide_Click(CommandContext& ctx);

// Every line holding `marker` (not empty; found as the positional edits find theirs) as the text
// after its first occurrence, the occurrence as it stands, and the text before it; the other lines
// as they are; each line followed by CR LF.
QByteArray switchAtMarker(QByteArrayView text, const QString& marker);

// The occurrence field of an answer as a 32-bit signed number: surrounding white space allowed,
// a decimal fraction rounded half to even. Anything else throws RuntimeError (not a number, or
// out of range).
qint32 occurrenceNumber(const QString& field);

} // namespace ed
