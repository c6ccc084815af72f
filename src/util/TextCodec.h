#pragma once
// Bytes of a text file <-> the document model (UTF-16, every line break CR LF).
// Decoding remembers the file's encoding and line-break style so that encoding gives back the
// same bytes for everything that was not edited.

#include <QByteArray>
#include <QString>

namespace ed {

enum class Encoding { Utf8, Utf8Bom, Utf16LE, Utf16BE, Latin1 };
// CrLf: breaks are CR LF in the file. Lf: LF (a CR before it is an ordinary character).
// Cr: lone CR (no LF anywhere in the file).
enum class LineBreak { CrLf, Lf, Cr };

struct TextFormat {
    Encoding encoding = Encoding::Utf8;
    LineBreak lineBreak = LineBreak::Lf;
};

// The format of a new document: UTF-8 and the platform's line break.
TextFormat defaultTextFormat();

QString decodeText(const QByteArray& bytes, TextFormat* format);
QByteArray encodeText(const QString& model, const TextFormat& format);

// The same on the model's UTF-8 bytes (CR LF breaks), the form the commands work on. A UTF-8 file
// with CR LF breaks is taken as it is, without a copy.
QByteArray decodeToModel(const QByteArray& bytes, TextFormat* format);
QByteArray encodeModel(const QByteArray& model, const TextFormat& format);

// Line-break conversion of the model alone.
QString toModelBreaks(const QString& text, LineBreak style);
QString fromModelBreaks(const QString& model, LineBreak style);

const char* encodingName(Encoding encoding);
const char* lineBreakName(LineBreak lineBreak);

} // namespace ed
