#pragma once
// The RTF writer: font table, colour table, and the text run by run with its font, size, bold,
// italic, underline and colour. Characters outside ASCII are written as \uN followed by a
// Windows-1252 fallback (or "?"), so any reader gets the text back.

#include "editor/RtfContent.h"

#include <QByteArray>

namespace ed {

// Reading the result gives the content back exactly (parseRtf(writeRtf(c)) == c for any c the
// reader produces).
QByteArray writeRtf(const RtfContent& content);

// A plain text (CR LF breaks) as content in one format: a paragraph per line; a lone CR or LF
// and U+2029 break paragraphs too, and NUL, which RTF cannot hold, is left out.
RtfContent plainRtfContent(QStringView model, const RtfCharFormat& format);

} // namespace ed
