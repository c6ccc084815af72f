#pragma once
// What an RTF file holds for this editor: paragraphs of text runs, each run with the character
// formatting the editor keeps (font, size, bold, italic, underline, colour). The reader produces
// it, the writer consumes it, and the document side converts it to and from a QTextDocument.

#include <QList>
#include <QString>

#include <optional>

namespace ed {

struct RtfCharFormat {
    QString family;        // empty: the document's default font
    double pointSize = 12; // RTF counts half points, so sizes are multiples of 0.5
    bool bold = false;
    bool italic = false;
    bool underline = false;
    std::optional<quint32> color; // 0xRRGGBB; none: the default text colour

    friend bool operator==(const RtfCharFormat&, const RtfCharFormat&) = default;
};

// A run's text never holds NUL, CR, LF or QChar::ParagraphSeparator; QChar::LineSeparator marks
// a line break inside the paragraph (RTF's \line). Runs are never empty, and two neighbours in a
// paragraph never share the same format.
struct RtfRun {
    QString text;
    RtfCharFormat format;

    friend bool operator==(const RtfRun&, const RtfRun&) = default;
};

struct RtfParagraph {
    QList<RtfRun> runs;

    QString text() const;
    friend bool operator==(const RtfParagraph&, const RtfParagraph&) = default;
};

struct RtfContent {
    QList<RtfParagraph> paragraphs;

    // The text with every paragraph and line break as CR LF, with no break after the last
    // paragraph: what the edit control holds after loading the content.
    QString plainText() const;
    friend bool operator==(const RtfContent&, const RtfContent&) = default;
};

} // namespace ed
