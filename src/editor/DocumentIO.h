#pragma once
// Reading and writing document files: bytes decoded into the CR LF model with the file's
// encoding and line-break style remembered, and written back safely in the same style.

#include "util/TextCodec.h"

#include <QByteArray>
#include <QString>

namespace ed {

struct LoadedDocument {
    QString text; // CR LF model
    TextFormat format = defaultTextFormat();
};

LoadedDocument decodeDocument(const QByteArray& bytes, const QString& path);
QByteArray encodeDocument(const QString& model, const LoadedDocument& doc);

// True when `path` names something that can be read as a file; else a one-line reason (no name,
// missing, a folder).
bool checkFileToRead(const QString& path, QString& error);
// Reads a whole file. False with a one-line reason (missing, a folder, unreadable).
bool readFileBytes(const QString& path, QByteArray& bytes, QString& error);
bool readDocumentFile(const QString& path, LoadedDocument& doc, QString& error);

// Writes all bytes or nothing: the old content stays whole when anything fails. The file keeps its
// owner, group, mode and hard links; a file in a folder that takes no new file is written in
// place, safely (see writeFileSafely).
bool writeFileAtomically(const QString& path, const QByteArray& bytes, QString& error);

// "rtf" for path/to/x.RTF: the text after the last "." of the trimmed path, lower-cased.
QString documentExtension(const QString& path);

} // namespace ed
