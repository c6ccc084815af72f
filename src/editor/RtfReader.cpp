#include "editor/RtfReader.h"

#include "editor/RtfCodepage.h"
#include "editor/RtfWords.h"

#include <QHash>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace ed {

namespace {

using rtf::kWesternCodepage;
using rtf::Word;
using rtf::WordEntry;

// Real files nest a few dozen groups deep; anything near this is damage or an attack.
constexpr int kMaxDepth = 1000;
constexpr int kDefaultHalfPoints = 24;
constexpr int kMaxHalfPoints = 3276; // 1638 points, the largest size word processors offer
constexpr qsizetype kMaxFontName = 256;
constexpr char32_t kReplacement = 0xFFFD;

// Where the text of a group goes.
enum class Dest : quint8 {
    Body,       // the document
    FontTable,  // font names
    ColorTable, // colour entries
    Upr,        // the ANSI half of \upr; its \ud half holds the real text
    Skip,       // ignored entirely, nested groups included
};

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

void appendCodePoint(QString& s, char32_t cp) {
    if (QChar::requiresSurrogates(cp)) {
        s += QChar(QChar::highSurrogate(cp));
        s += QChar(QChar::lowSurrogate(cp));
    } else {
        s += QChar(char16_t(cp));
    }
}

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// The state a group inherits from its parent and drops at its end.
struct GroupState {
    int font = -1;  // -1: the default font (\deff)
    int color = -1; // -1: no \cf given
    int halfPoints = kDefaultHalfPoints;
    int uc = 1; // fallback characters after \uN
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool hidden = false;
    Dest dest = Dest::Body;
    Dest uprOuter = Dest::Body; // where \ud sends the text of an \upr

    void resetCharFormat() {
        font = -1;
        color = -1;
        halfPoints = kDefaultHalfPoints;
        bold = italic = underline = hidden = false;
    }
};

// The part of GroupState that decides a run's format.
struct FormatKey {
    int font = 0;
    int color = 0;
    int halfPoints = 0;
    bool bold = false;
    bool italic = false;
    bool underline = false;

    friend bool operator==(const FormatKey&, const FormatKey&) = default;
};

struct FontEntry {
    QString name;
    int codepage = 0; // 0: the document's
};

class Parser {
public:
    explicit Parser(const QByteArray& in) : p_(in.constData()), end_(in.constData() + in.size()) {}

    bool run(QString& error);
    RtfContent take() { return std::move(content_); }

private:
    GroupState& top() { return stack_.back(); }

    bool openGroup(QString& error);
    bool closeGroup(); // false when the outermost group ends
    void controlWord();
    void controlSymbol(char c);
    void word(std::string_view name, bool hasParam, int param);
    bool startDestination(Word w);
    bool enterContent();
    bool consumeFallback();
    void textByte(unsigned char b, bool escaped);
    void flushBytes();
    void emitUnit(char16_t unit);
    void put(char32_t cp);
    QString& runText();    // of the run that has the current format
    void breakParagraph(); // \par: the paragraph ends, even an empty one
    void endParagraph();   // end of a table row or of the file: a paragraph with text ends
    void finish();
    void commitFont();
    void commitColor();
    int currentCodepage() const;
    RtfCharFormat formatOf(const FormatKey& key) const;

    const char* p_;
    const char* end_;
    std::vector<GroupState> stack_;
    bool groupStart_ = false;  // no token yet in the newest group
    bool starPending_ = false; // the newest group began with \*
    int fallbackLeft_ = 0;     // characters still to skip after \uN
    char16_t highSurrogate_ = 0;
    int pendingCells_ = 0; // \cell seen, its separator not yet written

    int docCodepage_ = kWesternCodepage;
    int defaultFont_ = 0; // \deff, 0 when the file names none
    QHash<int, FontEntry> fonts_;
    int fontNumber_ = 0;
    int fontCodepage_ = 0;
    QString fontName_;
    bool fontNamePending_ = false;
    std::vector<std::optional<quint32>> colors_;
    int red_ = 0, green_ = 0, blue_ = 0;
    bool colorGiven_ = false;

