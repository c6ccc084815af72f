#include "editor/ScintillaEditControl.h"

#include "editor/BusyWork.h"
#include "editor/ViewStyles.h"
#include "util/HugePages.h"
#include "util/ModelText.h"

#include <Qsci/qsciscintillabase.h>

#include <QThread>
#include <QTimer>

#include <cstring>
#include <new>
#include <optional>

namespace ed {

namespace {
using Sci = QsciScintillaBase;

// The view lays out a line as a whole, and wrapping lays out every line of the document. Above
// these sizes the view does not wrap (a wrapped document of this size would keep the processor
// busy for many seconds after every change) and the caret on a line does not blink (each blink
// would lay out the line again).
constexpr qsizetype kWrapLimit = qsizetype(4) << 20;
constexpr qsizetype kSteadyCaretLine = 64 * 1024;
// A change of this many bytes is built into a new document on a worker.
constexpr qsizetype kWorkerChange = qsizetype(4) << 20;

// How many bytes `a` and `b` (both at least `n` long) have in common from their start, or with
// `step` -1, up to their ends.
qsizetype commonRun(const char* a, const char* b, qsizetype n, int step) {
    constexpr qsizetype kBlock = 4096;
    qsizetype i = 0;
    if (step > 0) {
        while (n - i >= kBlock && std::memcmp(a + i, b + i, kBlock) == 0)
            i += kBlock;
        while (i < n && a[i] == b[i])
            ++i;
    } else {
        while (n - i >= kBlock && std::memcmp(a - i - kBlock, b - i - kBlock, kBlock) == 0)
            i += kBlock;
        while (i < n && a[-1 - i] == b[-1 - i])
            ++i;
    }
    return i;
}

// The first byte of the character holding byte `i` of `b` (a CR LF counts as one character).
qsizetype charStart(QByteArrayView b, qsizetype i) {
    while (i > 0 && i < b.size() && (uchar(b[i]) & 0xC0) == 0x80)
        --i;
    if (i > 0 && i < b.size() && b[i] == '\n' && b[i - 1] == '\r')
        --i;
    return i;
}
} // namespace

ScintillaEditControl::ScintillaEditControl(QsciScintillaBase* view)
    : QObject(view), view_(view), styles_(std::make_unique<ViewStyles>(view)) {
    prepareView();
    // The hidden view for workers is made once the window is idle, not when a file is opened.
    QTimer::singleShot(0, this, [this] { loaderView(); });
    // Keys the view would take for its own undo and redo, or for cutting: those are the menu's.
    for (int key : {'Z', 'Y'})
        for (int mods : {int(Sci::SCMOD_CTRL), int(Sci::SCMOD_CTRL | Sci::SCMOD_SHIFT)})
            send(Sci::SCI_CLEARCMDKEY, ulong(key + (mods << 16)));
    send(Sci::SCI_USEPOPUP, Sci::SC_POPUP_NEVER);
    send(Sci::SCI_SETMARGINWIDTHN, 1, 0);
    send(Sci::SCI_SETSCROLLWIDTH, 1);
    send(Sci::SCI_SETSCROLLWIDTHTRACKING, 1);
    send(Sci::SCI_SETWRAPMODE, Sci::SC_WRAP_WORD);
    send(Sci::SCI_SETLAYOUTCACHE, Sci::SC_CACHE_PAGE);
    connect(view_, &Sci::SCN_MODIFIED, this,
            [this](int position, int type, const char* text, int length, int, int, int, int, int,
                   int) { modified(position, type, text, length); });
    connect(view_, &Sci::SCN_UPDATEUI, this, [this](int) {
        steadyCaretOnLongLines();
        emit caretMoved();
    });
    blinkMs_ = int(send(Sci::SCI_GETCARETPERIOD));
}

ScintillaEditControl::~ScintillaEditControl() = default;

long ScintillaEditControl::send(unsigned msg, unsigned long w, long l) const {
    return view_->SendScintilla(msg, w, l);
}

// What every document of the view needs: its own settings travel with the document.
void ScintillaEditControl::prepareView() {
    send(Sci::SCI_SETCODEPAGE, Sci::SC_CP_UTF8);
    send(Sci::SCI_SETEOLMODE, Sci::SC_EOL_CRLF);
    send(Sci::SCI_SETUNDOCOLLECTION, 0);
    send(Sci::SCI_EMPTYUNDOBUFFER);
    send(Sci::SCI_SETMODEVENTMASK,
         Sci::SC_MOD_INSERTTEXT | Sci::SC_MOD_DELETETEXT | Sci::SC_MOD_BEFOREDELETE);
}

void ScintillaEditControl::modified(int position, int type, const char* text, int length) {
    if (type & Sci::SC_MOD_BEFOREDELETE) {
        if (!own_ && reporting_)
            beforeDelete_ = copyRange(position, length);
        return;
    }
    if (!(type & (Sci::SC_MOD_INSERTTEXT | Sci::SC_MOD_DELETETEXT)))
        return;
    ++changes_;
    if (own_ || !reporting_)
        return;
    if (type & Sci::SC_MOD_INSERTTEXT) {
        // Typed text takes the format of the text before it, here, before the view paints it.
        // (Only text changes are reported to this handler, so restyling does not come back.)
        if (styles_->isRich())
            styles_->inheritFormat(position, length);
        emit changed(position, QByteArray(), QByteArray(text, length), true);
    } else
        emit changed(position, std::exchange(beforeDelete_, QByteArray()), QByteArray(), true);
}

QByteArray ScintillaEditControl::copyRange(qsizetype start, qsizetype length) const {
    // Read across the view's gap where it is: a keystroke in the middle of a large document
    // then moves nothing.
    if (length <= 0)
        return QByteArray();
    QByteArray out(length, Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(length));
    view_->SendScintilla(Sci::SCI_GETTEXTRANGE, long(start), long(start + length), out.data());
    return out;
}

QsciScintillaBase* ScintillaEditControl::loaderView() {
    if (!loaderView_) {
        loaderView_ = new QsciScintillaBase(view_);
        loaderView_->hide();
    }
    return loaderView_;
}

QByteArrayView ScintillaEditControl::bytes() const {
    // Moves the view's gap to the end once; later calls move nothing, so a worker may read these
    // bytes while the window's thread asks again. (A range pointer could move the gap to the start
    // of the range, and every byte with it.)
    const auto* p = reinterpret_cast<const char*>(send(Sci::SCI_GETCHARACTERPOINTER));
    return QByteArrayView(p, byteLength());
}

qsizetype ScintillaEditControl::byteLength() const {
    return send(Sci::SCI_GETLENGTH);
}

QString ScintillaEditControl::text() const {
    return fromModelUtf8(bytes());
}

void ScintillaEditControl::setText(const QString& text) {
    setUtf8(toModelUtf8(text));
}

QByteArray ScintillaEditControl::utf8() const {
    return copyBytes(bytes());
}

void ScintillaEditControl::setUtf8(const QByteArray& text) {
    const QByteArrayView old = bytes();
    // Only the part between the common beginning and end changes, whole characters of it.
    const qsizetype most = qMin(old.size(), text.size());
    qsizetype prefix = commonRun(old.data(), text.constData(), most, 1);
    const qsizetype suffix =
        commonRun(old.data() + old.size(), text.constData() + text.size(), most - prefix, -1);
    prefix = charStart(old, prefix);
    qsizetype oldEnd = old.size() - suffix;
    qsizetype newEnd = text.size() - suffix;
    const qsizetype back = charStart(old, oldEnd);
    newEnd -= oldEnd - back;
    oldEnd = back;
    // Any shorter common beginning is one too: keep the part to replace in one piece.
    if (prefix > qMin(oldEnd, newEnd))
        prefix = charStart(old, qMin(oldEnd, newEnd));
    if (oldEnd > prefix || newEnd > prefix)
        replaceBytes(prefix, oldEnd - prefix,
                     QByteArrayView(text.constData() + prefix, newEnd - prefix));
    setCaretByte(0);
}

bool ScintillaEditControl::replaceBytes(qsizetype offset, qsizetype length, QByteArrayView with) {
    flushSelection(); // the view moves the selection along with the text
    if (busy_ && qMax(length, with.size()) >= kWorkerChange && !styles_->isRich() &&
        QThread::currentThread() == thread())
        return replaceOnWorker(offset, length, with);
    QByteArray removed;
    if (reporting_)
        removed = copyRange(offset, length);
    own_ = true;
    send(Sci::SCI_SETTARGETRANGE, ulong(offset), long(offset + length));
    send(Sci::SCI_REPLACETARGET, ulong(with.size()),
         reinterpret_cast<long>(with.isEmpty() ? "" : with.data()));
    own_ = false;
    applyWrap();
    if (reporting_)
        emit changed(offset, removed, with.toByteArray(), false);
    return true;
}

// The view takes a change of many lines slowly (every line start and the UTF-16 index of every
// line are updated one by one, on the window's thread); a new document is built from the bytes
// around the change on a worker, as a file is loaded, and then shown in one quick step. The
// worker reads the view's own bytes, so it cannot be cancelled: the busy indicator keeps the
// document as it is until the worker is done.
bool ScintillaEditControl::replaceOnWorker(qsizetype offset, qsizetype length,
                                           QByteArrayView with) {
    struct Job : BusyToken {
        std::optional<ViewLoader> loader;
        bool built = false;
        QByteArray removed, inserted; // for `changed`, copied on the worker too
    };
    auto job = std::make_shared<Job>();
    const QByteArrayView doc = bytes(); // the view's bytes stay put while the busy guard is up
    const bool styled = !(send(Sci::SCI_GETDOCUMENTOPTIONS) & Sci::SC_DOCUMENTOPTION_STYLES_NONE);
    job->loader.emplace(loaderView(), doc.size() - length + with.size(), styled);
    // The work cannot be cancelled, so `with` outlives it.
    auto work = [job, doc, offset, length, with, report = reporting_] {
        ViewLoader& l = *job->loader;
        const qsizetype total = doc.size() - length + with.size();
        std::atomic<int>* p = &job->percent;
        const auto share = [&](qsizetype n) { return int(100.0 * double(n) / double(total)); };
        const int a = share(offset), b = share(offset + with.size());
        job->built = l.add(doc.first(offset), &job->cancelled, p, 0, a) &&
                     l.add(with, &job->cancelled, p, a, b) &&
                     l.add(doc.sliced(offset + length), &job->cancelled, p, b, 100);
        if (job->built && report) {
            try {
                job->removed = copyBytes(doc.sliced(offset, length));
                job->inserted = copyBytes(with);
            } catch (const std::bad_alloc&) {
                job->built = false; // no room for the copies either: the slow way below
            }
        }
    };
    busy_->run(QStringLiteral("Working on the document..."), work, job, false);
    if (!job->built) {
        // No room for a second document: change the view itself, slowly.
        BusyWork* busy = std::exchange(busy_, nullptr);
        replaceBytes(offset, length, with);
        busy_ = busy;
        return true;
    }
    swapDocument(job->loader->takeDocument());
    // The selection moves as the view would have moved it.
    const auto moved = [&](qsizetype at) {
        return at <= offset            ? at
               : at >= offset + length ? at - length + with.size()
                                       : offset + with.size();
    };
    const Selection sel = selectionBytes();
    send(Sci::SCI_SETSEL, ulong(moved(sel.anchor)), long(moved(sel.caret)));
    ++changes_;
    if (reporting_)
        emit changed(offset, job->removed, job->inserted, false);
    return true;
}

void ScintillaEditControl::swapDocument(void* doc) {
    if (!doc)
        return;
    const long top = send(Sci::SCI_GETFIRSTVISIBLELINE);
    const long x = send(Sci::SCI_GETXOFFSET);
    pending_.reset();
    own_ = true;
    send(Sci::SCI_SETDOCPOINTER, 0, reinterpret_cast<long>(doc));
    send(Sci::SCI_RELEASEDOCUMENT, 0, reinterpret_cast<long>(doc));
    own_ = false;
    scanned_ = 0; // the new document has no line index
    prepareView();
    applyWrap();
    send(Sci::SCI_SETFIRSTVISIBLELINE, ulong(top));
    send(Sci::SCI_SETXOFFSET, ulong(x));
}

bool ScintillaEditControl::replaceHistoryBytes(qsizetype offset, qsizetype length,
                                               QByteArrayView with) {
    // What the history puts back may be a piece of the document itself.
    const QByteArrayView doc = bytes();
    if (with.data() >= doc.data() && with.data() < doc.data() + doc.size())
        return replaceBytes(offset, length, with.toByteArray());
    return replaceBytes(offset, length, with);
}

void ScintillaEditControl::restoreHistoryStyles(const StyleSnapshot& styles) {
    styles_->restore(styles);
    const QString notice = styles_->takeNotice();
    if (!notice.isEmpty())
        emit this->notice(notice);
}

template <class F>
void ScintillaEditControl::changeFormats(qsizetype start, qsizetype length, F change) {
    const bool wasRich = styles_->isRich();
    auto before = std::make_shared<const StyleSnapshot>(styles_->snapshot(start, length));
    change();
    if (!wasRich && !styles_->isRich())
        return; // the font of a plain document is the view's, not the document's
    auto after = std::make_shared<const StyleSnapshot>(styles_->snapshot(start, length));
    ++changes_;
    emit formatsChanged(ByteChange{start, {}, {}, std::move(before), std::move(after)});
    const QString notice = styles_->takeNotice();
    if (!notice.isEmpty())
        emit this->notice(notice);
}

void ScintillaEditControl::replaceRange(int start, int length, const QString& replacement) {
    const qsizetype from = byteOffset(start);
    const qsizetype to = byteOffset(qsizetype(start) + length);
    replaceBytes(from, to - from, toModelUtf8(replacement));
}

// The view's UTF-16 index of its lines costs a pass over the whole document: it is built when a
// position is first mapped, not while a document opens.
void ScintillaEditControl::ensureIndex() const {
    if (!(send(Sci::SCI_GETLINECHARACTERINDEX) & Sci::SC_LINECHARACTERINDEX_UTF16))
        send(Sci::SCI_ALLOCATELINECHARACTERINDEX, Sci::SC_LINECHARACTERINDEX_UTF16);
}

bool ScintillaEditControl::hasIndex() const {
    return send(Sci::SCI_GETLINECHARACTERINDEX) & Sci::SC_LINECHARACTERINDEX_UTF16;
}

// Building the line index of a large document takes long (about 0.4 s for 3 million lines), and
// a document swapped in after a large change has none. Counting UTF-16 units from the start is
// quick (about 10 ms for 100 MB), so positions are counted until the counting done on this
// document adds up to several times its size; only then is the index built.
bool ScintillaEditControl::scanInstead(qsizetype bytes) const {
    constexpr qsizetype kBudget = qsizetype(512) << 20;
    if (hasIndex() || scanned_ + bytes > kBudget)
        return false;
    scanned_ += bytes;
    return true;
}

qsizetype ScintillaEditControl::byteOffset(qsizetype modelPos) const {
    if (modelPos <= 0)
        return 0;
    if (!hasIndex() && modelPos >= textLength())
        return byteLength();
    // A position of n units lies within the first 3n bytes.
    const qsizetype within = qMin(byteLength(), 3 * modelPos);
    if (scanInstead(within))
        return byteOffsetOf(bytes().first(within), modelPos);
    ensureIndex();
    const long line =
        send(Sci::SCI_LINEFROMINDEXPOSITION, ulong(modelPos), Sci::SC_LINECHARACTERINDEX_UTF16);
    const long lineUnits =
        send(Sci::SCI_INDEXPOSITIONFROMLINE, ulong(line), Sci::SC_LINECHARACTERINDEX_UTF16);
    const long lineStart = send(Sci::SCI_POSITIONFROMLINE, ulong(line));
    const long lineEnd = line + 1 < send(Sci::SCI_GETLINECOUNT)
                             ? send(Sci::SCI_POSITIONFROMLINE, ulong(line + 1))
                             : long(byteLength());
    const long units = send(Sci::SCI_COUNTCODEUNITS, ulong(lineStart), lineEnd);
    if (modelPos - lineUnits >= units)
        return lineEnd;
    const long rel = long(modelPos - lineUnits);
    const long at = send(Sci::SCI_POSITIONRELATIVECODEUNITS, ulong(lineStart), rel);
    // Between the two halves of a surrogate pair the view answers 0: the character's start, as
    // counting gives.
    return at > 0 || rel == 0 ? at
                              : send(Sci::SCI_POSITIONRELATIVECODEUNITS, ulong(lineStart), rel - 1);
}

qsizetype ScintillaEditControl::modelPosition(qsizetype offset) const {
    if (offset <= 0)
        return 0;
    if (!hasIndex() && offset >= byteLength())
        return textLength();
    if (scanInstead(offset))
        return utf16Length(bytes().first(offset));
    ensureIndex();
    const long line = send(Sci::SCI_LINEFROMPOSITION, ulong(offset));
    const long lineStart = send(Sci::SCI_POSITIONFROMLINE, ulong(line));
    return send(Sci::SCI_INDEXPOSITIONFROMLINE, ulong(line), Sci::SC_LINECHARACTERINDEX_UTF16) +
           send(Sci::SCI_COUNTCODEUNITS, ulong(lineStart), long(offset));
}

int ScintillaEditControl::textLength() const {
    // Selecting the whole text (as applying the font does) needs only its length: one quick
    // count, kept until the next change, rather than the line index.
    if (hasIndex())
        return int(modelPosition(byteLength()));
    if (lengthAt_ != changes_ || length_ < 0) {
        length_ = utf16Length(bytes());
        lengthAt_ = changes_;
    }
    return int(length_);
}

// A selection set through this adapter waits until the window's thread is back in its event
// loop: a command that selects the whole text for a moment and then selects nothing (as the
// font is applied) never makes the view publish megabytes as the desktop's primary selection.
void ScintillaEditControl::setSelectionBytes(qsizetype anchor, qsizetype caret) {
    const bool scheduled = pending_.has_value();
    pending_ = {anchor, caret};
    if (!scheduled)
        QMetaObject::invokeMethod(this, &ScintillaEditControl::flushSelection,
                                  Qt::QueuedConnection);
    emit caretMoved();
}

void ScintillaEditControl::flushSelection() {
    if (!pending_)
        return;
    const Selection sel = *pending_;
    pending_.reset();
    send(Sci::SCI_SETSEL, ulong(sel.anchor), long(sel.caret));
}

ScintillaEditControl::Selection ScintillaEditControl::selectionBytes() const {
    if (pending_)
        return *pending_;
    return {send(Sci::SCI_GETANCHOR), send(Sci::SCI_GETCURRENTPOS)};
}

void ScintillaEditControl::setCaretByte(qsizetype offset) {
    setSelectionBytes(offset, offset);
}

qsizetype ScintillaEditControl::caretByte() const {
    return selectionBytes().caret;
}

int ScintillaEditControl::selStart() const {
    return int(modelPosition(selectionBytes().start()));
}

void ScintillaEditControl::setSelStart(int start) {
    setCaretByte(byteOffset(qBound(0, start, textLength())));
}

int ScintillaEditControl::selLength() const {
    const Selection sel = selectionBytes();
    return int(modelPosition(sel.end()) - modelPosition(sel.start()));
}

void ScintillaEditControl::setSelLength(int length) {
    const qsizetype from = selectionBytes().start();
    const qsizetype start = modelPosition(from);
    const qsizetype end = qBound(start, start + qMax(0, length), qsizetype(textLength()));
    setSelectionBytes(from, byteOffset(end));
}

QString ScintillaEditControl::selText() const {
    const Selection sel = selectionBytes();
    return fromModelUtf8(copyRange(sel.start(), sel.end() - sel.start()));
}

// A plain document is held without a style byte per text byte (half the memory); the first
// format it gets moves it into a document that has them, keeping the caret and the scrolling.
void ScintillaEditControl::ensureStyles(bool keepText) {
    if (!(send(Sci::SCI_GETDOCUMENTOPTIONS) & Sci::SC_DOCUMENTOPTION_STYLES_NONE))
        return;
    const Selection sel = selectionBytes();
    ViewLoader loader(view_, keepText ? byteLength() : 0, true);
    if (keepText)
        loader.add(bytes());
    swapDocument(loader.takeDocument());
    if (keepText)
        send(Sci::SCI_SETSEL, ulong(sel.anchor), long(sel.caret));
}

void ScintillaEditControl::adopt(ViewLoader&& loaded) {
    void* doc = loaded.takeDocument();
    if (!doc)
        return;
    swapDocument(doc);
    if (styles_->isRich()) // the new document has no formats of its own
        styles_->clearFormatting(styles_->documentFont());
    send(Sci::SCI_SETFIRSTVISIBLELINE, 0);
    send(Sci::SCI_SETXOFFSET, 0);
    ++changes_;
    setCaretByte(0);
    emit replaced();
}

bool ScintillaEditControl::loadRtf(const QByteArray& rtf, QString& error) {
    ViewStyles::PreparedRtf prepared;
    if (!ViewStyles::prepareRtf(rtf, prepared, &error))
        return false;
    showRtf(prepared);
    return true;
}

void ScintillaEditControl::showRtf(const ViewStyles::PreparedRtf& prepared) {
    pending_.reset();
    ensureStyles(false);
    const bool reporting = std::exchange(reporting_, false);
    QString notice;
    styles_->applyRtf(prepared, &notice);
    reporting_ = reporting;
    applyWrap();
    setCaretByte(0);
    emit replaced();
    if (!notice.isEmpty())
        emit this->notice(notice);
}

QByteArray ScintillaEditControl::saveRtf() const {
    return styles_->saveRtf();
}

void ScintillaEditControl::setSelectionFont(const FontSpec& font) {
    const Selection sel = selectionBytes();
    if (styles_->isRich() || sel.end() - sel.start() < byteLength())
        ensureStyles(true);
    changeFormats(sel.start(), sel.end() - sel.start(),
                  [&] { styles_->setFont(sel.start(), sel.end() - sel.start(), font); });
}

FontSpec ScintillaEditControl::selectionFont() const {
    return styles_->fontAt(selectionBytes().start());
}

FontSpec ScintillaEditControl::documentFont() const {
    return styles_->documentFont();
}

void ScintillaEditControl::setRightMargin(int twips) {
    wrapWanted_ = twips == 0;
    applyWrap();
}

void ScintillaEditControl::applyWrap() {
    const bool wrap = wrapWanted_ && byteLength() <= kWrapLimit;
    if (wrap == (send(Sci::SCI_GETWRAPMODE) != Sci::SC_WRAP_NONE))
        return;
    send(Sci::SCI_SETWRAPMODE, wrap ? Sci::SC_WRAP_WORD : Sci::SC_WRAP_NONE);
    if (wrapWanted_ && !wrap)
        emit notice(tr("Word wrap is off while the document is over %1 MB").arg(kWrapLimit >> 20));
}

void ScintillaEditControl::steadyCaretOnLongLines() {
    const long line = send(Sci::SCI_LINEFROMPOSITION, send(Sci::SCI_GETCURRENTPOS));
    const bool longLine = send(Sci::SCI_LINELENGTH, ulong(line)) > kSteadyCaretLine;
    const int period = longLine ? 0 : blinkMs_;
    if (send(Sci::SCI_GETCARETPERIOD) != period)
        send(Sci::SCI_SETCARETPERIOD, ulong(period));
}

void ScintillaEditControl::setSizeCycle(int start, int length, const QList<double>& cycle) {
    const qsizetype from = byteOffset(start);
    const qsizetype to = byteOffset(qsizetype(start) + length);
    ensureStyles(true);
    changeFormats(from, to - from, [&] { styles_->setSizeCycle(from, to - from, cycle); });
}

void ScintillaEditControl::clearFormatting(const FontSpec& font) {
    changeFormats(0, byteLength(), [&] { styles_->clearFormatting(font); });
}

} // namespace ed
