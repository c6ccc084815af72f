#include "editor/PlainTextEditControl.h"

#include "editor/BusyWork.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QEvent>
#include <QMouseEvent>
#include <QPlainTextDocumentLayout>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QThread>
#include <QTimer>

#include <optional>

namespace ed {

bool StandIns::heldIn(const QString& text) const {
    for (char16_t c : {loneCr, paragraph, frameStart, frameEnd})
        if (text.contains(QChar(c)))
            return true;
    return false;
}

StandIns standInsFor(const QString& text) {
    // The private use area has room for far more characters than any text holds of it.
    char16_t next = 0xE000;
    const auto unused = [&] {
        while (next < 0xF8FF && text.contains(QChar(next)))
            ++next;
        return next++;
    };
    StandIns s;
    if (text.contains(QChar(s.loneCr))) // else the visible CR symbol
        s.loneCr = unused();
    s.paragraph = unused();
    s.frameStart = unused();
    s.frameEnd = unused();
    return s;
}

QString modelToWidgetText(const QString& model, const StandIns& standIns) {
    QString out(model.size(), Qt::Uninitialized);
    char16_t* d = reinterpret_cast<char16_t*>(out.data());
    const char16_t* s = reinterpret_cast<const char16_t*>(model.constData());
    const char16_t* end = s + model.size();
    while (s < end) {
        if (*s == u'\r') {
            if (s + 1 < end && s[1] == u'\n') {
                *d++ = u'\n';
                s += 2;
            } else {
                *d++ = standIns.loneCr;
                ++s;
            }
        } else {
            *d++ = standIns.toWidget(*s++);
        }
    }
    out.truncate(d - reinterpret_cast<char16_t*>(out.data()));
    return out;
}

namespace {
// Lines per block, and the size in characters at which a block takes no further line.
constexpr int kBlockLines = 16;
constexpr qsizetype kBlockChars = 4096;
} // namespace

QString modelToWidgetBlocks(const QString& model, std::vector<int>& linesPerBlock,
                            const StandIns& standIns) {
    linesPerBlock.clear();
    linesPerBlock.reserve(size_t(model.size() / 256 + 1));
    QString out(model.size(), Qt::Uninitialized);
    char16_t* const begin = reinterpret_cast<char16_t*>(out.data());
    char16_t* d = begin;
    const char16_t* s = reinterpret_cast<const char16_t*>(model.constData());
    const char16_t* end = s + model.size();
    char16_t* blockStart = d;
    int lines = 1;
    while (s < end) {
        if (*s != u'\r') {
            *d++ = standIns.toWidget(*s++);
        } else if (s + 1 < end && s[1] == u'\n') {
            s += 2;
            if (lines >= kBlockLines || d - blockStart >= kBlockChars) {
                *d++ = u'\n';
                linesPerBlock.push_back(lines);
                lines = 1;
                blockStart = d;
            } else {
                *d++ = QChar::LineSeparator;
                ++lines;
            }
        } else {
            *d++ = standIns.loneCr;
            ++s;
        }
    }
    linesPerBlock.push_back(lines);
    out.truncate(d - begin);
    return out;
}

QString widgetToModelText(const QString& raw, bool breaksInBlocks, const StandIns& standIns) {
    const auto isBreak = [breaksInBlocks](QChar c) {
        return c == QChar::ParagraphSeparator || c == u'\n' ||
               (breaksInBlocks && c == QChar::LineSeparator);
    };
    qsizetype breaks = 0;
    for (QChar c : raw)
        if (isBreak(c))
            ++breaks;
    QString out(raw.size() + breaks, Qt::Uninitialized);
    char16_t* d = reinterpret_cast<char16_t*>(out.data());
    for (QChar c : raw) {
        if (isBreak(c)) {
            *d++ = u'\r';
            *d++ = u'\n';
        } else {
            *d++ = standIns.fromWidget(c.unicode());
        }
    }
    return out;
}

PlainTextEditControl::PlainTextEditControl(QPlainTextEdit* widget)
    : QObject(widget), widget_(widget) {
    // The widget keeps no undo stack of its own: the window's history covers every change.
    widget_->setUndoRedoEnabled(false);
    watchDocument();
    widget_->installEventFilter(this);
    widget_->viewport()->installEventFilter(this);
}

void PlainTextEditControl::watchDocument() {
    QTextDocument* doc = widget_->document();
    connect(doc, &QTextDocument::contentsChanged, this, [this] {
        if (!ownEdit_) {
            cacheValid_ = false;
            userEdited_ = true;
        }
    });
    connect(doc, &QTextDocument::contentsChange, this,
            [this](int from, int, int added) { contentsChanged(from, added); });
}

void PlainTextEditControl::contentsChanged(int from, int added) {
    // Blocks before the change keep their place; the changed ones lose their known line count.
    QTextDocument* doc = widget_->document();
    QTextBlock b = doc->findBlock(from);
    if (!b.isValid())
        b = doc->lastBlock();
    breaksValid_ = qMin(breaksValid_, b.blockNumber() + 1);
    const QTextBlock last = doc->findBlock(from + added);
    for (; b.isValid(); b = b.next()) {
        b.setUserState(-1);
        if (b == last)
            break;
    }
}

int PlainTextEditControl::breaksBefore(int block) const {
    if (!breaksInBlocks_)
        return block;
    if (block < breaksValid_)
        return breaks_[size_t(block)];
    QTextDocument* doc = widget_->document();
    breaks_.resize(size_t(doc->blockCount()));
    if (breaksValid_ == 0) {
        breaks_[0] = 0;
        breaksValid_ = 1;
    }
    QTextBlock previous = doc->findBlockByNumber(breaksValid_ - 1);
    for (int i = breaksValid_; i <= block; ++i, previous = previous.next()) {
        const int inner = previous.userState() >= 1
                              ? previous.userState() - 1
                              : int(previous.text().count(QChar::LineSeparator));
        breaks_[size_t(i)] = breaks_[size_t(i - 1)] + 1 + inner;
    }
    breaksValid_ = block + 1;
    return breaks_[size_t(block)];
}

void PlainTextEditControl::restoreLineCounts() {
    lineCountsPending_ = false;
    if (!breaksInBlocks_)
        return;
    QTextDocument* doc = widget_->document();
    bool changed = false;
    for (QTextBlock b = doc->firstBlock(); b.isValid(); b = b.next()) {
        if (b.userState() > 1 && b.lineCount() == 1) {
            b.setLineCount(b.userState());
            changed = true;
        }
    }
    if (changed) {
        QAbstractTextDocumentLayout* layout = doc->documentLayout();
        emit layout->documentSizeChanged(layout->documentSize());
    }
}

bool PlainTextEditControl::selectLineOnTripleClick(QEvent* event) {
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::LeftButton)
        return false;
    if (event->type() == QEvent::MouseButtonDblClick) {
        doubleClick_.start();
        doubleClickAt_ = mouse->position().toPoint();
        return false;
    }
    if (event->type() != QEvent::MouseButtonPress || !doubleClick_.isValid() ||
        doubleClick_.elapsed() > QApplication::doubleClickInterval() ||
        (mouse->position().toPoint() - doubleClickAt_).manhattanLength() >
            QApplication::startDragDistance())
        return false;
    doubleClick_.invalidate();
    // The widget would select the whole block, which holds several lines: select the line.
    QTextCursor c = widget_->cursorForPosition(mouse->position().toPoint());
    const QTextBlock b = c.block();
    const QString t = b.text();
    const int at = c.positionInBlock();
    const int start = int(t.lastIndexOf(QChar::LineSeparator, at - 1)) + 1;
    int end = int(t.indexOf(QChar::LineSeparator, at));
    end = end < 0 ? int(t.size()) + (b.next().isValid() ? 1 : 0) : end + 1;
    c.setPosition(b.position() + start);
    c.setPosition(b.position() + end, QTextCursor::KeepAnchor);
    widget_->setTextCursor(c);
    return true;
}

