#include "editor/DocumentStore.h"

#include "editor/PlainTextEditControl.h"
#include "editor/RtfDocument.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include "editor/BusyWork.h"

#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTextDocument>
#include <QThread>

#include <memory>
#include <optional>

namespace ed {

DocumentFiles::LoadResult TextDocumentFiles::load(const QString& path, bool rtf, QString& error) {
    QByteArray bytes;
    if (!readFileBytes(path, bytes, error)) {
        edit_.setText(QString());
        return LoadResult::Failed;
    }
    // A file named .rtf that holds no RTF is opened as the text it is.
    if (rtf && looksLikeRtf(bytes))
        return loadRtf(bytes, error) ? LoadResult::Loaded : LoadResult::Failed;
    format_ = decodeDocument(bytes, path);
    edit_.setText(format_.text);
    format_.text.clear(); // the control holds the text; keep only the format
    return LoadResult::Loaded;
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

WidgetDocumentFiles::WidgetDocumentFiles(PlainTextEditControl& edit, BusyWork* busy)
    : TextDocumentFiles(edit), widgetEdit_(edit), busy_(busy) {}

DocumentFiles::LoadResult WidgetDocumentFiles::load(const QString& path, bool rtf, QString& error) {
    if (!busy_)
        return TextDocumentFiles::load(path, rtf, error);
    struct Job : BusyToken {
        QString path;
        QString error;
        bool read = false;
        bool isRtf = false;
        QByteArray bytes;
        LoadedDocument loaded;
        std::optional<PreparedDocument> prepared;
    };
    auto job = std::make_shared<Job>();
    job->path = path;
    QThread* ui = QThread::currentThread();
    auto work = [job, rtf, ui] {
        if (!readFileBytes(job->path, job->bytes, job->error))
            return;
        job->read = true;
        job->percent = 10;
        // RTF fills the widget's own document, on the window's thread.
        if (rtf && looksLikeRtf(job->bytes)) {
            job->isRtf = true;
            return;
        }
        job->loaded = decodeDocument(job->bytes, job->path);
        job->bytes = QByteArray();
        job->percent = 30;
        if (job->cancelled)
            return;
        job->prepared.emplace(job->loaded.text, ui, job.get());
        job->loaded.text.clear(); // the control holds the text; keep only the format
    };
    if (!busy_->run(QStringLiteral("Opening \"%1\"...").arg(path), work, job))
        return LoadResult::Cancelled;
    if (!job->read) {
        error = job->error;
        edit_.setText(QString());
        return LoadResult::Failed;
    }
    if (job->isRtf)
        return loadRtf(job->bytes, error) ? LoadResult::Loaded : LoadResult::Failed;
    format_ = std::move(job->loaded);
    widgetEdit_.adopt(std::move(*job->prepared));
    return LoadResult::Loaded;
}

bool WidgetDocumentFiles::loadRtf(const QByteArray& bytes, QString& error) {
    if (!readRtf(bytes, *widgetEdit_.widget()->document(), &error)) {
        edit_.setText(QString());
        return false;
    }
    widgetEdit_.documentLoadedAsRich();
    widgetEdit_.takeUserEdited();
    return true;
}

QByteArray WidgetDocumentFiles::saveRtf() {
    return writeRtf(*widgetEdit_.widget()->document());
}

} // namespace ed
