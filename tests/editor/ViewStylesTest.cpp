// Character formats kept as the edit view's styles: RTF in and out with its formats, the
// samples' words, merging when formats outnumber styles, sizes per character, undo snapshots,
// and typed text taking its neighbour's format.

#include "editor/ViewStyles.h"
#include "RtfDescribe.h"
#include "RtfSampleFiles.h"
#include "editor/RtfPlain.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <Qsci/qsciscintillabase.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
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
    // "family size [b][i][u][#rrggbb]" of every character of the saved document, in order.
    QStringList charFormats() const {
        QStringList out;
        for (const RtfParagraph& p : saved().paragraphs)
            for (const RtfRun& r : p.runs)
                for (qsizetype i = 0; i < r.text.size(); ++i)
                    if (!r.text[i].isLowSurrogate())
                        out.append(test::describe(r.format));
        return out;
    }
};

// Three formats, a line break inside the second.
const QByteArray kRich =
    writeRtf(contentOf({{"plain ", fmt("Arial", 12)},
                        {"bold\nred", fmt("Arial", 12, true, false, false, 0xFF0000)},
                        {" end", fmt("Times", 14, false, true, true)}}));

QString sizeOf(const FontSpec& f) {
    return f.name + ' ' + QString::number(f.size) + (f.bold ? " b" : "") + (f.italic ? " i" : "");
}

struct DocCase {
    const char* name;
    std::vector<Span> spans;
};

class ViewStylesRoundTrip : public ::testing::TestWithParam<DocCase> {};

TEST_P(ViewStylesRoundTrip, LoadThenSaveKeepsTextAndFormats) {
    const RtfContent content = contentOf(GetParam().spans);
    const QByteArray rtf = writeRtf(content);
    View view;
    view.setText("old content");
    view.load(rtf);
    EXPECT_TRUE(view.styles.isRich());
    EXPECT_EQ(view.text(), content.plainText().toUtf8());
    EXPECT_EQ(view.styles.saveRtf(), rtf);
}

const DocCase kDocs[] = {
    {"Formats",
     {{"plain ", fmt("Arial", 12)},
      {"bold ", fmt("Arial", 12, true)},
      {"italic ", fmt("Arial", 12, false, true)},
      {"under ", fmt("Arial", 12, false, false, true)},
      {"red ", fmt("Arial", 12, false, false, false, 0xFF0000)},
      {"all", fmt("Courier New", 10.5, true, true, true, 0x0080FF)},
      {" black", fmt("Arial", 12, false, false, false, 0x000000)}}},
    {"Sizes", {{"a", fmt("Arial", 1)}, {"b", fmt("Arial", 8.5)}, {"c", fmt("Arial", 1638)}}},
    {"BeyondAscii",
     {{"café € “q” — Ω 日本語 😀👍🏽 𝄞", fmt("Noto Sans", 14)}}},
    {"TabsAndEmptyParagraphs", {{"\ta\tb\t\n\n\nc\n", fmt("Mono", 9)}}},
    {"FormatChangesAtLineBreaks",
     {{"one\ntwo", fmt("Arial", 12, true)}, {"\nthree", fmt("Arial", 12)}}},
    {"BackslashesAndBraces", {{"\\par {\\b not bold} \\u233? \\'e9 }{", fmt("Arial", 12)}}},
    {"FontNamesNeedEscapes", {{"x", fmt("Ｍ{S}\\ Gothic", 12)}, {"y", fmt("Arial", 12)}}},
};

INSTANTIATE_TEST_SUITE_P(Documents, ViewStylesRoundTrip, ::testing::ValuesIn(kDocs),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ViewStyles, SamplesLoadToTheirWordsAndSaveThem) {
    for (const char* base : {"writer-plain", "writer-mixed"}) {
        View view;
        view.load(readSample(QString::fromLatin1(base) + ".rtf"));
        const QString reference = QString::fromUtf8(readSample(QString::fromLatin1(base) + ".txt"));
        EXPECT_EQ(words(QString::fromUtf8(view.text())), words(reference)) << base;
        EXPECT_EQ(view.saved().plainText(), QString::fromUtf8(view.text())) << base;
    }
}

TEST(ViewStyles, BadRtfChangesNothingAndLoadIsOneUndoStep) {
    View view;
    view.setText("before");
    view.sci.SendScintilla(Sci::SCI_EMPTYUNDOBUFFER);
    QString error, notice = "stale";
    EXPECT_FALSE(view.styles.loadRtf("not rtf at all", &error, &notice));
    EXPECT_EQ(error, QStringLiteral("not an RTF file: it does not begin with {\\rtf"));
    EXPECT_EQ(view.text(), "before");
    EXPECT_FALSE(view.styles.isRich());

    view.load("{\\rtf1 a\\line b\\par {\\b c}}");
    EXPECT_EQ(view.text(), "a\r\nb\r\nc");
    view.sci.SendScintilla(Sci::SCI_UNDO);
    EXPECT_EQ(view.text(), "before");
}