bool PlainTextEditControl::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (watched == widget_->viewport() && breaksInBlocks_ &&
        (type == QEvent::MouseButtonDblClick || type == QEvent::MouseButtonPress))
        return selectLineOnTripleClick(event);
    if (watched == widget_ && breaksInBlocks_ && !lineCountsPending_ &&
        (type == QEvent::Resize || type == QEvent::FontChange)) {
        // After the widget has taken the new size and thrown its estimates away.
        lineCountsPending_ = true;
        QTimer::singleShot(0, this, &PlainTextEditControl::restoreLineCounts);
    }
    return QObject::eventFilter(watched, event);
}

void PlainTextEditControl::documentLoadedAsRich() {
    rich_ = true;
    breaksInBlocks_ = false;
    standIns_ = standInsFor(widget_->document()->toRawText());
    breaksValid_ = 0;
    cacheValid_ = false;
}

QString PlainTextEditControl::text() const {
    if (!cacheValid_) {
        cache_ = widgetToModelText(widget_->document()->toRawText(), breaksInBlocks_, standIns_);
        cacheValid_ = true;
    }
    return cache_;
}

namespace {
// Lines longer than this are laid out without complex shaping: the widget lays out a line as a
// whole, and shaping a line of megabytes would hold the window for many seconds.
constexpr qsizetype kLongLine = 100000;

qsizetype longestLine(const QString& text) {
    qsizetype longest = 0, start = 0;
    const qsizetype n = text.size();
    for (qsizetype i = text.indexOf(u'\n'); i >= 0; i = text.indexOf(u'\n', i + 1)) {
        longest = qMax(longest, i - start);
        start = i + 1;
    }
    return qMax(longest, n - start);
}
} // namespace

