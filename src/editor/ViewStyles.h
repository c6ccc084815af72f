#pragma once
// The character formats of the edit view (font, size, bold, italic, underline, colour) as
// QScintilla styles: one style per distinct format, one style number per byte of the text. Style
// 0 is the document's font, for every character without a format of its own. Everything here
// works on byte offsets into the view's UTF-8 text and touches each byte a constant number of
// times, so a format change over megabytes stays quick.

#include "app/Ports.h"
#include "editor/RtfContent.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

#include <array>
#include <optional>
#include <utility>

class QsciScintillaBase;

namespace ed {

// The formats of a stretch of the text as they were, to be put back by an undo.
struct StyleSnapshot {
    qsizetype start = 0;
    qsizetype length = 0;
    // The style of each byte; a single one when all bytes had the same (a plain stretch).
    QByteArray styles;
    // What each style number of `styles` showed; none: the document's font.
    QList<std::optional<RtfCharFormat>> formats;
    bool rich = false;

    qsizetype memoryBytes() const {
        return qsizetype(sizeof(StyleSnapshot)) + styles.size() +
               formats.size() * qsizetype(sizeof(std::optional<RtfCharFormat>));
    }
};

class ViewStyles : public QObject {
    Q_OBJECT
public:
    // Style numbers a format can have: all but 0 and the view's own 32 to 39.
    static constexpr int kFormatStyles = 256 - 1 - 8;

    // Sets up `view` for styles kept by this class (the container lexer, UTF-8).
    explicit ViewStyles(QsciScintillaBase* view);

    // The font where a character has none of its own.
    void setDocumentFont(const FontSpec& font);
    FontSpec documentFont() const { return documentFont_; }
    // The document carries formats of its own (it was loaded from RTF or got some since).
    bool isRich() const { return rich_; }

    using FormatTable = std::array<std::optional<RtfCharFormat>, 256>;
    // An RTF file made ready for the view: its text, the style of each byte and what each style
    // shows. Reading a large RTF file takes a while: prepareRtf does it without the view, on any
    // thread, and only applyRtf touches the view.
    struct PreparedRtf {
        QByteArray text;
        QByteArray styles;
        FormatTable formats{};
        qsizetype formatCount = 0; // distinct formats in the file
        qsizetype merged = 0;      // of which shown as their nearest, for want of styles
    };
    // False, with the reason in *error, when the bytes are not readable RTF. With more distinct
    // formats than styles, the rarest take the look of their nearest.
    static bool prepareRtf(const QByteArray& rtf, PreparedRtf& out, QString* error);
    // Replaces the view's text and formats by prepared content, as one undo step of the view.
    // *notice tells when formats were merged; otherwise it is cleared.
    void applyRtf(const PreparedRtf& prepared, QString* notice);
    // Both in one: false, with the view untouched, when the bytes are not readable RTF.
    bool loadRtf(const QByteArray& rtf, QString* error, QString* notice);
    // What the view shows, as RTF (a plain document all in the document's font).
    QByteArray saveRtf() const;

    // Change Font on the bytes [start, start + length): each character keeps its underline and
    // colour and takes the font's name, size (unless 0), bold and italic. The whole text of a
    // plain document only changes the document's font.
    void setFont(qsizetype start, qsizetype length, const FontSpec& font);
    // The font of the character at byte `pos` (of the last one at the end of the text).
    FontSpec fontAt(qsizetype pos) const;
    // Each character of [start, start + length) (a UTF-8 sequence; a CR LF is one) takes
    // the next point size of `cycle`, from its first again when it runs out.
    void setSizeCycle(qsizetype start, qsizetype length, const QList<double>& cycle);
    // Every character in `font`, with no size, colour or underline of its own.
    void clearFormatting(const FontSpec& font);
    // Text just inserted at [start, start + length) takes the format of the character before it
    // (of the one after it at the start of the text).
    void inheritFormat(qsizetype start, qsizetype length);

    // For undo: the formats of a stretch, and putting them back (the text is the same again).
    StyleSnapshot snapshot(qsizetype start, qsizetype length) const;
    void restore(const StyleSnapshot& snapshot);

    // A status-bar text when the last format change had to show some formats as their nearest
    // (every style was taken); empty otherwise. Reading it clears it.
    QString takeNotice() { return std::exchange(notice_, QString()); }

private:
    qsizetype length() const;
    const char* bytes() const;
    // True when a byte has another style than 0 (read, not from the flag).
    bool hasOwnFormats() const;
    // The style of each byte of a stretch. Only a rich document has other styles than 0.
    QByteArray readStyles(qsizetype start, qsizetype length) const;
    void writeStyles(qsizetype start, const QByteArray& styles);
    void defineStyle(int style);
    // The style showing `format` (0 for none), a new one when none does. When every style is
    // taken, first frees those no byte outside [keepStart, keepEnd) nor `inUse` shows.
    int styleFor(const std::optional<RtfCharFormat>& format, qsizetype keepStart, qsizetype keepEnd,
                 const std::array<bool, 256>& inUse, bool& reclaimed);
    // Rewrites the styles of [start, start + source.size()): the character starting at byte i
    // becomes format formatOf(keyOf(source[i], its index among the characters)).
    template <class KeyOf, class FormatOf>
    void rewrite(qsizetype start, QByteArray source, qsizetype keyCount, KeyOf keyOf,
                 FormatOf formatOf);
    // The format a character of style `style` has: its own, or one made of the document font.
    RtfCharFormat effectiveFormat(const FormatTable& table, int style) const;

    QsciScintillaBase* view_;
    FontSpec documentFont_;
    bool rich_ = false;
    FormatTable formats_; // by style number; none: free (and always for 0 and 32 to 39)
    QString notice_;
};

} // namespace ed
