#pragma once
// The RTF reader: RTF bytes -> paragraphs of formatted runs. It keeps the text and the character
// formatting of RtfContent and skips everything else (tables of styles and lists, pictures,
// document information, fields' instructions, headers, footers, footnotes, hidden text).
// Any input is safe: no crash, no hang, memory in proportion to the input.

#include "editor/RtfContent.h"

#include <QByteArray>
#include <QString>

namespace ed {

// True when the bytes begin with "{\rtf" (after an optional UTF-8 byte-order mark and
// white space).
bool looksLikeRtf(const QByteArray& bytes);

// The content of an RTF file. A truncated file gives what was read up to its end. Input that is
// not RTF at all, or that nests groups absurdly deep, gives empty content and a one-line reason
// in *error (when error is not null); otherwise *error is cleared.
RtfContent parseRtf(const QByteArray& rtf, QString* error = nullptr);

// The text of an RTF file with CR LF for every paragraph break and \line (see
// RtfContent::plainText); empty when the bytes are not RTF.
QString rtfToPlainText(const QByteArray& rtf);

} // namespace ed