void PlainTextEditControl::applyShaping(bool longLines) {
    QFont f = widget_->font();
    const auto strategy = longLines ? QFont::PreferNoShaping : QFont::PreferDefault;
    if (f.styleStrategy() != strategy) {
        f.setStyleStrategy(strategy);
        widget_->setFont(f);
    }
}

PreparedDocument::PreparedDocument(const QString& model, QThread* owner, BusyToken* token)
    : model_(model) {
    // A text that holds line separators of its own keeps one line per block.
    breaksInBlocks_ = !model.contains(QChar::LineSeparator);
    longLines_ = longestLine(model) > kLongLine;
    standIns_ = standInsFor(model);
    const QString shown = breaksInBlocks_ ? modelToWidgetBlocks(model, lines_, standIns_)
                                          : modelToWidgetText(model, standIns_);
    // No layout yet: the widget gives the document its own when it shows it.
    doc_ = std::make_unique<QTextDocument>();
    doc_->setUndoRedoEnabled(false);
    // In slices, so that a large text reports how far it got and stops soon after a cancel.
    const int base = token ? qMax(0, token->percent.load()) : 0;
    constexpr qsizetype kSlice = qsizetype(1) << 20;
    QTextCursor end(doc_.get());
    for (qsizetype at = 0; at < shown.size();) {
        if (token && token->cancelled)
            break;
        qsizetype n = qMin(kSlice, shown.size() - at);
        if (at + n < shown.size() && QChar::isHighSurrogate(shown[at + n - 1].unicode()))
            ++n; // a surrogate pair stays whole
        end.insertText(shown.mid(at, n));
        at += n;
        if (token)
            token->percent = base + int((100 - base) * double(at) / double(shown.size()));
    }
    if (breaksInBlocks_) {
        QTextBlock b = doc_->firstBlock();
        for (size_t i = 0; i < lines_.size() && b.isValid(); ++i, b = b.next())
            b.setUserState(lines_[i]);
    }
    doc_->moveToThread(owner);
}

PreparedDocument::~PreparedDocument() {
    // Dropped on a worker after a cancel: the document belongs to the window's thread by now.
    if (doc_ && doc_->thread() != QThread::currentThread())
        doc_.release()->deleteLater();
}

void PlainTextEditControl::setText(const QString& text) {
    if (!busy_ || text.size() < kLargeText || QThread::currentThread() != thread()) {
        adopt(PreparedDocument(text, thread()));
        return;
    }
    adoptFromWorker(
        *busy_, QStringLiteral("Showing the document..."), [text] { return text; }, false);
}

bool PlainTextEditControl::adoptFromWorker(BusyWork& busy, const QString& what,
                                           std::function<QString()> makeText, bool cancellable) {
    struct Job : BusyToken {
        std::optional<PreparedDocument> prepared;
    };
    auto job = std::make_shared<Job>();
    QThread* ui = thread();
    auto work = [job, ui, makeText = std::move(makeText)] {
        const QString text = makeText();
        if (!job->cancelled)
            job->prepared.emplace(text, ui, job.get());
    };
    if (!busy.run(what, work, job, cancellable))
        return false;
    adopt(std::move(*job->prepared));
    return true;
}

void PlainTextEditControl::adopt(PreparedDocument&& prepared) {
    QTextDocument* doc = prepared.doc_.release();
    doc->setParent(this);
    doc->setDefaultFont(widget_->font());
    doc->setDocumentLayout(new QPlainTextDocumentLayout(doc));
    QTextDocument* old = widget_->document();
    const bool ownOld = old->parent() == this;
    disconnect(old, nullptr, this, nullptr);
    // A whole-text assignment replaces the content in one step and drops formatting.
    ownEdit_ = true;
    widget_->setDocument(doc);
    ownEdit_ = false;
    if (ownOld)
        delete old;
    watchDocument();
    applyShaping(prepared.longLines_);
    rich_ = false;
    breaksInBlocks_ = prepared.breaksInBlocks_;
    standIns_ = prepared.standIns_;
    cache_ = std::move(prepared.model_);
    cacheValid_ = true;
    if (breaksInBlocks_) {
        // What the load already knows: the breaks before each block.
        breaks_.resize(prepared.lines_.size());
        int before = 0;
        for (size_t i = 0; i < prepared.lines_.size(); ++i) {
            breaks_[i] = before;
            before += prepared.lines_[i];
        }
        breaksValid_ = int(prepared.lines_.size());
        restoreLineCounts();
        // Once more after the widget's own handling of the new document.
        lineCountsPending_ = true;
        QTimer::singleShot(0, this, &PlainTextEditControl::restoreLineCounts);
    } else {
        breaksValid_ = 0;
    }
    widget_->setTextCursor(QTextCursor(doc));
}

