#pragma once
// The RTF writer: font table, colour table, and the text run by run with its font, size, bold,
// italic, underline and colour. Characters outside ASCII are written as \uN followed by a
// Windows-1252 fallback (or "?"), so any reader gets the text back.

#include "editor/RtfContent.h"

#include <QByteArray>
#include <QByteArrayView>

#include <array>


namespace ed {

// Reading the result gives the content back exactly (parseRtf(writeRtf(c)) == c for any c the
// reader produces).
QByteArray writeRtf(const RtfContent& content);

// The same for text as the edit view holds it: UTF-8 bytes whose CR LF pairs end paragraphs,
// the character starting at byte i in formats[styles[i]] (all in formats[0] when `styles` is
// empty). Gives what writeRtf gives for the content those paragraphs and runs make, without
// building it.
QByteArray writeRtf(QByteArrayView text, QByteArrayView styles,
                    const std::array<RtfCharFormat, 256>& formats);


} // namespace ed
