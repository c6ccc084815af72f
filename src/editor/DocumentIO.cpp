#include "editor/DocumentIO.h"

#include "util/SafeFileWrite.h"

#include <QFile>
#include <QFileInfo>

namespace ed {

LoadedDocument decodeDocument(const QByteArray& bytes, const QString&) {
    LoadedDocument doc;
    doc.text = decodeText(bytes, &doc.format);
    return doc;
}

QByteArray encodeDocument(const QString& model, const LoadedDocument& doc) {
    return encodeText(model, doc.format);
}

bool checkFileToRead(const QString& path, QString& error) {
    const QFileInfo fi(path);
    if (path.isEmpty()) {
        error = QStringLiteral("no file name given");
        return false;
    }
    if (!fi.exists()) {
        error = QStringLiteral("%1: no such file").arg(path);
        return false;
    }
    if (fi.isDir()) {
        error = QStringLiteral("%1 is a folder, not a file").arg(path);
        return false;
    }
    return true;
}

bool readFileBytes(const QString& path, QByteArray& bytes, QString& error) {
    if (!checkFileToRead(path, error))
        return false;
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot read %1: %2").arg(path, f.errorString());
        return false;
    }
    bytes = f.readAll();
    if (f.error() != QFileDevice::NoError) {
        error = QStringLiteral("cannot read %1: %2").arg(path, f.errorString());
        return false;
    }
    return true;
}

bool readDocumentFile(const QString& path, LoadedDocument& doc, QString& error) {
    QByteArray bytes;
    if (!readFileBytes(path, bytes, error))
        return false;
    doc = decodeDocument(bytes, path);
    return true;
}

bool writeFileAtomically(const QString& path, const QByteArray& bytes, QString& error) {
    return writeFileSafely(path, bytes, error);
}

QString documentExtension(const QString& path) {
    const QString p = path.trimmed();
    const qsizetype dot = p.lastIndexOf(u'.');
    if (dot < 0)
        return p.toLower(); // no "." at all: the whole text, as the last-separator helper gives
    return p.mid(dot + 1).toLower();
}

} // namespace ed
