#pragma once
// Positional edits: break, insert into or cut every line at a marker the user types (Insert CR
// At, Insert Text At, Truncate Left Side, Truncate Right Side). The marker is found without
// regard to letter case; all four remember the answer under "Previous Switch At Text".

#include "app/Command.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace ed {

void mnuInsertCRAt_Click(CommandContext& ctx);
void mnuInsertTextAt_Click(CommandContext& ctx);
void mnuRemoveLeftSide_Click(CommandContext& ctx);
void mnuRemoveRightSide_Click(CommandContext& ctx);

// Finds a marker in lines, both lower-cased with the same-length mapping, so a position found in
// the lower-cased line is the same position in the line itself. Linear in the line's length
// whatever the marker and the occurrence asked for (overlapping occurrences are found without
// searching the same stretch again), and it reuses one buffer for all lines.
//
// An empty marker occurs at every position of a line: its n-th occurrence is the n-th character
// (counted in UTF-16 units, as all positions are), and an empty line holds none. So an empty
// marker cuts each line at a fixed column.
class MarkerSearch {
public:
    explicit MarkerSearch(QStringView marker);

    // 0-based index in `line` of the n-th occurrence (n >= 1; an occurrence may overlap the one
    // before it), or -1 when the line holds fewer than n.
    qsizetype nth(QStringView line, qint64 n);
    qsizetype markerLength() const { return marker_.size(); }

private:
    QString marker_;
    std::vector<qsizetype> border_; // longest proper border of each prefix of the marker
    QString lowerLine_;
    // A marker of ASCII characters other than letters is matched by those characters only,
    // whatever their case: such a marker is looked for in the line as it stands.
    bool lowerLines_ = true;
};

// The occurrence field of an answer as a 32-bit signed number: surrounding white space allowed,
// a decimal fraction rounded half to even. Anything else throws RuntimeError (not a number, or
// out of range).
qint32 occurrenceNumber(const QString& field);

} // namespace ed
