#pragma once
// RTF content <-> the edit control's QTextDocument, character formats included.

#include "editor/RtfContent.h"

#include <QByteArray>
#include <QString>

class QFont;
class QTextCharFormat;
class QTextDocument;

namespace ed {

QTextCharFormat toTextCharFormat(const RtfCharFormat& format);

// The format a character shows with: what the text format sets, the rest from the document's
// default font.
RtfCharFormat rtfCharFormatOf(const QTextCharFormat& format, const QFont& defaultFont);

// The document as RTF content: one paragraph per block, runs merged where formats agree.
RtfContent rtfContentOf(const QTextDocument& doc);

// Replaces the document's content with the content in one undoable step. A line break inside
// an RTF paragraph becomes a block of its own, so the editor sees it as CR LF like every other
// line break. False, with the document untouched and the reason in *error, when the bytes are
// not readable RTF.
bool readRtf(const QByteArray& rtf, QTextDocument& doc, QString* error = nullptr);

} // namespace ed
