#include "editor/DocumentStore.h"

#include "editor/PlainTextEditControl.h"
#include "editor/RtfDocument.h"
#include "editor/RtfPlain.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include "editor/BusyWork.h"

#include <QPlainTextEdit>
#include <QTextDocument>
#include <QThread>

#include <memory>
#include <optional>

namespace ed {

void TextDocumentFiles::reset() {
    format_ = LoadedDocument();
    forgetOrigin();
}

void TextDocumentFiles::adoptOrigin(const QString& path) {
    origin_ = path;
    originId_ = FileIdentity::of(path);
}

void TextDocumentFiles::forgetOrigin() {
    origin_.clear();
    originId_ = FileIdentity();
}

bool TextDocumentFiles::originChanged() const {
    return !origin_.isEmpty() && FileIdentity::of(origin_) != originId_;
}

bool TextDocumentFiles::encodingFits() const {
    if (format_.format.encoding != Encoding::Latin1)
        return true;
    const QString text = edit_.text();
    for (QChar c : text)
        if (c.unicode() > 0xFF)
            return false;
    return true;
}

DocumentFiles::LoadResult TextDocumentFiles::load(const QString& path, bool rtf, QString& error) {
    // Taken before reading, so a change made while reading shows as a change.
    const FileIdentity before = FileIdentity::of(path);
    QByteArray bytes;
    if (!readFileBytes(path, bytes, error)) {
        forgetOrigin();
        edit_.setText(QString());
        return LoadResult::Failed;
    }
    // A file named .rtf that holds no RTF is opened as the text it is.
    if (rtf && looksLikeRtf(bytes)) {
        forgetOrigin();
        if (!loadRtf(bytes, error))
            return LoadResult::Failed;
    } else {
        format_ = decodeDocument(bytes, path);
        edit_.setText(format_.text);
        format_.text.clear(); // the control holds the text; keep only the format
    }
    origin_ = path;
    originId_ = before;
    return LoadResult::Loaded;
}

bool TextDocumentFiles::loadRtf(const QByteArray& bytes, QString&) {
    edit_.setText(rtfToPlainText(bytes));
    return true;
}

QByteArray TextDocumentFiles::saveRtf() {
    // No window, no fonts of its own: the text in the default font.
    return plainTextToRtf(edit_.utf8(), FontSpec());
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
    if (!writeFileAtomically(path, bytes, error))
        return false;
    adoptOrigin(path);
    return true;
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
    const FileIdentity before = FileIdentity::of(path);
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
    forgetOrigin();
    if (!job->read) {
        error = job->error;
        edit_.setText(QString());
        return LoadResult::Failed;
    }
    if (job->isRtf) {
        if (!loadRtf(job->bytes, error))
            return LoadResult::Failed;
    } else {
        format_ = std::move(job->loaded);
        widgetEdit_.adopt(std::move(*job->prepared));
    }
    origin_ = path;
    originId_ = before;
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