    QByteArray pendingBytes_; // bytes of a multi-byte code page, decoded together
    int pendingCodepage_ = 0;
    rtf::CodepageDecoders decoders_;

    RtfContent content_;
    RtfParagraph paragraph_;
    FormatKey runKey_;
    bool runKeyValid_ = false;
};

bool Parser::run(QString& error) {
    while (p_ < end_) {
        const char c = *p_++;
        switch (c) {
        case '{':
            if (!openGroup(error))
                return false;
            break;
        case '}':
            if (!closeGroup())
                return true;
            break;
        case '\\':
            controlWord();
            break;
        case '\r':
        case '\n':
            break;
        default:
            if (stack_.empty())
                break;
            if (top().dest != Dest::Skip && enterContent())
                textByte(static_cast<unsigned char>(c), false);
        }
    }
    // A truncated file: keep what was read.
    if (!stack_.empty())
        finish();
    return true;
}

bool Parser::openGroup(QString& error) {
    flushBytes();
    fallbackLeft_ = 0;
    if (stack_.size() >= kMaxDepth) {
        error = QStringLiteral("the RTF groups are nested more than %1 levels deep").arg(kMaxDepth);
        return false;
    }
    stack_.push_back(stack_.empty() ? GroupState() : top());
    groupStart_ = true;
    starPending_ = false;
    return true;
}

bool Parser::closeGroup() {
    flushBytes();
    fallbackLeft_ = 0;
    groupStart_ = false;
    starPending_ = false;
    if (stack_.empty())
        return false;
    if (top().dest == Dest::FontTable && fontNamePending_)
        commitFont();
    if (top().dest == Dest::ColorTable && colorGiven_)
        commitColor();
    if (stack_.size() == 1) {
        finish();
        stack_.pop_back();
        return false;
    }
    stack_.pop_back();
    return true;
}

void Parser::controlWord() {
    if (p_ == end_ || stack_.empty())
        return;
    if (!isLetter(*p_)) {
        controlSymbol(*p_++);
        return;
    }
    const char* nameStart = p_;
    while (p_ < end_ && isLetter(*p_))
        ++p_;
    const std::string_view name(nameStart, static_cast<size_t>(p_ - nameStart));
    bool negative = false;
    if (p_ + 1 < end_ && *p_ == '-' && isDigit(p_[1])) {
        negative = true;
        ++p_;
    }
    bool hasParam = false;
    qint64 value = 0;
    while (p_ < end_ && isDigit(*p_)) {
        hasParam = true;
        value = std::min<qint64>(value * 10 + (*p_ - '0'), std::numeric_limits<int>::max());
        ++p_;
    }
    if (p_ < end_ && *p_ == ' ')
        ++p_;
    word(name, hasParam, static_cast<int>(negative ? -value : value));
}

void Parser::controlSymbol(char c) {
    if (c == '\'') {
        const int hi = p_ < end_ ? hexValue(*p_) : -1;
        const int lo = p_ + 1 < end_ ? hexValue(p_[1]) : -1;
        if (hi < 0 || lo < 0)
            return;
        p_ += 2;
        if (top().dest != Dest::Skip && enterContent())
            textByte(static_cast<unsigned char>(hi * 16 + lo), true);
        return;
    }
    if (top().dest == Dest::Skip)
        return;
    if (c == '*') {
        if (groupStart_)
            starPending_ = true;
        return;
    }
    if (!enterContent())
        return;
    switch (c) {
    case '\\':
    case '{':
    case '}':
        textByte(static_cast<unsigned char>(c), true);
        return;
    default:
        break;
    }
    flushBytes();
    if (consumeFallback())
        return;
    switch (c) {
    case '~':
        put(0x00A0);
        break;
    case '-':
        put(0x00AD);
        break;
    case '_':
        put(0x2011);
        break;
    case '\r':
    case '\n':
        put(QChar::ParagraphSeparator);
        break;
    default:
        break; // \: \| and unknown symbols carry no text
    }
}

// Called before the first text of a group: a group that began with \* and goes on with text
// is nothing this reader knows. False when the text is to be skipped.
bool Parser::enterContent() {
    if (groupStart_) {
        groupStart_ = false;
        if (std::exchange(starPending_, false))
            top().dest = Dest::Skip;
    }
    return top().dest != Dest::Skip;
}

// True when the current token is one of the fallback characters after \uN.
bool Parser::consumeFallback() {
    if (fallbackLeft_ <= 0)
        return false;
    --fallbackLeft_;
    return true;
}

// The first control word of a group may name a destination: where the group's text goes.
// True when the word did that and needs nothing more.
bool Parser::startDestination(Word w) {
    groupStart_ = false;
    const bool starred = std::exchange(starPending_, false);
    GroupState& st = top();
    switch (w) {
    case Word::FontTable:
        st.dest = Dest::FontTable;
        fontName_.clear();
        fontNamePending_ = false;
        return true;
    case Word::ColorTable:
        st.dest = Dest::ColorTable;
        colors_.clear();
        return true;
    case Word::Upr:
        st.uprOuter = st.dest;
        st.dest = Dest::Upr;
        return true;
    case Word::Ud:
        st.dest = st.uprOuter;
        return true;
    case Word::SkipDestination:
        st.dest = Dest::Skip;
        return true;
    default:
        // \* marks a destination a reader may ignore; this one is unknown here.
        if (starred)
            st.dest = Dest::Skip;
        return starred;
    }
}

void Parser::word(std::string_view name, bool hasParam, int param) {
    flushBytes();
    const WordEntry* entry = rtf::findWord(name);
    const Word w = entry ? entry->word : Word::Unknown;
    GroupState& st = top();
    if (w == Word::Bin) {
        // Raw bytes follow, in every destination; they may hold anything, braces included.
        const qint64 skip = hasParam ? std::max(param, 0) : 0;
        p_ += std::min<qint64>(skip, end_ - p_);
        if (st.dest != Dest::Skip && enterContent())
            consumeFallback();
        return;
    }
    if (st.dest == Dest::Skip)
        return;
    if (groupStart_ && startDestination(w))
        return;
    if (consumeFallback())
        return;
    const bool on = !hasParam || param != 0;
    switch (w) {
    case Word::Par:
        put(QChar::ParagraphSeparator);
        break;
    case Word::Line:
        put(QChar::LineSeparator);
        break;
    case Word::Row:
        if (st.dest == Dest::Body)
            endParagraph();
        break;
    case Word::Cell:
        if (st.dest == Dest::Body)
            ++pendingCells_;
        break;
    case Word::Char:
        put(entry->ch);
        break;
    case Word::Unicode:
        if (!hasParam)
            break;
        if (param < 0)
            param += 0x10000;
        put(param < 0 || param > 0x10FFFF ? kReplacement : char32_t(param));
        fallbackLeft_ = st.uc;
        break;
    case Word::Uc:
        st.uc = hasParam ? std::max(param, 0) : 1;
        break;
    case Word::Plain:
        st.resetCharFormat();
        break;
    case Word::Bold:
        st.bold = on;
        break;
    case Word::Italic:
        st.italic = on;
        break;
    case Word::Underline:
        st.underline = on;
        break;
    case Word::UnderlineNone:
        st.underline = false;
        break;
    case Word::Hidden:
        st.hidden = on;
        break;
    case Word::Font:
        if (st.dest == Dest::FontTable) {
            if (fontNamePending_)
                commitFont();
            fontNumber_ = std::max(param, 0);
            fontCodepage_ = 0;
            fontNamePending_ = true;
        } else {
            st.font = std::max(param, 0);
        }
        break;
    case Word::FontSize:
        st.halfPoints =
            param > 0 ? std::min(std::max(param, 2), kMaxHalfPoints) : kDefaultHalfPoints;
        break;
    case Word::Color:
        st.color = std::max(param, 0);
        break;
    case Word::Deff:
        defaultFont_ = std::max(param, 0);
        break;
    case Word::Fcharset:
        if (st.dest == Dest::FontTable && fontCodepage_ == 0)
            fontCodepage_ = rtf::codepageOfCharset(param);
        break;
    case Word::Cpg:
        if (st.dest == Dest::FontTable)
            fontCodepage_ = rtf::supportedCodepage(param);
        break;
    case Word::Ansi:
        docCodepage_ = kWesternCodepage;
        break;
    case Word::Ansicpg:
        docCodepage_ = rtf::supportedCodepage(param);
        break;
    case Word::Mac:
        docCodepage_ = 10000;
        break;
    case Word::Pc:
        docCodepage_ = 437;
        break;
    case Word::Pca:
        docCodepage_ = 850;
        break;
    case Word::Red:
    case Word::Green:
    case Word::Blue:
        if (st.dest == Dest::ColorTable) {
            const int v = std::clamp(param, 0, 255);
            (w == Word::Red ? red_ : w == Word::Green ? green_ : blue_) = v;
            colorGiven_ = true;
        }
        break;
    default:
        break;
    }
}

void Parser::textByte(unsigned char b, bool escaped) {
    if (consumeFallback())
        return;
    const Dest dest = top().dest;
    if (!escaped) {
        if (b == '\t') {
            flushBytes();
            put(u'\t');
            return;
        }
        if (b < 0x20)
            return;
        if (b == ';' && dest == Dest::ColorTable) {
            commitColor();
            return;
        }
        if (b == ';' && dest == Dest::FontTable) {
            flushBytes();
            commitFont();
            return;
        }
    }
    if (dest == Dest::ColorTable || dest == Dest::Upr)
        return;
    const int codepage = currentCodepage();
    if (codepage == kWesternCodepage) {
        flushBytes();
        put(rtf::cp1252ToUnicode(b));
        return;
    }
    if (!pendingBytes_.isEmpty() && pendingCodepage_ != codepage)
        flushBytes();
    pendingBytes_.append(static_cast<char>(b));
    pendingCodepage_ = codepage;
}

void Parser::flushBytes() {
    if (pendingBytes_.isEmpty())
        return;
    const QString text = decoders_.decode(pendingCodepage_, pendingBytes_);
    pendingBytes_.clear();
    for (QChar c : text)
        emitUnit(c.unicode());
}

int Parser::currentCodepage() const {
    const GroupState& st = stack_.back();
    if (st.dest == Dest::FontTable)
        return fontCodepage_ ? fontCodepage_ : docCodepage_;
    const auto it = fonts_.constFind(st.font >= 0 ? st.font : defaultFont_);
    return it != fonts_.cend() && it->codepage ? it->codepage : docCodepage_;
}

// UTF-16 units from \uN and from decoded bytes: surrogates pair up, a lone one becomes U+FFFD.
void Parser::emitUnit(char16_t unit) {
    if (QChar::isHighSurrogate(unit)) {
        if (std::exchange(highSurrogate_, 0))
            put(kReplacement);
        highSurrogate_ = unit;
    } else if (QChar::isLowSurrogate(unit)) {
        const char16_t high = std::exchange(highSurrogate_, 0);
        put(high ? QChar::surrogateToUcs4(high, unit) : kReplacement);
    } else {
        put(unit);
    }
}

// Every character goes through here; it decides what the character means and where it goes.
void Parser::put(char32_t cp) {
    if (cp < 0x10000 && QChar::isSurrogate(cp)) {
        emitUnit(static_cast<char16_t>(cp));
        return;
    }
    if (highSurrogate_) {
        highSurrogate_ = 0;
        put(kReplacement);
    }
    if (cp == QChar::ParagraphSeparator) {
        if (top().dest == Dest::Body)
            breakParagraph();
        return;
    }
    if (cp == 0 || cp == u'\r' || cp == u'\n') // raw line breaks carry no meaning in RTF
        return;
    if (cp == 0xFDD0 || cp == 0xFDD1) // the text document's frame markers
        cp = kReplacement;
    switch (top().dest) {
    case Dest::Body: {
        if (top().hidden)
            return;
        QString& text = runText();
        if (pendingCells_ > 0) {
            text += QString(pendingCells_, u'\t');
            pendingCells_ = 0;
        }
        appendCodePoint(text, cp);
        break;
    }
    case Dest::FontTable:
        if (cp >= 0x20 && cp != QChar::LineSeparator && fontName_.size() < kMaxFontName)
            appendCodePoint(fontName_, cp);
        fontNamePending_ = true;
        break;
    default:
        break;
    }
}

QString& Parser::runText() {
    const GroupState& st = top();
    const FormatKey key{st.font >= 0 ? st.font : defaultFont_,
                        st.color,
                        st.halfPoints,
                        st.bold,
                        st.italic,
                        st.underline};
    if (!runKeyValid_ || key != runKey_) {
        RtfCharFormat format = formatOf(key);
        if (paragraph_.runs.isEmpty() || paragraph_.runs.last().format != format)
            paragraph_.runs.append(RtfRun{QString(), std::move(format)});
        runKey_ = key;
        runKeyValid_ = true;
    }
    return paragraph_.runs.last().text;
}

RtfCharFormat Parser::formatOf(const FormatKey& key) const {
    RtfCharFormat f;
    const auto font = fonts_.constFind(key.font);
    if (font != fonts_.cend())
        f.family = font->name;
    f.pointSize = key.halfPoints / 2.0;
    f.bold = key.bold;
    f.italic = key.italic;
    f.underline = key.underline;
    if (key.color >= 0 && size_t(key.color) < colors_.size())
        f.color = colors_[size_t(key.color)];
    return f;
}

void Parser::breakParagraph() {
    content_.paragraphs.append(std::move(paragraph_));
    paragraph_ = RtfParagraph();
    runKeyValid_ = false;
    pendingCells_ = 0;
}

void Parser::endParagraph() {
    if (!paragraph_.runs.isEmpty())
        breakParagraph();
    pendingCells_ = 0;
}

void Parser::finish() {
    flushBytes();
    if (std::exchange(highSurrogate_, 0))
        put(kReplacement);
    endParagraph();
}

void Parser::commitFont() {
    // A ';' cannot be written inside a font name, so none is kept in one.
    fonts_.insert(fontNumber_, FontEntry{fontName_.trimmed().remove(u';'), fontCodepage_});
    fontName_.clear();
    fontNamePending_ = false;
}

void Parser::commitColor() {
    colors_.push_back(colorGiven_
                          ? std::optional<quint32>(quint32(red_ << 16 | green_ << 8 | blue_))
                          : std::nullopt);
    red_ = green_ = blue_ = 0;
    colorGiven_ = false;
}

} // namespace

