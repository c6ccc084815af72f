#include "editor/DocumentStore.h"

#include "editor/PlainTextEditControl.h"
#include "editor/RtfDocument.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTextDocument>

namespace ed {

bool TextDocumentFiles::load(const QString& path, bool rtf, QString& error) {
    QByteArray bytes;
    if (!readFileBytes(path, bytes, error)) {
        edit_.setText(QString());
        return false;
    }
    // A file named .rtf that holds no RTF is opened as the text it is.
    if (rtf && looksLikeRtf(bytes))
        return loadRtf(bytes, error);
    format_ = decodeDocument(bytes, path);
    edit_.setText(format_.text);
    format_.text.clear(); // the control holds the text; keep only the format
    return true;
}

bool TextDocumentFiles::loadRtf(const QByteArray& bytes, QString&) {
    edit_.setText(rtfToPlainText(bytes));
    return true;
}

QByteArray TextDocumentFiles::saveRtf() {
    QTextDocument doc;
    QTextCursor(&doc).insertText(modelToWidgetText(edit_.text()));
    return writeRtf(doc);
}

bool TextDocumentFiles::save(const QString& path, bool rtf, QString& error) {
    if (path.isEmpty()) {
        error = QStringLiteral("the document has no file name");
        return false;
    }
    QByteArray bytes;
    if (rtf) {
        bytes = saveRtf();
        bytes += format_.format.lineBreak == LineBreak::CrLf ? "\r\n" : "\n";
    } else {
        bytes = encodeText(edit_.text() + QStringLiteral("\r\n"), format_.format);
    }
    return writeFileAtomically(path, bytes, error);
}

WidgetDocumentFiles::WidgetDocumentFiles(PlainTextEditControl& edit)
    : TextDocumentFiles(edit), widgetEdit_(edit) {}

bool WidgetDocumentFiles::loadRtf(const QByteArray& bytes, QString& error) {
    if (!readRtf(bytes, *widgetEdit_.widget()->document(), &error)) {
        edit_.setText(QString());
        return false;
    }
    widgetEdit_.documentLoadedAsRich();
    widgetEdit_.takeUserEdited();
    return true;
}

QByteArray WidgetDocumentFiles::saveRtf() { return writeRtf(*widgetEdit_.widget()->document()); }

} // namespace ed
