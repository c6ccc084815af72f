// Character formats kept as the edit view's styles: RTF in and out with its formats, merging when
// formats outnumber styles, sizes per character, undo snapshots, and typed text taking its
// neighbour's format.

#include "editor/ViewStyles.h"
#include "RtfSampleFiles.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <Qsci/qsciscintillabase.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using namespace ed;
using namespace ed::test;
using Sci = QsciScintillaBase;

namespace {

RtfCharFormat fmt(const char* family, double size, bool b = false, bool i = false, bool u = false,
                  std::optional<quint32> color = {}) {
    return RtfCharFormat{QString::fromUtf8(family), size, b, i, u, color};
}

struct Span {
    const char* text; // UTF-8; "\n" starts a new paragraph
    RtfCharFormat format;
};

RtfContent contentOf(const std::vector<Span>& spans) {
    RtfContent c;
    c.paragraphs.append(RtfParagraph());
    for (const Span& s : spans) {
        const QStringList pieces = QString::fromUtf8(s.text).split(u'\n');
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            if (i > 0)
                c.paragraphs.append(RtfParagraph());
            if (!pieces[i].isEmpty())
                c.paragraphs.last().runs.append(RtfRun{pieces[i], s.format});
        }
    }
    return c;
}

// A view without a window, with its styles.
struct View {
    Sci sci;
    ViewStyles& styles = *new ViewStyles(&sci); // owned by the view

    View() { sci.SendScintilla(Sci::SCI_SETEOLMODE, Sci::SC_EOL_CRLF); }
    QByteArray text() const {
        const long n = sci.SendScintilla(Sci::SCI_GETLENGTH);
        return QByteArray(
            static_cast<const char*>(sci.SendScintillaPtrResult(Sci::SCI_GETCHARACTERPOINTER)), n);
    }
    void setText(const QByteArray& text) {
        sci.SendScintilla(Sci::SCI_CLEARALL);
        sci.SendScintilla(Sci::SCI_APPENDTEXT, uintptr_t(text.size()), text.constData());
    }
    void insert(qsizetype at, const char* text) {
        sci.SendScintilla(Sci::SCI_INSERTTEXT, uintptr_t(at), text);
        styles.inheritFormat(at, qsizetype(strlen(text)));
    }
    void load(const QByteArray& rtf) {
        QString error, notice;
        ASSERT_TRUE(styles.loadRtf(rtf, &error, &notice)) << error.toStdString();
        EXPECT_TRUE(notice.isEmpty()) << notice.toStdString();
    }
    // Paints the view, which asks for styling up to the end of what it shows.
    void paint() {
        sci.resize(400, 300);
        sci.viewport()->grab();
    }
    RtfContent saved() const { return parseRtf(styles.saveRtf()); }
    // describe() of every character of the saved document, in order.
    QStringList charFormats() const {
        QStringList out;
        for (const RtfParagraph& p : saved().paragraphs)
            for (const RtfRun& r : p.runs)
                for (qsizetype i = 0; i < r.text.size(); ++i)
                    if (!r.text[i].isLowSurrogate())
                        out.append(describe(r.format));
        return out;
    }
};

// Three formats, a line break inside the second.
const QByteArray kRich =
    writeRtf(contentOf({{"plain ", fmt("Arial", 12)},
                        {"bold\nred", fmt("Arial", 12, true, false, false, 0xFF0000)},
                        {" end", fmt("Times", 14, false, true, true)}}));

QList<double> sizes(int count, double first) {
    QList<double> out;
    for (int i = 0; i < count; ++i)
        out.append(first + i);
    return out;
}

TEST(ViewStyles, LoadThenSaveKeepsTextAndFormats) {
    const struct {
        const char* name;
        std::vector<Span> spans;
    } docs[] = {
        {"formats",
         {{"plain ", fmt("Arial", 12)},
          {"italic ", fmt("Arial", 1, false, true)},
          {"all", fmt("Courier New", 10.5, true, true, true, 0x0080FF)},
          {" black", fmt("Arial", 1638, false, false, false, 0x000000)}}},
        {"beyond ASCII",
         {{"café € “q” — Ω 日本語 😀👍🏽 𝄞", fmt("Noto Sans", 14)}}},
        {"tabs, empty paragraphs, format changes at line breaks",
         {{"\ta\tb\t\n\n\nc\n", fmt("Mono", 9, true)}, {"\nthree", fmt("Arial", 12)}}},
        {"escapes",
         {{"\\par {\\b not bold} \\u233? \\'e9 }{", fmt("Ｍ{S}\\ Gothic", 12)},
          {"y", fmt("Arial", 12)}}},
    };
    for (const auto& d : docs) {
        SCOPED_TRACE(d.name);
        const RtfContent content = contentOf(d.spans);
        const QByteArray rtf = writeRtf(content);
        View view;
        view.setText("old content");
        view.load(rtf);
        EXPECT_TRUE(view.styles.isRich());
        EXPECT_EQ(view.text(), content.plainText().toUtf8());
        EXPECT_EQ(view.styles.saveRtf(), rtf);
    }
}

TEST(ViewStyles, SamplesLoadToTheirWordsAndSaveThem) {
    for (const QString base : {"writer-plain", "writer-mixed"}) {
        View view;
        view.load(readSample(base + ".rtf"));
        EXPECT_EQ(words(QString::fromUtf8(view.text())),
                  words(QString::fromUtf8(readSample(base + ".txt"))));
        EXPECT_EQ(view.saved().plainText(), QString::fromUtf8(view.text()));
    }
}

