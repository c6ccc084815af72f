#include "editor/RtfWriter.h"

#include "editor/RtfCodepage.h"
#include "util/ModelText.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ed {

namespace {

void appendNumber(QByteArray& out, const char* word, qint64 n) {
    out += word;
    out += QByteArray::number(n);
}

// Text as RTF: ASCII as is (\ { } escaped), tab and line break as control words, anything else
// as \uN with a one-character fallback. Characters beyond the BMP go as their two surrogates.
void appendText(QByteArray& out, QStringView text) {
    for (QChar qc : text) {
        const char16_t c = qc.unicode();
        if (c == u'\\' || c == u'{' || c == u'}') {
            out += '\\';
            out += char(c);
        } else if (c >= 0x20 && c < 0x7F) {
            out += char(c);
        } else if (c == u'\t') {
            out += "\\tab ";
        } else if (c == QChar::LineSeparator) {
            out += "\\line ";
        } else {
            appendNumber(out, "\\u", c < 0x8000 ? qint64(c) : qint64(c) - 0x10000);
            const unsigned char fallback = rtf::unicodeToCp1252(c);
            if (fallback >= 0x80) {
                out += "\\'";
                out += QByteArray::number(fallback, 16).rightJustified(2, '0');
            } else {
                out += '?';
            }
        }
    }
}

// The same for UTF-8 bytes of the model: printable ASCII is copied as it stands, the rest goes
// through `scratch` as UTF-16.
void appendModelText(QByteArray& out, QByteArrayView bytes, QString& scratch) {
    const char* p = bytes.data();
    const qsizetype n = bytes.size();
    for (qsizetype i = 0; i < n;) {
        qsizetype j = i;
        while (j < n && p[j] >= 0x20 && p[j] < 0x7F && p[j] != '\\' && p[j] != '{' && p[j] != '}')
            ++j;
        out.append(p + i, j - i);
        if (j == n)
            return;
        if (uchar(p[j]) < 0x80) {
            const char16_t c = char16_t(p[j]);
            appendText(out, QStringView(&c, 1));
            i = j + 1;
            continue;
        }
        const QByteArrayView rest = bytes.sliced(j);
        if (scratch.size() < rest.size())
            scratch.resize(rest.size());
        const qsizetype units = decodeModelUtf8(rest, reinterpret_cast<char16_t*>(scratch.data()));
        appendText(out, QStringView(scratch).first(units));
        return;
    }
}

// RTF sizes are half points, from 1 to 1638 points.
long halfPoints(double pointSize) {
    return std::isfinite(pointSize) ? std::clamp(std::lround(pointSize * 2), 2L, 3276L) : 24L;
}

// The font and colour tables, in order of first use; colour 0 is the default colour.
class Tables {
public:
    void add(const RtfCharFormat& f) {
        if (!fontIndex_.contains(f.family)) {
            fontIndex_.insert(f.family, fonts_.size());
            fonts_.append(f.family);
        }
        if (f.color && !colorIndex_.contains(*f.color)) {
            colors_.append(*f.color);
            colorIndex_.insert(*f.color, colors_.size());
        }
    }

