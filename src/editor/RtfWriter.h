#pragma once
// The RTF writer: font table, colour table, and the text run by run with its font, size, bold,
// italic, underline and colour. Characters outside ASCII are written as \uN followed by a
// Windows-1252 fallback (or "?"), so any reader gets the text back.

#include "editor/RtfContent.h"

#include <QByteArray>

class QTextDocument;

namespace ed {

QByteArray writeRtf(const RtfContent& content);
QByteArray writeRtf(const QTextDocument& doc);

} // namespace ed
