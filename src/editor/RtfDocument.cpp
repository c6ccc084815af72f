#include "editor/RtfDocument.h"

#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <QColor>
#include <QFont>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>

#include <utility>

namespace ed {

QTextCharFormat toTextCharFormat(const RtfCharFormat& format) {
    QTextCharFormat c;
    if (!format.family.isEmpty())
        c.setFontFamilies(QStringList{format.family});
    c.setFontPointSize(format.pointSize);
    c.setFontWeight(format.bold ? QFont::Bold : QFont::Normal);
    c.setFontItalic(format.italic);
    c.setFontUnderline(format.underline);
    if (format.color)
        c.setForeground(QColor::fromRgb(QRgb(0xFF000000u | *format.color)));
    return c;
}

RtfCharFormat rtfCharFormatOf(const QTextCharFormat& c, const QFont& defaultFont) {
    RtfCharFormat f;
    const QStringList families = c.fontFamilies().toStringList();
    f.family =
        !families.isEmpty() ? families.first() : c.property(QTextFormat::FontFamily).toString();
    if (f.family.isEmpty())
        f.family = defaultFont.family();
    if (c.hasProperty(QTextFormat::FontPointSize))
        f.pointSize = c.fontPointSize();
    else if (defaultFont.pointSizeF() > 0)
        f.pointSize = defaultFont.pointSizeF();
    f.bold = c.hasProperty(QTextFormat::FontWeight) ? c.fontWeight() >= QFont::DemiBold
                                                    : defaultFont.bold();
    f.italic = c.hasProperty(QTextFormat::FontItalic) ? c.fontItalic() : defaultFont.italic();
    f.underline =
        c.hasProperty(QTextFormat::TextUnderlineStyle) || c.hasProperty(QTextFormat::FontUnderline)
            ? c.fontUnderline()
            : defaultFont.underline();
    const QBrush fg = c.foreground();
    if (fg.style() != Qt::NoBrush)
        f.color = fg.color().rgb() & 0xFFFFFFu;
    return f;
}

RtfContent rtfContentOf(const QTextDocument& doc) {
    RtfContent content;
    const QFont base = doc.defaultFont();
    for (QTextBlock block = doc.begin(); block.isValid(); block = block.next()) {
        RtfParagraph paragraph;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (!fragment.isValid() || fragment.length() == 0)
                continue;
            const RtfCharFormat format = rtfCharFormatOf(fragment.charFormat(), base);
            // A line separator inside a block is a line break of the document: a paragraph.
            const QStringList pieces = fragment.text().split(QChar::LineSeparator);
            for (qsizetype i = 0; i < pieces.size(); ++i) {
                if (i > 0)
                    content.paragraphs.append(std::exchange(paragraph, RtfParagraph()));
                if (pieces[i].isEmpty())
                    continue;
                if (!paragraph.runs.isEmpty() && paragraph.runs.last().format == format)
                    paragraph.runs.last().text += pieces[i];
                else
                    paragraph.runs.append(RtfRun{pieces[i], format});
            }
        }
        content.paragraphs.append(std::move(paragraph));
    }
    return content;
}

QByteArray writeRtf(const QTextDocument& doc) {
    return writeRtf(rtfContentOf(doc));
}

bool readRtf(const QByteArray& rtf, QTextDocument& doc, QString* error) {
    QString why;
    const RtfContent content = parseRtf(rtf, &why);
    if (error)
        *error = why;
    if (!why.isEmpty())
        return false;

    QTextCursor c(&doc);
    c.beginEditBlock();
    c.select(QTextCursor::Document);
    c.setCharFormat(QTextCharFormat());
    c.removeSelectedText();
    c.setBlockCharFormat(QTextCharFormat());
    bool first = true;
    for (const RtfParagraph& paragraph : content.paragraphs) {
        if (!first)
            c.insertBlock(QTextBlockFormat(), paragraph.runs.isEmpty()
                                                  ? QTextCharFormat()
                                                  : toTextCharFormat(paragraph.runs[0].format));
        first = false;
        for (const RtfRun& run : paragraph.runs) {
            QString text = run.text;
            text.replace(QChar::LineSeparator, QChar::ParagraphSeparator);
            c.insertText(text, toTextCharFormat(run.format));
        }
    }
    c.endEditBlock();
    return true;
}

} // namespace ed