// Format k (of 300) has size 10 + k/2 and k + 1 characters: the 53 rarest, the smallest sizes,
// have to take the look of the nearest format kept, size 36.5.
TEST(ViewStyles, MoreFormatsThanStylesMergesTheRarestAndSaysSo) {
    for (const int count : {ViewStyles::kFormatStyles, 300}) {
        QByteArray rtf = "{\\rtf1 ";
        for (int k = 0; k < count; ++k)
            rtf +=
                "{\\fs" + QByteArray::number(20 + k) + ' ' + QByteArray(k + 1, 'a' + k % 26) + '}';
        rtf += '}';
        View view;
        QString error, notice;
        ASSERT_TRUE(view.styles.loadRtf(rtf, &error, &notice));
        EXPECT_EQ(view.saved().plainText(), QString::fromUtf8(view.text()));
        const QStringList formats = view.charFormats();
        qsizetype at = 0;
        for (int k = 0; k < count; ++k, at += k) {
            const int kept = count > ViewStyles::kFormatStyles ? std::max(k, 53) : k;
            ASSERT_EQ(formats[at], "Arial " + QString::number(10 + kept / 2.0)) << k;
        }
        if (count > ViewStyles::kFormatStyles)
            EXPECT_TRUE(notice.contains("300") && notice.contains("53")) << notice.toStdString();
        else
            EXPECT_TRUE(notice.isEmpty()) << notice.toStdString();
    }
}

struct CycleCase {
    const char* name;
    const char* text;
    qsizetype start, length; // bytes
    QList<double> cycle;
    const char* sizes; // per character of the text, "-" for the document's font (9)
};

class ViewStylesSizeCycle : public ::testing::TestWithParam<CycleCase> {};

TEST_P(ViewStylesSizeCycle, GivesEachCharacterTheNextSize) {
    const CycleCase& c = GetParam();
    View view;
    view.setText(c.text);
    view.styles.setSizeCycle(c.start, c.length, c.cycle);
    QStringList expected;
    for (const QString& s : QString::fromLatin1(c.sizes).split(' '))
        expected.append("Arial " + (s == "-" ? QStringLiteral("9") : s));
    EXPECT_EQ(view.charFormats(), expected);
    EXPECT_EQ(view.text(), c.text);
    EXPECT_TRUE(view.styles.isRich());
}

// A CR LF is one character and takes one size (the saved RTF does not show it).
const CycleCase kCycles[] = {
    {"MultibyteAndBreaks",
     "a\xC3\xA9\r\n\xF0\x9F\x98\x80"
     "b",
     0,
     10,
     {10, 11, 12},
     "10 11 10 11"},
    {"PartOfTheText", "abcdef", 2, 3, {20, 30}, "- - 20 30 20 -"},
    {"CycleLongerThanRange", "xyz", 0, 3, {5, 6, 7, 8}, "5 6 7"},
    {"BreakTakesItsSize", "ab\r\ncd", 1, 5, {1, 2, 3}, "- 1 3 1"},
};

INSTANTIATE_TEST_SUITE_P(Cases, ViewStylesSizeCycle, ::testing::ValuesIn(kCycles),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ViewStyles, PlainDocumentFontAndClearFormatting) {
    View view;
    view.setText("abc\r\ndef");
    FontSpec courier{"Courier New", 11, true, false};
    view.styles.setFont(0, 8, courier); // the whole plain text: the document's font
    EXPECT_FALSE(view.styles.isRich());
    EXPECT_EQ(sizeOf(view.styles.documentFont()), "Courier New 11 b");
    EXPECT_EQ(view.charFormats(), QStringList(6, "Courier New 11 b"));

    view.styles.setFont(1, 1, FontSpec{"Times", 0, false, true}); // size 0 keeps the size
    EXPECT_TRUE(view.styles.isRich());
    EXPECT_EQ(sizeOf(view.styles.fontAt(1)), "Times 11 i");
    EXPECT_EQ(sizeOf(view.styles.fontAt(99)), "Courier New 11 b");
    view.styles.setSizeCycle(0, 8, {20});
    EXPECT_EQ(view.charFormats(),
              QStringList({"Courier New 20 b", "Times 20 i", "Courier New 20 b", "Courier New 20 b",
                           "Courier New 20 b", "Courier New 20 b"}));

    view.styles.clearFormatting(FontSpec{"Arial", 9, false, false});
    EXPECT_FALSE(view.styles.isRich());
    EXPECT_EQ(view.charFormats(), QStringList(6, "Arial 9"));
    EXPECT_EQ(view.saved(), parseRtf(plainTextToRtf("abc\r\ndef", FontSpec())));
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
    for (int round = 0; round < 20; ++round) {
        QList<double> cycle;
        for (int i = 0; i < 100; ++i)
            cycle.append(100 * round + i + 1);
        view.styles.setSizeCycle(0, view.text().size(), cycle);
    }
    view.styles.clearFormatting(FontSpec());
    view.styles.restore(whole);
    EXPECT_EQ(view.styles.saveRtf(), original);
    EXPECT_TRUE(view.styles.isRich());

    // A plain stretch's snapshot is small, and undoing the only format change makes the
    // document plain again.
    View plain;
    plain.setText(QByteArray(100000, 'p'));
    const QByteArray before = plain.styles.saveRtf();
    const StyleSnapshot unformatted = plain.styles.snapshot(100, 50000);
    EXPECT_LT(unformatted.memoryBytes(), 100);
    plain.styles.setSizeCycle(100, 50000, {10, 20, 30});
    EXPECT_TRUE(plain.styles.isRich());
    plain.styles.restore(unformatted);
    EXPECT_FALSE(plain.styles.isRich());
    EXPECT_EQ(plain.styles.saveRtf(), before);
}

