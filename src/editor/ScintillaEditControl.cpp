#include "editor/ScintillaEditControl.h"

#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"
#include "util/ModelText.h"

#include <Qsci/qsciscintillabase.h>

#include <QFont>

#include <cstring>

namespace ed {

namespace {
using Sci = QsciScintillaBase;

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

ScintillaEditControl::ScintillaEditControl(QsciScintillaBase* view) : QObject(view), view_(view) {
    prepareView();
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
    connect(view_, &Sci::SCN_UPDATEUI, this, [this](int) { emit caretMoved(); });
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
    send(Sci::SCI_ALLOCATELINECHARACTERINDEX, Sci::SC_LINECHARACTERINDEX_UTF16);
}

void ScintillaEditControl::modified(int position, int type, const char* text, int length) {
    if (type & Sci::SC_MOD_BEFOREDELETE) {
        if (!own_ && reporting_)
            beforeDelete_ = bytes().sliced(position, length).toByteArray();
        return;
    }
    if (!(type & (Sci::SC_MOD_INSERTTEXT | Sci::SC_MOD_DELETETEXT)))
        return;
    ++changes_;
    if (own_ || !reporting_)
        return;
    if (type & Sci::SC_MOD_INSERTTEXT)
        emit changed(position, QByteArray(), QByteArray(text, length), true);
    else
        emit changed(position, std::exchange(beforeDelete_, QByteArray()), QByteArray(), true);
}

QByteArrayView ScintillaEditControl::bytes() const {
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
    return bytes().toByteArray();
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

void ScintillaEditControl::replaceBytes(qsizetype offset, qsizetype length, QByteArrayView with) {
    QByteArray removed;
    if (reporting_)
        removed = bytes().sliced(offset, length).toByteArray();
    own_ = true;
    send(Sci::SCI_SETTARGETRANGE, ulong(offset), long(offset + length));
    send(Sci::SCI_REPLACETARGET, ulong(with.size()),
         reinterpret_cast<long>(with.isEmpty() ? "" : with.data()));
    own_ = false;
    if (reporting_)
        emit changed(offset, removed, with.toByteArray(), false);
}

void ScintillaEditControl::replaceHistoryBytes(qsizetype offset, qsizetype length,
                                               QByteArrayView with) {
    // What the history puts back may be a piece of the document itself.
    const QByteArrayView doc = bytes();
    if (with.data() >= doc.data() && with.data() < doc.data() + doc.size())
        replaceBytes(offset, length, with.toByteArray());
    else
        replaceBytes(offset, length, with);
}

void ScintillaEditControl::restoreHistoryStyles(qsizetype, QByteArrayView) {}

void ScintillaEditControl::replaceRange(int start, int length, const QString& replacement) {
    const qsizetype from = byteOffset(start);
    const qsizetype to = byteOffset(qsizetype(start) + length);
    replaceBytes(from, to - from, toModelUtf8(replacement));
}

qsizetype ScintillaEditControl::byteOffset(qsizetype modelPos) const {
    if (modelPos <= 0)
        return 0;
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
    return send(Sci::SCI_POSITIONRELATIVECODEUNITS, ulong(lineStart), long(modelPos - lineUnits));
}

qsizetype ScintillaEditControl::modelPosition(qsizetype offset) const {
    const long line = send(Sci::SCI_LINEFROMPOSITION, ulong(offset));
    const long lineStart = send(Sci::SCI_POSITIONFROMLINE, ulong(line));
    return send(Sci::SCI_INDEXPOSITIONFROMLINE, ulong(line), Sci::SC_LINECHARACTERINDEX_UTF16) +
           send(Sci::SCI_COUNTCODEUNITS, ulong(lineStart), long(offset));
}

int ScintillaEditControl::textLength() const {
    return int(modelPosition(byteLength()));
}

void ScintillaEditControl::setCaretByte(qsizetype offset) {
    send(Sci::SCI_SETEMPTYSELECTION, ulong(offset));
    send(Sci::SCI_SCROLLCARET);
    emit caretMoved();
}

qsizetype ScintillaEditControl::caretByte() const {
    return send(Sci::SCI_GETCURRENTPOS);
}

int ScintillaEditControl::selStart() const {
    return int(modelPosition(send(Sci::SCI_GETSELECTIONSTART)));
}

void ScintillaEditControl::setSelStart(int start) {
    setCaretByte(byteOffset(qBound(0, start, textLength())));
}

int ScintillaEditControl::selLength() const {
    return int(modelPosition(send(Sci::SCI_GETSELECTIONEND)) -
               modelPosition(send(Sci::SCI_GETSELECTIONSTART)));
}

void ScintillaEditControl::setSelLength(int length) {
    const long from = send(Sci::SCI_GETSELECTIONSTART);
    const qsizetype start = modelPosition(from);
    const qsizetype end = qBound(start, start + qMax(0, length), qsizetype(textLength()));
    send(Sci::SCI_SETSEL, ulong(from), long(byteOffset(end)));
    emit caretMoved();
}

QString ScintillaEditControl::selText() const {
    const long from = send(Sci::SCI_GETSELECTIONSTART);
    const long to = send(Sci::SCI_GETSELECTIONEND);
    return fromModelUtf8(bytes().sliced(from, to - from));
}

void ScintillaEditControl::adopt(ViewLoader&& loaded) {
    void* doc = loaded.takeDocument();
    if (!doc)
        return;
    own_ = true;
    send(Sci::SCI_SETDOCPOINTER, 0, reinterpret_cast<long>(doc));
    send(Sci::SCI_RELEASEDOCUMENT, 0, reinterpret_cast<long>(doc));
    own_ = false;
    prepareView();
    ++changes_;
    setCaretByte(0);
    emit replaced();
}

bool ScintillaEditControl::loadRtf(const QByteArray& rtf, QString& error) {
    rtfNotice_.clear();
    error.clear();
    const RtfContent content = parseRtf(rtf, &error);
    if (!error.isEmpty())
        return false;
    const QByteArray text = toModelUtf8(content.plainText());
    ViewLoader loader(view_, text.size());
    if (!loader.add(text)) {
        error = QStringLiteral("not enough memory to show the document");
        return false;
    }
    adopt(std::move(loader));
    return true;
}

QByteArray ScintillaEditControl::saveRtf() const {
    const FontSpec font = documentFont();
    RtfCharFormat format;
    format.family = font.name;
    format.pointSize = font.size;
    format.bold = font.bold;
    format.italic = font.italic;
    return writeRtf(plainRtfContent(text(), format));
}

namespace {
FontSpec fontOfStyle(const QsciScintillaBase* view, int style) {
    FontSpec f;
    QByteArray name(256, '\0');
    const long n = view->SendScintilla(Sci::SCI_STYLEGETFONT, ulong(style),
                                       reinterpret_cast<long>(name.data()));
    name.truncate(qMax(0L, n));
    if (!name.isEmpty())
        f.name = QString::fromUtf8(name.constData());
    f.size = double(view->SendScintilla(Sci::SCI_STYLEGETSIZEFRACTIONAL, ulong(style))) / 100.0;
    f.bold = view->SendScintilla(Sci::SCI_STYLEGETBOLD, ulong(style)) != 0;
    f.italic = view->SendScintilla(Sci::SCI_STYLEGETITALIC, ulong(style)) != 0;
    return f;
}
} // namespace

void ScintillaEditControl::setSelectionFont(const FontSpec& font) {
    const QByteArray name = font.name.toUtf8();
    for (ulong style : {ulong(Sci::STYLE_DEFAULT), 0ul}) {
        send(Sci::SCI_STYLESETFONT, style, reinterpret_cast<long>(name.constData()));
        if (font.size > 0)
            send(Sci::SCI_STYLESETSIZEFRACTIONAL, style, long(font.size * 100 + 0.5));
        send(Sci::SCI_STYLESETBOLD, style, font.bold);
        send(Sci::SCI_STYLESETITALIC, style, font.italic);
    }
}

FontSpec ScintillaEditControl::selectionFont() const {
    return fontOfStyle(view_, 0);
}

FontSpec ScintillaEditControl::documentFont() const {
    return fontOfStyle(view_, Sci::STYLE_DEFAULT);
}

void ScintillaEditControl::setRightMargin(int twips) {
    send(Sci::SCI_SETWRAPMODE, twips == 0 ? Sci::SC_WRAP_WORD : Sci::SC_WRAP_NONE);
}

void ScintillaEditControl::setSizeCycle(int, int, const QList<double>&) {}

void ScintillaEditControl::clearFormatting(const FontSpec& font) {
    setSelectionFont(font);
}

} // namespace ed
