#pragma once
// rtbEdit: the edit control adapter over the QScintilla view. The view holds the document as the
// commands see it, UTF-8 bytes with CR LF line breaks, every byte as it stands (lone CRs and LFs,
// U+2028, U+2029, NUL). Model positions (UTF-16 code units, a CR LF counting two) map to byte
// offsets through the view's UTF-16 line index, never by converting the text.
//
// Every change of the document, typed or made by a command, is reported once by `changed` with
// the bytes removed and inserted, so the undo history never compares whole texts.

#include "app/Ports.h"
#include "editor/UndoHistory.h"
#include "editor/ViewLoader.h"
#include "editor/ViewStyles.h"

#include <QByteArray>
#include <QObject>

#include <memory>
#include <optional>

class QsciScintillaBase;

namespace ed {

class BusyWork;
class ViewStyles;

class ScintillaEditControl : public QObject,
                             public EditControl,
                             public EditView,
                             public HistoryTarget {
    Q_OBJECT
public:
    explicit ScintillaEditControl(QsciScintillaBase* view);
    ~ScintillaEditControl() override;

    // EditControl
    QString text() const override;
    void setText(const QString& text) override;
    int textLength() const override;
    int selStart() const override;
    void setSelStart(int start) override;
    int selLength() const override;
    void setSelLength(int length) override;
    QString selText() const override;
    void replaceRange(int start, int length, const QString& replacement) override;
    // A copy of the view's bytes: a command may keep it across its own changes.
    QByteArray utf8() const override;
    QByteArrayView utf8InPlace() const override { return bytes(); }
    // The new text goes in as one replacement of the part that differs.
    void setUtf8(const QByteArray& text) override;

    // EditView
    void setSelectionFont(const FontSpec& font) override;
    FontSpec selectionFont() const override;
    void setRightMargin(int twips) override;
    FontSpec documentFont() const override;
    void setSizeCycle(int start, int length, const QList<double>& cycle) override;
    void clearFormatting(const FontSpec& font) override;

    // The view's own bytes, valid until the next change of the document.
    QByteArrayView bytes() const;
    qsizetype byteLength() const;
    // A copy of the bytes [start, start + length), leaving the view's buffer as it is.
    QByteArray copyRange(qsizetype start, qsizetype length) const;
    // Replaces `length` bytes at `offset` by `with` (a whole UTF-8 text), reported by `changed`.
    // A change of megabytes in a plain document is built into a new document on a worker under
    // the busy indicator (see setBusyWork). Always true: nothing here can be cancelled.
    bool replaceBytes(qsizetype offset, qsizetype length, QByteArrayView with);
    // Where large changes run; without it, everything is changed on the window's thread.
    void setBusyWork(BusyWork* busy) { busy_ = busy; }
    qsizetype byteOffset(qsizetype modelPos) const;
    qsizetype modelPosition(qsizetype byteOffset) const;
    // True once the view's line index exists: positions are counted from the start of the text
    // until that has cost a few times the text, and looked up in the index after.
    bool hasIndex() const;
    void setCaretByte(qsizetype offset);
    qsizetype caretByte() const;
    struct Selection {
        qsizetype anchor = 0;
        qsizetype caret = 0;
        qsizetype start() const { return qMin(anchor, caret); }
        qsizetype end() const { return qMax(anchor, caret); }
    };
    Selection selectionBytes() const;
    void setSelectionBytes(qsizetype anchor, qsizetype caret);
    // Hands a selection set through this adapter to the view now (else it goes when the event
    // loop runs next).
    void flushSelection();

    // Shows a document built by a ViewLoader in one quick step: the text, the caret at 0, no
    // formats. The document counts as replaced, not edited.
    void adopt(ViewLoader&& loaded);
    // The document is filled from RTF: false with the reason when the bytes are not readable.
    bool loadRtf(const QByteArray& rtf, QString& error);
    // The same from an RTF file already read (ViewStyles::prepareRtf, on any thread).
    void showRtf(const ViewStyles::PreparedRtf& prepared);
    QByteArray saveRtf() const;

    QsciScintillaBase* view() const { return view_; }
    // A view that is never shown, for workers to ask for new documents (ViewLoader): the shown
    // view's own timers and painting run on the window's thread meanwhile, and a request to it
    // from a worker now and then crashed them.
    QsciScintillaBase* loaderView();
    ViewStyles& styles() const { return *styles_; }

    // HistoryTarget
    QByteArrayView historyBytes() const override { return bytes(); }
    bool replaceHistoryBytes(qsizetype offset, qsizetype length, QByteArrayView with) override;
    void placeHistoryCaret(qsizetype offset) override { setCaretByte(offset); }
    void restoreHistoryStyles(const StyleSnapshot& styles) override;

    // Counts every change and every replacement of the document.
    quint64 changeCount() const { return changes_; }
    // While false, changes are not reported by `changed` (a load, the history's own replay).
    void setReporting(bool on) { reporting_ = on; }

signals:
    // `removed` at `offset` became `inserted`; `typed` when the person made the change in the
    // view (typing, pasting through the view's own keys, dragging).
    void changed(qsizetype offset, const QByteArray& removed, const QByteArray& inserted,
                 bool typed);
    // The whole document was replaced (opened, reloaded): nothing to take back.
    void replaced();
    // Character formats changed (the text did not): `change` holds them before and after.
    void formatsChanged(const ByteChange& change);
    // A status-bar text about the document's formats.
    void notice(const QString& text);
    void caretMoved();

private:
    void modified(int position, int type, const char* text, int length);
    void prepareView();
    // Wraps as asked unless the document is too large for it.
    void applyWrap();
    // Gives the document a style byte per text byte if it has none, with its text when `keepText`
    // (else empty).
    void ensureStyles(bool keepText);
    // Shows `doc` (a document pointer from a ViewLoader) in place of the current document,
    // keeping the selection and the scrolling.
    void swapDocument(void* doc);
    // replaceBytes through a document built on a worker.
    bool replaceOnWorker(qsizetype offset, qsizetype length, QByteArrayView with);
    void steadyCaretOnLongLines();
    void ensureIndex() const;
    // True when mapping a position `bytes` into the text is cheaper by counting than by building
    // the line index; counts those bytes against the budget.
    bool scanInstead(qsizetype bytes) const;
    long send(unsigned msg, unsigned long w = 0, long l = 0) const;
    // Runs `change` on the formats of the bytes [start, start + length) as one undoable step.
    template <class F> void changeFormats(qsizetype start, qsizetype length, F change);

    QsciScintillaBase* view_;
    QsciScintillaBase* loaderView_ = nullptr; // a child of view_
    std::unique_ptr<ViewStyles> styles_;
    std::optional<Selection> pending_; // set here, not yet given to the view
    QByteArray beforeDelete_;          // what a deletion the view is about to make removes
    bool own_ = false;                 // the change under way comes from this adapter
    bool reporting_ = true;
    BusyWork* busy_ = nullptr;
    bool wrapWanted_ = true;
    int blinkMs_ = 500;
    quint64 changes_ = 0;
    mutable qsizetype length_ = -1; // textLength() as counted at change number lengthAt_
    mutable quint64 lengthAt_ = 0;
    // Bytes counted to map positions since this document had no line index (see modelPosition).
    mutable qsizetype scanned_ = 0;
};

} // namespace ed