void PlainTextEditControl::replaceRange(int start, int length, const QString& replacement) {
    const QString before = text();
    // Most of the document changes: taking the whole new text is faster than editing it. A
    // replacement that holds a stand-in needs other stand-ins, and so the whole text too.
    if (qsizetype(length) * 2 > before.size() || standIns_.heldIn(replacement)) {
        QString after = before;
        after.replace(start, length, replacement);
        setText(after);
        return;
    }
    QTextCursor c(widget_->document());
    c.setPosition(toWidget(start));
    c.setPosition(toWidget(start + length), QTextCursor::KeepAnchor);
    ownEdit_ = true;
    c.insertText(modelToWidgetText(replacement, standIns_));
    ownEdit_ = false;
    cache_ = before;
    cache_.replace(start, length, replacement);
    cacheValid_ = true;
}

bool PlainTextEditControl::replaceRangeCancellable(BusyWork& busy, const QString& what, int start,
                                                   int length, const QString& replacement) {
    const QString before = text();
    if (before.size() < kLargeText || qsizetype(length) * 2 <= before.size()) {
        replaceRange(start, length, replacement);
        return true;
    }
    return adoptFromWorker(
        busy, what,
        [before, start, length, replacement] {
            QString after = before;
            return after.replace(start, length, replacement);
        },
        true);
}

bool PlainTextEditControl::takeUserEdited() {
    const bool edited = userEdited_;
    userEdited_ = false;
    return edited;
}

int PlainTextEditControl::textLength() const {
    return int(text().size());
}

int PlainTextEditControl::toModel(int w) const {
    QTextDocument* doc = widget_->document();
    QTextBlock b = doc->findBlock(w);
    if (!b.isValid())
        b = doc->lastBlock();
    int m = w + breaksBefore(b.blockNumber());
    if (breaksInBlocks_ && b.userState() != 1)
        m += int(b.text().left(w - b.position()).count(QChar::LineSeparator));
    return m;
}

int PlainTextEditControl::toWidget(int m) const {
    QTextDocument* doc = widget_->document();
    if (m <= 0)
        return 0;
    // The last block whose model start is at or before m.
    int lo = 0, hi = doc->blockCount() - 1;
    breaksBefore(hi);
    while (lo < hi) {
        const int mid = (lo + hi + 1) / 2;
        const QTextBlock b = doc->findBlockByNumber(mid);
        if (b.position() + breaksBefore(mid) <= m)
            lo = mid;
        else
            hi = mid - 1;
    }
    const QTextBlock b = doc->findBlockByNumber(lo);
    const int inBlock = m - (b.position() + breaksBefore(lo));
    const int blockEnd = b.length() - 1 + (b.next().isValid() ? 1 : 0);
    if (!breaksInBlocks_ || b.userState() == 1)
        return b.position() + qMin(inBlock, blockEnd);
    // Walk the block: a line separator stands for two model positions. A position between the
    // CR and the LF of a break lands after the break.
    const QString t = b.text();
    int w = 0, model = 0;
    for (; w < t.size() && model < inBlock; ++w)
        model += t[w] == QChar::LineSeparator ? 2 : 1;
    return b.position() + qMin(w + qMax(0, inBlock - model), blockEnd);
}

int PlainTextEditControl::selStart() const {
    return toModel(widget_->textCursor().selectionStart());
}

void PlainTextEditControl::setSelStart(int start) {
    QTextCursor c = widget_->textCursor();
    const int len = textLength();
    c.setPosition(toWidget(qBound(0, start, len)));
    widget_->setTextCursor(c);
}

int PlainTextEditControl::selLength() const {
    const QTextCursor c = widget_->textCursor();
    return toModel(c.selectionEnd()) - toModel(c.selectionStart());
}

