#pragma once
// rtbEdit: the edit control adapter over a QPlainTextEdit. The widget counts a line break as one
// position; the model counts CR LF as two. This class maps between the two.
//
// A text assigned as a whole is loaded in blocks of several lines: inside a block, a line break
// is a QChar::LineSeparator, between blocks a paragraph break. The widget's document costs
// several microseconds per block to build, so this keeps a document of hundreds of thousands of
// lines quick to load, while the user still sees, selects and edits ordinary lines.

#include "app/Ports.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>

#include <functional>
#include <memory>
#include <vector>

class QPlainTextEdit;
class QTextDocument;
class QThread;

namespace ed {

class BusyWork;
struct BusyToken;

// Characters the widget does not keep as they are, and what it holds in their place: a CR that is
// not part of a line break (the widget would take it for one; shown as the visible CR symbol),
// and U+2029, U+FDD0 and U+FDD1 (the widget's own paragraph and frame marks). Each stand-in is a
// character the text does not hold, so each comes back as what it stood for.
struct StandIns {
    char16_t loneCr = 0x240D;
    char16_t paragraph = 0xE000;
    char16_t frameStart = 0xE001;
    char16_t frameEnd = 0xE002;

    // The character `c` of the text as the widget holds it, and back.
    char16_t toWidget(char16_t c) const {
        if (c < 0x2029)
            return c;
        return c == 0x2029 ? paragraph : c == 0xFDD0 ? frameStart : c == 0xFDD1 ? frameEnd : c;
    }
    char16_t fromWidget(char16_t c) const {
        if (c < 0x240D)
            return c;
        return c == loneCr       ? u'\r'
               : c == paragraph  ? char16_t(0x2029)
               : c == frameStart ? char16_t(0xFDD0)
               : c == frameEnd   ? char16_t(0xFDD1)
                                 : c;
    }
    // True when `text` holds one of the stand-ins (it would be read back as another character).
    bool heldIn(const QString& text) const;
};

// Stand-ins none of which `text` holds: the visible CR symbol for a lone CR unless the text holds
// it, and characters of the private use area for the rest.
StandIns standInsFor(const QString& text);

// The widget's document for a whole text, built on any thread (a large one is built away from
// the window's thread) and then shown by PlainTextEditControl::adopt in one quick step.
class PreparedDocument {
public:
    // Builds the document for the model text `model` and hands it to the thread `owner`. With
    // `token`, reports its progress there and stops early when it is cancelled.
    PreparedDocument(const QString& model, QThread* owner, BusyToken* token = nullptr);
    ~PreparedDocument();
    PreparedDocument(const PreparedDocument&) = delete;
    PreparedDocument& operator=(const PreparedDocument&) = delete;

    const QString& text() const { return model_; }

private:
    friend class PlainTextEditControl;
    QString model_;
    std::unique_ptr<QTextDocument> doc_;
    std::vector<int> lines_; // lines per block when breaksInBlocks_
    bool breaksInBlocks_ = false;
    bool longLines_ = false;
    StandIns standIns_;
};

class PlainTextEditControl : public QObject, public EditControl, public EditView {
    Q_OBJECT
public:
    explicit PlainTextEditControl(QPlainTextEdit* widget);

    QString text() const override;
    void setText(const QString& text) override;
    // Shows a document prepared for a whole text: the same as setText(prepared.text()).
    void adopt(PreparedDocument&& prepared);
    // replaceRange that builds the new document on a worker under `busy` when the change is
    // most of a document of at least kLargeText characters. False when the user cancelled:
    // nothing was changed.
    bool replaceRangeCancellable(BusyWork& busy, const QString& what, int start, int length,
                                 const QString& replacement);
    static constexpr qsizetype kLargeText = qsizetype(1) << 20;
    // With `busy`, setText of a large text builds the document on a worker under a busy
    // indicator (without Cancel: the assignment is part of a command that has to finish).
    void setBusyWork(BusyWork* busy) { busy_ = busy; }
    int textLength() const override;
    int selStart() const override;
    void setSelStart(int start) override;
    int selLength() const override;
    void setSelLength(int length) override;
    QString selText() const override;
    void replaceRange(int start, int length, const QString& replacement) override;
    // Typing by the user (not an assignment through this adapter) since the last call.
    bool takeUserEdited();
    // The document was filled from RTF: it carries character formats and one paragraph per line.
    void documentLoadedAsRich();

    void setSelectionFont(const FontSpec& font) override;
    FontSpec selectionFont() const override;
    void setRightMargin(int twips) override;
    FontSpec documentFont() const override;
    void setSizeCycle(int start, int length, const QList<double>& cycle) override;
    void clearFormatting(const FontSpec& font) override;

    QPlainTextEdit* widget() const { return widget_; }

    // Model position of a widget position and back.
    int toModel(int widgetPos) const;
    int toWidget(int modelPos) const;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void applyShaping(bool longLines);
    // Builds the document for the text `makeText` gives on a worker under `busy` and shows it.
    // False when the user cancelled.
    bool adoptFromWorker(BusyWork& busy, const QString& what, std::function<QString()> makeText,
                         bool cancellable);
    void watchDocument();
    void contentsChanged(int from, int added);
    // Model line breaks before the start of the block numbered `block`.
    int breaksBefore(int block) const;
    // The widget forgets its estimate of each block's height in lines on a resize; give it back
    // the line counts of the blocks it has not laid out yet, so the scroll bar stays in lines.
    void restoreLineCounts();
    // A triple click selects one line, not the whole block. True when the event was taken.
    bool selectLineOnTripleClick(QEvent* event);

    QPlainTextEdit* widget_;
    mutable QString cache_;
    mutable bool cacheValid_ = false;
    bool ownEdit_ = false;
    bool userEdited_ = false;
    bool rich_ = false;
    // A QChar::LineSeparator in the widget is a line break of the model (the text had none).
    bool breaksInBlocks_ = false;
    StandIns standIns_; // what stands in the widget for the characters it does not keep
    BusyWork* busy_ = nullptr;
    bool lineCountsPending_ = false;
    QElapsedTimer doubleClick_;
    QPoint doubleClickAt_;
    mutable std::vector<int> breaks_; // breaksBefore() per block, valid below breaksValid_
    mutable int breaksValid_ = 0;
};

// Model text (CR LF breaks) -> what the widget holds (one LF per break), and back, with the
// characters the widget does not keep held as their stand-ins.
QString modelToWidgetText(const QString& model, const StandIns& standIns = StandIns());
QString widgetToModelText(const QString& raw, bool breaksInBlocks = false,
                          const StandIns& standIns = StandIns());

// Model text -> widget text in blocks of several lines (see above); `linesPerBlock` receives the
// number of lines of each block.
QString modelToWidgetBlocks(const QString& model, std::vector<int>& linesPerBlock,
                            const StandIns& standIns = StandIns());

} // namespace ed
