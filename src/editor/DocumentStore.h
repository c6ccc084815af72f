#pragma once
// Loading and saving the document in the edit control, as text or RTF, keeping the file's own
// encoding and line-break style. Writes are atomic: a failed save leaves the old file whole.

#include "app/Command.h"
#include "editor/DocumentIO.h"
#include "editor/FileIdentity.h"

namespace ed {

class BusyWork;
class ScintillaEditControl;

// Over any edit control; RTF is read as its text and written from the plain text.
class TextDocumentFiles : public DocumentFiles {
public:
    explicit TextDocumentFiles(EditControl& edit) : edit_(edit) {}
    LoadResult load(const QString& path, bool rtf, QString& error) override;
    bool save(const QString& path, bool rtf, QString& error) override;
    void reset() override;
    QString origin() const override { return origin_; }
    bool originChanged() const override;
    bool encodingFits() const override;
    void useUtf8() override { format_.format.encoding = Encoding::Utf8; }
    const TextFormat& format() const { return format_.format; }

protected:
    // The document now holds the content of `path` (loaded or saved): remember which file.
    void adoptOrigin(const QString& path);
    void forgetOrigin();
    virtual bool loadRtf(const QByteArray& bytes, QString& error);
    virtual QByteArray saveRtf();

    EditControl& edit_;
    LoadedDocument format_;
    QString origin_;
    FileIdentity originId_;
};

// Over the window's edit control: RTF keeps its fonts and colours.
class WidgetDocumentFiles : public TextDocumentFiles {
public:
    // With `busy`, a text file is read and made ready for the view on a worker, with a busy
    // indicator and Cancel while that takes long.
    WidgetDocumentFiles(ScintillaEditControl& edit, BusyWork* busy);
    LoadResult load(const QString& path, bool rtf, QString& error) override;

protected:
    bool loadRtf(const QByteArray& bytes, QString& error) override;
    QByteArray saveRtf() override;

private:
    ScintillaEditControl& widgetEdit_;
    BusyWork* busy_;
};

} // namespace ed
