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
    char16_t loneCr_ = 0x240D;
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
    char16_t loneCr_ = 0x240D; // what stands for a lone CR in the widget
    BusyWork* busy_ = nullptr;
    bool lineCountsPending_ = false;
    QElapsedTimer doubleClick_;
    QPoint doubleClickAt_;
    mutable std::vector<int> breaks_; // breaksBefore() per block, valid below breaksValid_
    mutable int breaksValid_ = 0;
};

// Model text (CR LF breaks) -> what the widget holds (one LF per break), and back.
// A CR that is not part of a line break is held in the widget as `loneCr` (see loneCrStandIn).
QString modelToWidgetText(const QString& model, char16_t loneCr = 0x240D);
QString widgetToModelText(const QString& raw, bool breaksInBlocks = false,
                          char16_t loneCr = 0x240D);
// The character that stands for a lone CR in the widget: the visible CR symbol, or when the text
// holds that symbol itself, a character it does not hold.
char16_t loneCrStandIn(const QString& model);

// Model text -> widget text in blocks of several lines (see above); `linesPerBlock` receives the
// number of lines of each block.
QString modelToWidgetBlocks(const QString& model, std::vector<int>& linesPerBlock,
                            char16_t loneCr = 0x240D);

} // namespace ed
