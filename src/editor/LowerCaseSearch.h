#pragma once
// Searching the document's bytes (UTF-8) with case ignored, the way Find compares: both texts
// lower-cased, then an exact search. The lower case used maps every character to one character
// (the simple Unicode mapping: dotted capital I is a plain i, sharp s stays), so a text and its
// lower case count the same UTF-16 units and a match has the same position in both. The document
// is lowered a piece at a time into one reused buffer and searched there in linear time.

#include <QByteArray>
#include <QByteArrayView>

namespace ed {

// The lower case as the search compares it; always as many UTF-16 units as `text`.
QByteArray lowerSameLength(QByteArrayView text);

// UTF-16 position (0-based) of the first occurrence of lowerSameLength(needle) in
// lowerSameLength(text) at or after UTF-16 position `from`; -1 when there is none.
qsizetype indexOfIgnoringCase(QByteArrayView text, QByteArrayView needle, qsizetype from);

} // namespace ed