    // The file's start, up to where the text begins.
    QByteArray header() const {
        QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\r\n{\\fonttbl";
        for (qsizetype i = 0; i < fonts_.size(); ++i) {
            appendNumber(out, "{\\f", i);
            out += "\\fnil\\fcharset0 ";
            appendText(out, QString(fonts_[i]).remove(u';'));
            out += ";}";
        }
        out += "}\r\n{\\colortbl;";
        for (quint32 rgb : colors_) {
            appendNumber(out, "\\red", (rgb >> 16) & 0xFF);
            appendNumber(out, "\\green", (rgb >> 8) & 0xFF);
            appendNumber(out, "\\blue", rgb & 0xFF);
            out += ';';
        }
        out += "}\r\n\\pard\\plain\r\n";
        return out;
    }

    // Switches the text that follows to format `f`.
    void appendFormat(QByteArray& out, const RtfCharFormat& f) const {
        appendNumber(out, "\\plain\\f", fontIndex_.value(f.family));
        appendNumber(out, "\\fs", halfPoints(f.pointSize));
        if (f.bold)
            out += "\\b";
        if (f.italic)
            out += "\\i";
        if (f.underline)
            out += "\\ul";
        if (f.color)
            appendNumber(out, "\\cf", colorIndex_.value(*f.color));
        out += ' ';
    }

private:
    QStringList fonts_;
    QHash<QString, qsizetype> fontIndex_;
    QList<quint32> colors_;
    QHash<quint32, qsizetype> colorIndex_;
};

// Calls run(bytes, style) for each stretch of a paragraph whose characters share a style, and
// paragraphEnd() after each paragraph (the last one too). A CR LF ends a paragraph; the style
// of a character is that of its first byte, mapped through `canonical`.
template <class Run, class ParagraphEnd>
void forEachRun(QByteArrayView text, QByteArrayView styles, const std::array<uchar, 256>& canonical,
                Run run, ParagraphEnd paragraphEnd) {
    const char* p = text.data();
    const qsizetype n = text.size();
    auto styleAt = [&](qsizetype i) {
        return styles.isEmpty() ? canonical[0] : canonical[uchar(styles[i])];
    };
    qsizetype start = 0;
    uchar style = n > 0 ? styleAt(0) : 0;
    for (qsizetype i = 0; i < n; ++i) {
        if (p[i] == '\r' && i + 1 < n && p[i + 1] == '\n') {
            if (i > start)
                run(QByteArrayView(p + start, i - start), style);
            paragraphEnd();
            start = i + 2;
            ++i;
            if (start < n)
                style = styleAt(start);
        } else if ((uchar(p[i]) & 0xC0) != 0x80 && styleAt(i) != style) {
            if (i > start)
                run(QByteArrayView(p + start, i - start), style);
            start = i;
            style = styleAt(i);
        }
    }
    if (n > start)
        run(QByteArrayView(p + start, n - start), style);
    paragraphEnd();
}

} // namespace

QByteArray writeRtf(const RtfContent& content) {
    Tables tables;
    for (const RtfParagraph& paragraph : content.paragraphs)
        for (const RtfRun& run : paragraph.runs)
            tables.add(run.format);

    QByteArray out = tables.header();
    std::optional<RtfCharFormat> current;
    for (const RtfParagraph& paragraph : content.paragraphs) {
        for (const RtfRun& run : paragraph.runs) {
            if (current != run.format) {
                tables.appendFormat(out, run.format);
                current = run.format;
            }
            appendText(out, run.text);
        }
        out += "\\par\r\n";
    }
    out += "}";
    return out;
}

QByteArray writeRtf(QByteArrayView text, QByteArrayView styles,
                    const std::array<RtfCharFormat, 256>& formats) {
    // Styles of the same format count as one, so that runs split only where the format changes.
    std::array<uchar, 256> canonical;
    for (int s = 0; s < 256; ++s) {
        canonical[size_t(s)] = uchar(s);
        for (int t = 0; t < s; ++t) {
            if (canonical[size_t(t)] == t && formats[size_t(t)] == formats[size_t(s)]) {
                canonical[size_t(s)] = uchar(t);
                break;
            }
        }
    }
    Tables tables;
    std::array<bool, 256> seen{};
    forEachRun(
        text, styles, canonical,
        [&](QByteArrayView, uchar style) {
            if (!std::exchange(seen[style], true))
                tables.add(formats[style]);
        },
        [] {});

    QByteArray out = tables.header();
    out.reserve(out.size() + text.size() + text.size() / 4);
    int current = -1;
    std::array<QByteArray, 256> switchTo; // each format's control words, made once
    QString decoded;
    forEachRun(
        text, styles, canonical,
        [&](QByteArrayView bytes, uchar style) {
            if (current != style) {
                if (switchTo[style].isEmpty())
                    tables.appendFormat(switchTo[style], formats[style]);
                out += switchTo[style];
                current = style;
            }
            appendModelText(out, bytes, decoded);
        },
        [&] { out += "\\par\r\n"; });
    out += "}";
    return out;
}

} // namespace ed