TEST(ViewStyles, BadRtfChangesNothing) {
    View view;
    view.setText("before");
    QString error, notice = "stale";
    EXPECT_FALSE(view.styles.loadRtf("not rtf at all", &error, &notice));
    EXPECT_EQ(error, QStringLiteral("not an RTF file: it does not begin with {\\rtf"));
    EXPECT_EQ(view.text(), "before");
    EXPECT_FALSE(view.styles.isRich());

    view.load("{\\rtf1 a\\line b\\par {\\b c}}");
    EXPECT_EQ(view.text(), "a\r\nb\r\nc");
}

// Format k (of 300) has size 10 + k/2 and k + 1 characters: the 53 rarest, the smallest sizes,
// have to take the look of the nearest format kept, size 36.5.
TEST(ViewStyles, MoreFormatsThanStylesMergesTheRarestAndSaysSo) {
    for (const int count : {ViewStyles::kFormatStyles, 300}) {
        QByteArray rtf = "{\\rtf1 ";
        for (int k = 0; k < count; ++k)
            rtf +=
                "{\\fs" + QByteArray::number(20 + k) + ' ' + QByteArray(k + 1, 'a' + k % 26) + '}';
        View view;
        QString error, notice;
        ASSERT_TRUE(view.styles.loadRtf(rtf + '}', &error, &notice));
        EXPECT_EQ(view.saved().plainText(), QString::fromUtf8(view.text()));
        const QStringList formats = view.charFormats();
        qsizetype at = 0;
        for (int k = 0; k < count; ++k, at += k) {
            const int kept = count > ViewStyles::kFormatStyles ? std::max(k, 53) : k;
            ASSERT_EQ(formats[at], "Arial " + QString::number(10 + kept / 2.0)) << k;
        }
        EXPECT_EQ(notice.contains("300") && notice.contains("53"),
                  count > ViewStyles::kFormatStyles)
            << notice.toStdString();
    }
    // More sizes at once than there are styles: said so, and the text is kept.
    View view;
    view.setText(QByteArray(400, 'x'));
    view.styles.setSizeCycle(0, 400, sizes(300, 1));
    EXPECT_FALSE(view.styles.takeNotice().isEmpty());
    EXPECT_EQ(view.text(), QByteArray(400, 'x'));
    EXPECT_EQ(view.charFormats().first(), "Arial 1");
}

// The font of the whole plain text is the document's font; of part of it, a format; a size cycle
// keeps each character's other attributes.
TEST(ViewStyles, FontOfThePlainDocumentOrOfAPart) {
    View view;
    view.setText("abc\r\ndef");
    view.styles.setFont(0, 8, FontSpec{"Courier New", 11, true, false});
    EXPECT_FALSE(view.styles.isRich());
    EXPECT_EQ(view.styles.documentFont().name, "Courier New");
    EXPECT_EQ(view.charFormats(), QStringList(6, "Courier New 11 b"));

    view.styles.setFont(1, 1, FontSpec{"Times", 0, false, true}); // size 0 keeps the size
    EXPECT_TRUE(view.styles.isRich());
    EXPECT_EQ(view.styles.fontAt(1).size, 11);
    view.styles.setSizeCycle(0, 8, {20});
    EXPECT_EQ(view.charFormats(),
              QStringList({"Courier New 20 b", "Times 20 i", "Courier New 20 b", "Courier New 20 b",
                           "Courier New 20 b", "Courier New 20 b"}));
}

TEST(ViewStyles, SnapshotPutsFormatsBackAfterAnyChange) {
    View view;
    view.load(kRich);
    const QByteArray original = view.styles.saveRtf();
    const StyleSnapshot whole = view.styles.snapshot(0, view.text().size());
    const StyleSnapshot part = view.styles.snapshot(3, 6);

    view.styles.setFont(3, 6, FontSpec{"Mono", 30, false, false});
    view.styles.restore(part);
    EXPECT_EQ(view.styles.saveRtf(), original);

    // Enough sizes (22 characters, 20 rounds) to take every style, so styles get reused.
    for (int round = 0; round < 20; ++round)
        view.styles.setSizeCycle(0, view.text().size(), sizes(100, 100 * round + 1));
    view.styles.clearFormatting(FontSpec());
    view.styles.restore(whole);
    EXPECT_EQ(view.styles.saveRtf(), original);

    // Undoing the only format change of a plain document makes it plain again.
    View plain;
    plain.setText("plain text");
    const StyleSnapshot unformatted = plain.styles.snapshot(1, 5);
    plain.styles.setSizeCycle(1, 5, {10, 20, 30});
    plain.styles.restore(unformatted);
    EXPECT_FALSE(plain.styles.isRich());
}

TEST(ViewStyles, TypedTextTakesTheFormatBeforeIt) {
    const std::pair<qsizetype, const char*> cases[] = {
        {4, "Arial 12 b"}, {0, "Arial 12 b"}, {9, "Arial 12"}, {11, "Arial 12"}};
    for (const auto& [at, format] : cases) {
        View view;
        view.load("{\\rtf1 {\\b bold}plain\\par next}");
        view.paint();
        view.insert(at, "\xC3\xA9");
        view.paint();
        EXPECT_EQ(view.sci.SendScintilla(Sci::SCI_GETENDSTYLED), view.text().size());
        const qsizetype charIndex =
            QString::fromUtf8(view.text().left(at)).remove('\r').remove('\n').size();
        EXPECT_EQ(view.charFormats().value(charIndex), format) << at;
    }
}

} // namespace
