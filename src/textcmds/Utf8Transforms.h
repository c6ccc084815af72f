#pragma once
// Whole-document commands done on the UTF-8 bytes of a file. Each gives exactly the bytes that
// decoding the file into the model, running the command there and encoding the result give.

#include "util/ByteWriter.h"
#include "util/Utf8Document.h"

#include <QByteArray>
#include <QString>

namespace ed {

// Every character in upper case (`upper`) or lower case, by its full mapping (sharp s becomes
// "SS"), as the case commands convert a whole text.
QByteArray convertCaseUtf8(QByteArrayView text, bool upper);

// Every U+0020 removed.
QByteArray removeSpacesUtf8(QByteArrayView text);

// Each line of the document becomes prefix + line + suffix with the spaces at both ends of the
// whole trimmed, followed by the document's line break (the last piece too, even when empty).
QByteArray affixLinesUtf8(const Utf8Document& doc, const QString& prefix, const QString& suffix);

} // namespace ed
