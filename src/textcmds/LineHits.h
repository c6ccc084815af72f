#pragma once
// The lines of a text (model bytes, split at CR LF) that hold a pattern once the text is
// lower-cased, found in order without looking at each line on its own: blocks of whole lines are
// lower-cased into one buffer and searched at once, and a line costs something of its own only
// where the pattern was found in it. Where a block's lower case changed the length of a character
// in bytes, the line and place found are mapped back to the text by counting lines and
// characters, so what is reported is always in the text itself.

#include "textcmds/Utf8Lowering.h"
#include "util/ByteSearch.h"

#include <QByteArrayView>

namespace ed {

// A line holding the pattern: [start, end) are its bytes in the text (its CR LF left out) and
// `at` is where the pattern's first occurrence in the line starts, all offsets into the text.
struct LineHit {
    qsizetype start = 0;
    qsizetype end = 0;
    qsizetype at = 0;
};

class LineHits {
public:
    // `search` holds the pattern in lower case (as `lowering` gives it); no `lowering` searches
    // the text as it stands. A pattern that holds a CR LF is in no line.
    LineHits(QByteArrayView text, const ByteSearch& search, Utf8Lowering* lowering);

    // The next line holding the pattern; false when there is none.
    bool next(LineHit& hit);

private:
    bool loadBlock();
    // Maps the line [lineStart, lineEnd) of the block's lower case and a place in it to the text.
    LineHit mapBack(qsizetype lineStart, qsizetype lineEnd, qsizetype at);

    QByteArrayView text_;
    const ByteSearch& search_;
    Utf8Lowering* lowering_;
    bool none_ = false; // the pattern cannot be in any line

    qsizetype blockStart_ = 0; // in the text
    qsizetype blockEnd_ = -1;  // in the text: the CR of a CR LF, or the end; -1 before the first
    QByteArrayView low_;       // the block's lower case (or the block)
    bool sameOffsets_ = true;  // every offset in low_ is the same offset in the block
    qsizetype from_ = 0;       // where the search in low_ goes on
    qsizetype floor_ = 0;      // a line start in low_ at or before every later hit
    // A line start in low_ and the same line's start in the block, for mapping back.
    qsizetype lowLine_ = 0;
    qsizetype blockLine_ = 0;
};

} // namespace ed