TEST(ViewStyles, StylesNoLongerShownAreReusedAndExhaustionIsReported) {
    View view;
    view.setText(QByteArray(400, 'x'));
    for (int round = 0; round < 5; ++round) {
        QList<double> cycle;
        for (int i = 0; i < 200; ++i)
            cycle.append(200 * round + i + 1);
        view.styles.setSizeCycle(0, 400, cycle);
        EXPECT_TRUE(view.styles.takeNotice().isEmpty()) << round;
    }
    EXPECT_EQ(view.charFormats().last(), "Arial 1000");

    QList<double> tooMany;
    for (int i = 0; i < 300; ++i)
        tooMany.append(i + 1);
    view.styles.setSizeCycle(0, 400, tooMany);
    EXPECT_FALSE(view.styles.takeNotice().isEmpty());
    EXPECT_EQ(view.text(), QByteArray(400, 'x'));
    EXPECT_EQ(view.charFormats().first(), "Arial 1");
}

// Edits undone and redone by the view itself: what comes back has its formats again.
TEST(ViewStyles, ViewUndoAndRedoBringFormatsBack) {
    struct Edit {
        const char* name;
        std::function<void(View&)> apply;
    };
    const Edit edits[] = {
        {"Delete", [](View& v) { v.sci.SendScintilla(Sci::SCI_DELETERANGE, 3UL, 8L); }},
        {"ReplaceSameLength",
         [](View& v) {
             v.sci.SendScintilla(Sci::SCI_BEGINUNDOACTION);
             v.sci.SendScintilla(Sci::SCI_SETTARGETRANGE, 4UL, 9L);
             v.sci.SendScintilla(Sci::SCI_REPLACETARGET, uintptr_t(5), "HELLO");
             v.styles.inheritFormat(4, 5);
             v.sci.SendScintilla(Sci::SCI_ENDUNDOACTION);
         }},
        {"Type", [](View& v) { v.insert(8, "xy"); }},
    };
    for (const Edit& e : edits) {
        View view;
        view.load(kRich);
        view.sci.SendScintilla(Sci::SCI_EMPTYUNDOBUFFER);
        const QByteArray original = view.styles.saveRtf();
        e.apply(view);
        const QByteArray edited = view.styles.saveRtf();
        for (int round = 0; round < 2; ++round) {
            view.sci.SendScintilla(Sci::SCI_UNDO);
            EXPECT_EQ(view.styles.saveRtf(), original) << e.name << round;
            view.sci.SendScintilla(Sci::SCI_REDO);
            EXPECT_EQ(view.styles.saveRtf(), edited) << e.name << round;
        }
    }
}

struct InheritCase {
    const char* name;
    qsizetype at;
    const char* format; // of the inserted text
};

TEST(ViewStyles, TypedTextTakesTheFormatBeforeIt) {
    const InheritCase cases[] = {
        {"AfterBold", 4, "Arial 12 b"},
        {"AtTheStartTakesTheFirst", 0, "Arial 12 b"},
        {"AfterPlain", 9, "Arial 12"},
        {"StartOfNextLine", 11, "Arial 12"},
    };
    for (const InheritCase& c : cases) {
        View view;
        view.load("{\\rtf1 {\\b bold}plain\\par next}");
        view.paint();
        view.insert(c.at, "\xC3\xA9");
        view.paint();
        EXPECT_EQ(view.sci.SendScintilla(Sci::SCI_GETENDSTYLED), view.text().size());
        const QStringList formats = view.charFormats();
        const qsizetype charIndex =
            QString::fromUtf8(view.text().left(c.at)).remove('\r').remove('\n').size();
        EXPECT_EQ(formats.value(charIndex), c.format) << c.name;
    }
}

struct EscapeCase {
    const char* text;    // UTF-8
    const char* written; // what the writer puts in the body for it
};

TEST(RtfWriter, EscapesText) {
    const EscapeCase cases[] = {
        {"a\\b{c}d", "a\\\\b\\{c\\}d"}, {"\t", "\\tab "},
        {"\xE2\x80\xA8", "\\line "},    {"é", "\\u233\\'e9"},
        {"€", "\\u8364\\'80"},          {"Ω", "\\u937?"},
        {"\xEF\x82\xB7", "\\u-3913?"},  {"😀", "\\u-10179?\\u-8704?"},
    };
    for (const EscapeCase& c : cases) {
        const QByteArray rtf = writeRtf(contentOf({{c.text, fmt("A", 12)}}));
        EXPECT_TRUE(rtf.contains(QByteArray("\\fs24 ") + c.written + "\\par")) << rtf.toStdString();
    }
}

} // namespace
