#pragma once
// Bytes of a text file <-> the document model (UTF-16, every line break CR LF).
// Decoding remembers the file's encoding and line-break style so that encoding gives back the
// same bytes for everything that was not edited.

#include <QByteArray>
#include <QString>

#include <functional>

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
// The same model handed to `sink` a piece at a time, so that no whole copy of it is made.
// `sink(piece, done)` gets the next piece and how many bytes of `bytes` it has used up so far
// (the caller may release those); it returns false to stop. False when it stopped.
bool decodeToModelInPieces(const QByteArray& bytes, TextFormat* format,
                           const std::function<bool(QByteArrayView piece, qsizetype done)>& sink);
// Gives the memory of the whole pages inside [data, data + bytes) back to the system; their
// content is gone (reads give zeros). For a buffer that is read once, front to back.
void releasePages(const char* data, qsizetype bytes);
QByteArray encodeModel(const QByteArray& model, const TextFormat& format);

// Line-break conversion of the model alone.
QString toModelBreaks(const QString& text, LineBreak style);
QString fromModelBreaks(const QString& model, LineBreak style);

const char* encodingName(Encoding encoding);
const char* lineBreakName(LineBreak lineBreak);

} // namespace ed
