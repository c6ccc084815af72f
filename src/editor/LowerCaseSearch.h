#pragma once
// Searching a text with case ignored, the way Find compares: both texts lower-cased, then an
// exact search. The lower case used maps every character to one character (the simple Unicode
// mapping; a surrogate pair to a pair), so a text and its lower case have the same length and a
// match has the same position in both. The search runs in place: a large document is neither
// copied nor lower-cased as a whole.

#include <QString>
#include <QStringView>

namespace ed {

// The lower case as the search compares it; always as long as `text`.
QString lowerSameLength(QStringView text);

// 0-based index of the first occurrence of lowerSameLength(needle) in lowerSameLength(text) at or
// after `from`; -1 when there is none.
qsizetype indexOfIgnoringCase(QStringView text, QStringView needle, qsizetype from);

} // namespace ed
