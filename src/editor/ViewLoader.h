#pragma once
// Builds a document for the QScintilla view away from the window's thread: made and filled with
// the text on a worker, then shown by the edit control in one step.

#include <QByteArrayView>

#include <atomic>

class QsciScintillaBase;

namespace ed {

class ViewLoader {
public:
    // On the window's thread. `sizeHint` is about how many bytes will come: the document takes
    // that much memory (and clears it) when the first bytes come, on the thread that adds them.
    ViewLoader(QsciScintillaBase* view, qsizetype sizeHint, bool withStyles = true);
    ~ViewLoader(); // drops a document that was not taken
    ViewLoader(ViewLoader&& other) noexcept;
    ViewLoader& operator=(ViewLoader&&) = delete;
    ViewLoader(const ViewLoader&) = delete;
    ViewLoader& operator=(const ViewLoader&) = delete;

    // On any one thread at a time: appends UTF-8 bytes with CR LF breaks. With `cancelled`,
    // stops early once it is set; with `percent`, reports from `from` to `to` percent as it goes.
    // False when the view could not take the bytes (out of memory) or it was cancelled.
    bool add(QByteArrayView bytes, const std::atomic<bool>* cancelled = nullptr,
             std::atomic<int>* percent = nullptr, int from = 0, int to = 100);

    // The document (a Scintilla document pointer), which the caller now owns.
    void* takeDocument();

private:
    struct Loader; // the view's loader interface
    // Asks the view for the loader: a new document, made on the worker that fills it (making it
    // clears its memory, which takes long for a large one). Give it a view that is never shown
    // (ScintillaEditControl::loaderView): the view answering runs on the worker.
    bool make();

    QsciScintillaBase* view_;
    qsizetype sizeHint_;
    bool withStyles_;
    Loader* loader_ = nullptr;
    bool failed_ = false;
};

} // namespace ed
