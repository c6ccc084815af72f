#include "editor/RtfWriter.h"

#include "editor/RtfCodepage.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace ed {

namespace {

void appendNumber(QByteArray& out, const char* word, qint64 n) {
    out += word;
    out += QByteArray::number(n);
}

// Text as RTF: ASCII as is (\ { } escaped), tab and line break as control words, anything else
// as \uN with a one-character fallback. Characters beyond the BMP go as their two surrogates.
void appendText(QByteArray& out, const QString& text) {
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

// RTF sizes are half points, from 1 to 1638 points.
long halfPoints(double pointSize) {
    return std::isfinite(pointSize) ? std::clamp(std::lround(pointSize * 2), 2L, 3276L) : 24L;
}

} // namespace

QByteArray writeRtf(const RtfContent& content) {
    // Font and colour tables in order of first use; colour 0 is the default colour.
    QStringList fonts;
    QHash<QString, qsizetype> fontIndex;
    QList<quint32> colors;
    QHash<quint32, qsizetype> colorIndex;
    for (const RtfParagraph& paragraph : content.paragraphs) {
        for (const RtfRun& run : paragraph.runs) {
            if (!fontIndex.contains(run.format.family)) {
                fontIndex.insert(run.format.family, fonts.size());
                fonts.append(run.format.family);
            }
            if (run.format.color && !colorIndex.contains(*run.format.color)) {
                colors.append(*run.format.color);
                colorIndex.insert(*run.format.color, colors.size());
            }
        }
    }

    QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\r\n{\\fonttbl";
    for (qsizetype i = 0; i < fonts.size(); ++i) {
        appendNumber(out, "{\\f", i);
        out += "\\fnil\\fcharset0 ";
        appendText(out, QString(fonts[i]).remove(u';'));
        out += ";}";
    }
    out += "}\r\n{\\colortbl;";
    for (quint32 rgb : colors) {
        appendNumber(out, "\\red", (rgb >> 16) & 0xFF);
        appendNumber(out, "\\green", (rgb >> 8) & 0xFF);
        appendNumber(out, "\\blue", rgb & 0xFF);
        out += ';';
    }
    out += "}\r\n\\pard\\plain\r\n";

    std::optional<RtfCharFormat> current;
    for (const RtfParagraph& paragraph : content.paragraphs) {
        for (const RtfRun& run : paragraph.runs) {
            const RtfCharFormat& f = run.format;
            if (current != f) {
                appendNumber(out, "\\plain\\f", fontIndex.value(f.family));
                appendNumber(out, "\\fs", halfPoints(f.pointSize));
                if (f.bold)
                    out += "\\b";
                if (f.italic)
                    out += "\\i";
                if (f.underline)
                    out += "\\ul";
                if (f.color)
                    appendNumber(out, "\\cf", colorIndex.value(*f.color));
                out += ' ';
                current = f;
            }
            appendText(out, run.text);
        }
        out += "\\par\r\n";
    }
    out += "}";
    return out;
}

RtfContent plainRtfContent(QStringView model, const RtfCharFormat& format) {
    RtfContent content;
    QString line;
    const auto endParagraph = [&] {
        RtfParagraph p;
        if (!line.isEmpty())
            p.runs.append(RtfRun{std::exchange(line, QString()), format});
        content.paragraphs.append(std::move(p));
    };
    for (qsizetype i = 0; i < model.size(); ++i) {
        const QChar c = model[i];
        if (c == u'\r' && i + 1 < model.size() && model[i + 1] == u'\n')
            ++i;
        if (c == u'\r' || c == u'\n' || c == QChar::ParagraphSeparator)
            endParagraph();
        else if (c != QChar(0))
            line += c;
    }
    endParagraph();
    return content;
}

} // namespace ed