QString RtfParagraph::text() const {
    QString out;
    for (const RtfRun& run : runs)
        out += run.text;
    return out;
}

QString RtfContent::plainText() const {
    QString out;
    for (qsizetype i = 0; i < paragraphs.size(); ++i) {
        if (i > 0)
            out += QLatin1String("\r\n");
        out += paragraphs[i].text().replace(QChar::LineSeparator, QLatin1String("\r\n"));
    }
    return out;
}

bool looksLikeRtf(const QByteArray& bytes) {
    QByteArrayView view(bytes);
    if (view.startsWith("\xEF\xBB\xBF"))
        view = view.sliced(3);
    return view.trimmed().startsWith("{\\rtf");
}

RtfContent parseRtf(const QByteArray& rtf, QString* error) {
    if (error)
        error->clear();
    if (!looksLikeRtf(rtf)) {
        if (error)
            *error = QStringLiteral("not an RTF file: it does not begin with {\\rtf");
        return {};
    }
    const qsizetype start = rtf.indexOf('{');
    Parser parser(QByteArray::fromRawData(rtf.constData() + start, rtf.size() - start));
    QString why;
    if (!parser.run(why)) {
        if (error)
            *error = why;
        return {};
    }
    return parser.take();
}

QString rtfToPlainText(const QByteArray& rtf) {
    return parseRtf(rtf).plainText();
}

} // namespace ed
