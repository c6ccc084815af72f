#include "editor/DocumentStore.h"

#include "editor/BusyWork.h"
#include "editor/RtfPlain.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"
#include "editor/ScintillaEditControl.h"
#include "util/ModelText.h"

#include <QFileInfo>

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
    // A lead byte from 0xC4 on starts a character beyond U+00FF.
    const QByteArray text = edit_.utf8();
    for (char c : text)
        if (uchar(c) >= 0xC4)
            return false;
    return true;
}

DocumentFiles::LoadResult TextDocumentFiles::load(const QString& path, bool rtf, QString& error) {
    // Taken before reading, so a change made while reading shows as a change.
    const FileIdentity before = FileIdentity::of(path);
    QByteArray bytes;
    if (!readFileBytes(path, bytes, error)) {
        forgetOrigin();
        edit_.setUtf8(QByteArray());
        return LoadResult::Failed;
    }
    // A file named .rtf that holds no RTF is opened as the text it is.
    if (rtf && looksLikeRtf(bytes)) {
        forgetOrigin();
        if (!loadRtf(bytes, error))
            return LoadResult::Failed;
    } else {
        format_ = LoadedDocument();
        edit_.setUtf8(decodeToModel(bytes, &format_.format));
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
        bytes = encodeModel(edit_.utf8() + "\r\n", format_.format);
    }
    if (!writeFileAtomically(path, bytes, error))
        return false;
    adoptOrigin(path);
    return true;
}

WidgetDocumentFiles::WidgetDocumentFiles(ScintillaEditControl& edit, BusyWork* busy)
    : TextDocumentFiles(edit), widgetEdit_(edit), busy_(busy) {}

DocumentFiles::LoadResult WidgetDocumentFiles::load(const QString& path, bool rtf, QString& error) {
    if (!busy_)
        return TextDocumentFiles::load(path, rtf, error);
    struct Job : BusyToken {
        QString path;
        QString error;
        bool read = false;
        bool isRtf = false;
        bool shown = false;
        QByteArray bytes;
        TextFormat format;
        std::optional<ViewLoader> loader;
        ViewStyles::PreparedRtf rtf;
    };
    auto job = std::make_shared<Job>();
    job->path = path;
    const FileIdentity before = FileIdentity::of(path);
    job->loader.emplace(widgetEdit_.loaderView(), QFileInfo(path).size(), false);
    auto work = [job, rtf] {
        if (!readFileBytes(job->path, job->bytes, job->error))
            return;
        job->read = true;
        job->percent = 10;
        // RTF is read here; only filling the view with its text and formats is left to the
        // window's thread.
        if (rtf && looksLikeRtf(job->bytes)) {
            job->isRtf = true;
            job->shown =
                ViewStyles::prepareRtf(std::exchange(job->bytes, {}), job->rtf, &job->error);
            return;
        }
        // The file's bytes go to the view a piece at a time, and the memory of each piece goes
        // back as soon as the view holds it: no second whole copy of the document exists.
        const QByteArray bytes = std::exchange(job->bytes, {});
        const double total = double(qMax<qsizetype>(1, bytes.size()));
        qsizetype released = 0;
        job->shown =
            decodeToModelInPieces(bytes, &job->format, [&](QByteArrayView piece, qsizetype done) {
                if (job->cancelled || !job->loader->add(piece))
                    return false;
                if (bytes.isDetached())
                    releasePages(bytes.constData() + released, done - released);
                released = done;
                job->percent = 10 + int(90 * (double(done) / total));
                return true;
            });
        if (!job->shown && !job->cancelled)
            job->error = QStringLiteral("%1: not enough memory to show it").arg(job->path);
    };
    if (!busy_->run(QStringLiteral("Opening \"%1\"...").arg(path), work, job))
        return LoadResult::Cancelled;
    forgetOrigin();
    if (!job->read || !job->shown) {
        error = job->error;
        edit_.setUtf8(QByteArray());
        return LoadResult::Failed;
    }
    if (job->isRtf) {
        widgetEdit_.showRtf(std::exchange(job->rtf, {}));
    } else {
        format_ = LoadedDocument();
        format_.format = job->format;
        widgetEdit_.adopt(std::move(*job->loader));
    }
    origin_ = path;
    originId_ = before;
    return LoadResult::Loaded;
}

bool WidgetDocumentFiles::loadRtf(const QByteArray& bytes, QString& error) {
    if (!widgetEdit_.loadRtf(bytes, error)) {
        edit_.setUtf8(QByteArray());
        return false;
    }
    return true;
}

QByteArray WidgetDocumentFiles::saveRtf() {
    return widgetEdit_.saveRtf();
}

} // namespace ed
