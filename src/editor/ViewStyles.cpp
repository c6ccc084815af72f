#include "editor/ViewStyles.h"

#include "editor/RtfPlain.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <Qsci/qsciscintillabase.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

namespace ed {

namespace {

using Sci = QsciScintillaBase;

// A message with number arguments, whatever integer types they come in.
long send(const Sci* view, unsigned int message, qint64 wParam = 0, qint64 lParam = 0) {
    return view->SendScintilla(message, static_cast<unsigned long>(wParam), long(lParam));
}

inline bool startsCharacter(char b) {
    return (uchar(b) & 0xC0) != 0x80;
}

// The k-th style number a format can have: 1 to 31, then 40 to 255.
constexpr int formatStyle(int k) {
    return k < 31 ? k + 1 : k + 9;
}

// How unlike two formats look: a family weighs most, then bold and italic, colour, underline
// and size.
double formatDistance(const RtfCharFormat& a, const RtfCharFormat& b) {
    double d = std::abs(a.pointSize - b.pointSize) * 10;
    if (a.family.compare(b.family, Qt::CaseInsensitive) != 0)
        d += 1000;
    d += (a.bold != b.bold ? 300 : 0) + (a.italic != b.italic ? 300 : 0) +
         (a.underline != b.underline ? 200 : 0);
    if (a.color != b.color) {
        const quint32 x = a.color.value_or(0), y = b.color.value_or(0);
        for (int shift : {0, 8, 16})
            d += std::abs(int((x >> shift) & 0xFF) - int((y >> shift) & 0xFF));
        d += 1;
    }
    return d;
}

// Scintilla's colours are 0xBBGGRR.
long scintillaColor(quint32 rgb) {
    return long(((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF));
}

long fractionalSize(double points) {
    return std::isfinite(points) && points > 0
               ? std::lround(points * int(Sci::SC_FONT_SIZE_MULTIPLIER))
               : 9 * Sci::SC_FONT_SIZE_MULTIPLIER;
}

QString mergedNotice(qsizetype formats, qsizetype merged) {
    return QStringLiteral("The document has %1 character formats, more than the %2 the view can "
                          "show: the %3 rarest are shown as their nearest.")
        .arg(formats)
        .arg(ViewStyles::kFormatStyles)
        .arg(merged);
}

constexpr qsizetype kStyleChunk = qsizetype(1) << 20;

} // namespace

ViewStyles::ViewStyles(QsciScintillaBase* view) : QObject(view), view_(view) {
    send(view_, Sci::SCI_SETCODEPAGE, Sci::SC_CP_UTF8);
    send(view_, Sci::SCI_SETLEXER, Sci::SCLEX_CONTAINER);
    // The styles are set here, never by a lexer: whatever the view asks to have styled already
    // is (new text has style 0 until inheritFormat gives it its neighbour's).
    connect(view_, &QsciScintillaBase::SCN_STYLENEEDED, this,
            [this](int) { send(view_, Sci::SCI_STARTSTYLING, length()); });
    setDocumentFont(documentFont_);
}

qsizetype ViewStyles::length() const {
    return send(view_, Sci::SCI_GETLENGTH);
}

const char* ViewStyles::bytes() const {
    return static_cast<const char*>(view_->SendScintillaPtrResult(Sci::SCI_GETCHARACTERPOINTER));
}

QByteArray ViewStyles::readStyles(qsizetype start, qsizetype length) const {
    if (!rich_) // every byte of a plain document has style 0
        return QByteArray(length, '\0');
    QByteArray out(length, Qt::Uninitialized);
    QByteArray pairs;
    for (qsizetype at = 0; at < length;) {
        const qsizetype n = std::min(kStyleChunk, length - at);
        pairs.resize(2 * n + 2);
        view_->SendScintilla(Sci::SCI_GETSTYLEDTEXT, long(start + at), long(start + at + n),
                             pairs.data());
        const char* p = pairs.constData();
        char* d = out.data() + at;
        for (qsizetype i = 0; i < n; ++i)
            d[i] = p[2 * i + 1];
        at += n;
    }
    return out;
}

void ViewStyles::writeStyles(qsizetype start, const QByteArray& styles) {
    if (styles.isEmpty())
        return;
    send(view_, Sci::SCI_STARTSTYLING, start);
    view_->SendScintilla(Sci::SCI_SETSTYLINGEX, uintptr_t(styles.size()), styles.constData());
}

void ViewStyles::defineStyle(int style) {
    const RtfCharFormat& f = *formats_[size_t(style)];
    const QByteArray family = (f.family.isEmpty() ? documentFont_.name : f.family).toUtf8();
    view_->SendScintilla(Sci::SCI_STYLESETFONT, uintptr_t(style), family.constData());
    send(view_, Sci::SCI_STYLESETSIZEFRACTIONAL, style, fractionalSize(f.pointSize));
    send(view_, Sci::SCI_STYLESETBOLD, style, f.bold);
    send(view_, Sci::SCI_STYLESETITALIC, style, f.italic);
    send(view_, Sci::SCI_STYLESETUNDERLINE, style, f.underline);
    const long fore =
        f.color ? scintillaColor(*f.color) : send(view_, Sci::SCI_STYLEGETFORE, Sci::STYLE_DEFAULT);
    send(view_, Sci::SCI_STYLESETFORE, style, fore);
}

void ViewStyles::setDocumentFont(const FontSpec& font) {
    const double size = font.size > 0 ? font.size : documentFont_.size;
    documentFont_ = font;
    documentFont_.size = size;
    const QByteArray family = font.name.toUtf8();
    view_->SendScintilla(Sci::SCI_STYLESETFONT, uintptr_t(Sci::STYLE_DEFAULT), family.constData());
    send(view_, Sci::SCI_STYLESETSIZEFRACTIONAL, Sci::STYLE_DEFAULT, fractionalSize(size));
    send(view_, Sci::SCI_STYLESETBOLD, Sci::STYLE_DEFAULT, font.bold);
    send(view_, Sci::SCI_STYLESETITALIC, Sci::STYLE_DEFAULT, font.italic);
    send(view_, Sci::SCI_STYLECLEARALL);
    for (int s = 0; s < 256; ++s)
        if (formats_[size_t(s)])
            defineStyle(s);
}

RtfCharFormat ViewStyles::effectiveFormat(const FormatTable& table, int style) const {
    if (const auto& own = table[size_t(style)])
        return *own;
    RtfCharFormat f = rtfFormatOf(documentFont_);
    f.family.clear(); // follows the document's font
    return f;
}

int ViewStyles::styleFor(const std::optional<RtfCharFormat>& format, qsizetype keepStart,
                         qsizetype keepEnd, const std::array<bool, 256>& inUse, bool& reclaimed) {
    if (!format)
        return 0;
    for (int s = 1; s < 256; ++s)
        if (formats_[size_t(s)] == format)
            return s;
    for (;;) {
        for (int k = 0; k < kFormatStyles; ++k) {
            const int s = formatStyle(k);
            if (!formats_[size_t(s)]) {
                formats_[size_t(s)] = format;
                defineStyle(s);
                return s;
            }
        }
        if (reclaimed)
            break;
        // Every style is taken: free those that no longer show anywhere.
        reclaimed = true;
        std::array<bool, 256> used = inUse;
        auto mark = [&](qsizetype from, qsizetype to) {
            for (qsizetype at = from; at < to; at += kStyleChunk) {
                const QByteArray chunk = readStyles(at, std::min(kStyleChunk, to - at));
                for (char c : chunk)
                    used[uchar(c)] = true;
            }
        };
        mark(0, keepStart);
        mark(keepEnd, length());
        for (int s = 1; s < 256; ++s)
            if (!used[size_t(s)])
                formats_[size_t(s)].reset();
    }
    // Still full: the nearest format shown already stands in for this one.
    int best = 0;
    double bestDistance = formatDistance(*format, effectiveFormat(formats_, 0));
    for (int s = 1; s < 256; ++s) {
        if (formats_[size_t(s)]) {
            const double d = formatDistance(*format, *formats_[size_t(s)]);
            if (d < bestDistance) {
                best = s;
                bestDistance = d;
            }
        }
    }
    notice_ = QStringLiteral("Every character format the view can show is taken: some characters "
                             "are shown in the nearest one.");
    return best;
}

template <class KeyOf, class FormatOf>
void ViewStyles::rewrite(qsizetype start, QByteArray source, qsizetype keyCount, KeyOf keyOf,
                         FormatOf formatOf) {
    const qsizetype n = source.size();
    if (n == 0)
        return;
    const char* text = bytes() + start;
    std::vector<qint16> styleOfKey(size_t(keyCount), -1);
    std::array<bool, 256> inUse{};
    bool reclaimed = false;
    qsizetype index = -1;
    char current = 0;
    char* s = source.data();
    for (qsizetype i = 0; i < n; ++i) {
        // A CR LF is one character, as the edit control counts line breaks.
        if (i == 0 || (startsCharacter(text[i]) && !(text[i] == '\n' && text[i - 1] == '\r'))) {
            ++index;
            const qsizetype key = keyOf(int(uchar(s[i])), index);
            qint16& style = styleOfKey[size_t(key)];
            if (style < 0) {
                style = qint16(styleFor(formatOf(key), start, start + n, inUse, reclaimed));
                inUse[size_t(style)] = true;
            }
            current = char(style);
        }
        s[i] = current;
    }
    writeStyles(start, source);
}

bool ViewStyles::prepareRtf(const QByteArray& rtf, PreparedRtf& out, QString* error) {
    QString why;
    const RtfContent content = parseRtf(rtf, &why);
    if (error)
        *error = why;
    if (!why.isEmpty())
        return false;
    RtfText laid = rtfTextOf(content);

    // The formats most of the text has get a style each; the rest look like their nearest.
    const qsizetype count = laid.formats.size();
    QList<qsizetype> weight(count, 0);
    for (const FormatRun& run : laid.runs)
        if (run.format >= 0)
            weight[run.format] += run.bytes;
    std::vector<int> order(static_cast<size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return weight[a] > weight[b]; });
    const int kept = int(std::min<qsizetype>(count, kFormatStyles));
    std::vector<uchar> styleOf(size_t(count), 0);
    out.formats = FormatTable{};
    for (int k = 0; k < kept; ++k) {
        styleOf[size_t(order[size_t(k)])] = uchar(formatStyle(k));
        out.formats[size_t(formatStyle(k))] = laid.formats[order[size_t(k)]];
    }
    for (qsizetype k = kept; k < count; ++k) {
        const RtfCharFormat& f = laid.formats[order[size_t(k)]];
        int best = 0;
        double bestDistance = formatDistance(f, laid.formats[order[0]]);
        for (int j = 1; j < kept; ++j) {
            const double d = formatDistance(f, laid.formats[order[size_t(j)]]);
            if (d < bestDistance) {
                best = j;
                bestDistance = d;
            }
        }
        styleOf[size_t(order[size_t(k)])] = uchar(formatStyle(best));
    }
    out.styles = QByteArray(laid.text.size(), Qt::Uninitialized);
    qsizetype at = 0;
    for (const FormatRun& run : laid.runs) {
        std::memset(out.styles.data() + at, run.format < 0 ? 0 : styleOf[size_t(run.format)],
                    size_t(run.bytes));
        at += run.bytes;
    }
    out.text = std::move(laid.text);
    out.formatCount = count;
    out.merged = count - kept;
    return true;
}

void ViewStyles::applyRtf(const PreparedRtf& prepared, QString* notice) {
    send(view_, Sci::SCI_BEGINUNDOACTION);
    send(view_, Sci::SCI_CLEARALL);
    view_->SendScintilla(Sci::SCI_APPENDTEXT, uintptr_t(prepared.text.size()),
                         prepared.text.constData());
    send(view_, Sci::SCI_ENDUNDOACTION);
    formats_ = prepared.formats;
    setDocumentFont(documentFont_);
    writeStyles(0, prepared.styles);
    rich_ = true;
    if (notice)
        *notice =
            prepared.merged > 0 ? mergedNotice(prepared.formatCount, prepared.merged) : QString();
}

bool ViewStyles::loadRtf(const QByteArray& rtf, QString* error, QString* notice) {
    PreparedRtf prepared;
    if (!prepareRtf(rtf, prepared, error)) {
        if (notice)
            notice->clear();
        return false;
    }
    applyRtf(prepared, notice);
    return true;
}

QByteArray ViewStyles::saveRtf() const {
    std::array<RtfCharFormat, 256> formatOf;
    for (int s = 0; s < 256; ++s) {
        formatOf[size_t(s)] = effectiveFormat(formats_, s);
        if (formatOf[size_t(s)].family.isEmpty())
            formatOf[size_t(s)].family = documentFont_.name;
    }
    const qsizetype n = length();
    const QByteArray styles = rich_ ? readStyles(0, n) : QByteArray();
    return writeRtf(QByteArrayView(bytes(), n), styles, formatOf);
}

void ViewStyles::setFont(qsizetype start, qsizetype length, const FontSpec& font) {
    const qsizetype total = this->length();
    start = std::clamp<qsizetype>(start, 0, total);
    length = std::clamp<qsizetype>(length, 0, total - start);
    if (!rich_ && start == 0 && length == total) {
        setDocumentFont(font);
        return;
    }
    const FormatTable before = formats_;
    rewrite(
        start, readStyles(start, length), 256, [](int style, qsizetype) { return style; },
        [&](qsizetype style) {
            RtfCharFormat f = effectiveFormat(before, int(style));
            f.family = font.name;
            if (font.size > 0)
                f.pointSize = font.size;
            f.bold = font.bold;
            f.italic = font.italic;
            return std::optional(f);
        });
    if (length > 0)
        rich_ = true;
}

FontSpec ViewStyles::fontAt(qsizetype pos) const {
    const qsizetype total = length();
    if (total == 0)
        return documentFont_;
    const int style =
        int(send(view_, Sci::SCI_GETSTYLEAT, std::clamp<qsizetype>(pos, 0, total - 1)) & 0xFF);
    if (!formats_[size_t(style)])
        return documentFont_;
    const RtfCharFormat& f = *formats_[size_t(style)];
    FontSpec font;
    font.name = f.family.isEmpty() ? documentFont_.name : f.family;
    font.size = f.pointSize;
    font.bold = f.bold;
    font.italic = f.italic;
    return font;
}

void ViewStyles::setSizeCycle(qsizetype start, qsizetype length, const QList<double>& cycle) {
    const qsizetype total = this->length();
    start = std::clamp<qsizetype>(start, 0, total);
    length = std::clamp<qsizetype>(length, 0, total - start);
    if (cycle.isEmpty() || length == 0)
        return;
    const FormatTable before = formats_;
    const qsizetype m = cycle.size();
    rewrite(
        start, readStyles(start, length), 256 * m,
        [m](int style, qsizetype index) { return style * m + index % m; },
        [&](qsizetype key) {
            RtfCharFormat f = effectiveFormat(before, int(key / m));
            f.pointSize = cycle[key % m];
            return std::optional(f);
        });
    rich_ = true;
}

void ViewStyles::clearFormatting(const FontSpec& font) {
    formats_.fill(std::nullopt);
    send(view_, Sci::SCI_STARTSTYLING, 0);
    send(view_, Sci::SCI_SETSTYLING, length(), 0);
    rich_ = false;
    setDocumentFont(font);
}

void ViewStyles::inheritFormat(qsizetype start, qsizetype length) {
    const qsizetype total = this->length();
    start = std::clamp<qsizetype>(start, 0, total);
    length = std::clamp<qsizetype>(length, 0, total - start);
    if (length == 0)
        return;
    const qsizetype from = start > 0 ? start - 1 : start + length < total ? start + length : -1;
    const long style = from < 0 ? 0 : send(view_, Sci::SCI_GETSTYLEAT, from) & 0xFF;
    send(view_, Sci::SCI_STARTSTYLING, start);
    send(view_, Sci::SCI_SETSTYLING, length, style);
}

StyleSnapshot ViewStyles::snapshot(qsizetype start, qsizetype length) const {
    const qsizetype total = this->length();
    StyleSnapshot out;
    out.start = std::clamp<qsizetype>(start, 0, total);
    out.length = std::clamp<qsizetype>(length, 0, total - out.start);
    out.rich = rich_;
    if (!rich_) { // all style 0
        out.styles = QByteArray(out.length > 0 ? 1 : 0, '\0');
        return out;
    }
    out.styles = readStyles(out.start, out.length);
    std::array<bool, 256> present{};
    for (char c : std::as_const(out.styles))
        present[uchar(c)] = true;
    int last = 0;
    for (int s = 0; s < 256; ++s)
        last = present[size_t(s)] ? s : last;
    out.formats.resize(last + 1);
    for (int s = 1; s <= last; ++s)
        if (present[size_t(s)])
            out.formats[s] = formats_[size_t(s)];
    if (std::count(present.begin(), present.end(), true) == 1)
        out.styles.truncate(1);
    return out;
}

void ViewStyles::restore(const StyleSnapshot& snapshot) {
    const qsizetype start = std::min(snapshot.start, length());
    const qsizetype n = std::min(snapshot.length, length() - start);
    const QByteArray source =
        snapshot.styles.size() == 1 ? QByteArray(n, snapshot.styles[0]) : snapshot.styles.left(n);
    rewrite(
        start, source, 256, [](int style, qsizetype) { return style; },
        [&](qsizetype style) {
            return style < snapshot.formats.size() ? snapshot.formats[style]
                                                   : std::optional<RtfCharFormat>();
        });
    if (snapshot.rich || !rich_)
        rich_ = snapshot.rich;
    else // a plain stretch came back: the document is plain again when no format is left
        rich_ = hasOwnFormats();
}

bool ViewStyles::hasOwnFormats() const {
    const qsizetype total = length();
    for (qsizetype at = 0; at < total; at += kStyleChunk) {
        const QByteArray chunk = readStyles(at, std::min(kStyleChunk, total - at));
        if (std::any_of(chunk.begin(), chunk.end(), [](char c) { return c != 0; }))
            return true;
    }
    return false;
}

} // namespace ed
