#pragma once
// RTF content <-> the document's text as the commands see it (UTF-8 bytes, CR LF line breaks)
// with a character format for each stretch of bytes. The edit view keeps its formats as one
// number per byte; the batch runner has none and writes its text in one font. Qt Core only.

#include "app/Ports.h"
#include "editor/RtfContent.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QHashFunctions>
#include <QList>

namespace ed {

size_t qHash(const RtfCharFormat& format, size_t seed = 0) noexcept;

// The format a character has when it has none of its own: the document's font, no underline,
// the default colour.
RtfCharFormat rtfFormatOf(const FontSpec& font);

// A stretch of text bytes in one format: an index into RtfText::formats, or -1 for no format of
// its own (only line breaks of a document without any text).
struct FormatRun {
    qsizetype bytes = 0;
    int format = -1;
};

// RTF content laid out as the document's text: every paragraph break and \line as CR LF, each
// line break in the format of the text before it. The runs cover the text in order, two
// neighbours never share a format, and `formats` holds each format once.
struct RtfText {
    QByteArray text;
    QList<FormatRun> runs;
    QList<RtfCharFormat> formats;
};
RtfText rtfTextOf(const RtfContent& content);

// A document of plain text as RTF, every character in `font`.
QByteArray plainTextToRtf(QByteArrayView modelUtf8, const FontSpec& font);

} // namespace ed