void PlainTextEditControl::setSelLength(int length) {
    QTextCursor c = widget_->textCursor();
    const int start = toModel(c.selectionStart());
    const int end = qBound(start, start + qMax(0, length), textLength());
    c.setPosition(c.selectionStart());
    c.setPosition(toWidget(end), QTextCursor::KeepAnchor);
    widget_->setTextCursor(c);
}

QString PlainTextEditControl::selText() const {
    const int s = selStart();
    return text().mid(s, selLength());
}

void PlainTextEditControl::setSelectionFont(const FontSpec& font) {
    QTextCursor c = widget_->textCursor();
    const bool whole =
        c.selectionStart() == 0 && c.selectionEnd() >= widget_->document()->characterCount() - 1;
    if (whole && !rich_) {
        // The whole of a plain document: one font for the widget, no character formats.
        QFont f(font.name);
        if (font.size > 0)
            f.setPointSizeF(font.size);
        f.setBold(font.bold);
        f.setItalic(font.italic);
        f.setStyleStrategy(widget_->font().styleStrategy());
        if (f != widget_->font())
            widget_->setFont(f);
        return;
    }
    QTextCharFormat f;
    f.setFontFamilies({font.name});
    if (font.size > 0)
        f.setFontPointSize(font.size);
    f.setFontWeight(font.bold ? QFont::Bold : QFont::Normal);
    f.setFontItalic(font.italic);
    ownEdit_ = true;
    if (c.hasSelection())
        c.mergeCharFormat(f);
    else
        widget_->mergeCurrentCharFormat(f);
    ownEdit_ = false;
    rich_ = true;
}

FontSpec PlainTextEditControl::selectionFont() const {
    const QTextCharFormat f = widget_->textCursor().charFormat();
    FontSpec s;
    const QStringList fam = f.fontFamilies().toStringList();
    s.name = fam.isEmpty() ? widget_->font().family() : fam.first();
    s.size = f.fontPointSize() > 0 ? f.fontPointSize() : widget_->font().pointSizeF();
    s.bold = f.fontWeight() >= QFont::Bold;
    s.italic = f.fontItalic();
    return s;
}

FontSpec PlainTextEditControl::documentFont() const {
    const QFont f = widget_->font();
    FontSpec s;
    s.name = f.family();
    s.size = f.pointSizeF() > 0 ? f.pointSizeF() : s.size;
    s.bold = f.bold();
    s.italic = f.italic();
    return s;
}

void PlainTextEditControl::setSizeCycle(int start, int length, const QList<double>& cycle) {
    if (cycle.isEmpty() || length <= 0)
        return;
    std::vector<QTextCharFormat> formats(size_t(cycle.size()));
    for (qsizetype i = 0; i < cycle.size(); ++i)
        formats[size_t(i)].setFontPointSize(cycle[i]);
    QTextDocument* doc = widget_->document();
    const int from = toWidget(start);
    const int to = toWidget(start + length);
    QTextCursor c(doc);
    ownEdit_ = true;
    c.beginEditBlock();
    size_t next = 0;
    for (QTextBlock b = doc->findBlock(from); b.isValid() && b.position() < to; b = b.next()) {
        const QString t = b.text();
        const int at = b.position();
        // Up to and with the block's own break, unless the range ends before it (the last
        // block has no break of the document's).
        const int end = qMin(to - at, int(t.size()) + 1);
        for (int i = qMax(0, from - at); i < end;) {
            const int n =
                i + 1 < t.size() && t[i].isHighSurrogate() && t[i + 1].isLowSurrogate() ? 2 : 1;
            c.setPosition(at + i);
            c.setPosition(at + i + n, QTextCursor::KeepAnchor);
            c.mergeCharFormat(formats[next]);
            next = next + 1 == formats.size() ? 0 : next + 1;
            i += n;
        }
    }
    c.endEditBlock();
    ownEdit_ = false;
    rich_ = true;
}

void PlainTextEditControl::clearFormatting(const FontSpec& font) {
    QTextCursor c(widget_->document());
    ownEdit_ = true;
    c.beginEditBlock();
    c.select(QTextCursor::Document);
    c.setCharFormat(QTextCharFormat());
    c.setBlockCharFormat(QTextCharFormat());
    c.endEditBlock();
    ownEdit_ = false;
    rich_ = false;
    // What is left is the document's font: the widget's.
    QFont f(font.name);
    if (font.size > 0)
        f.setPointSizeF(font.size);
    f.setBold(font.bold);
    f.setItalic(font.italic);
    f.setStyleStrategy(widget_->font().styleStrategy());
    widget_->setFont(f);
}

void PlainTextEditControl::setRightMargin(int twips) {
    widget_->setLineWrapMode(twips == 0 ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
}

} // namespace ed
