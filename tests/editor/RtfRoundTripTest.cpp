// Writing a QTextDocument as RTF and reading it back gives the same text and the same formats;
// loading replaces the document in one undo step.

#include "editor/RtfDocument.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTextDocument>

#include <gtest/gtest.h>

#include <vector>

using namespace ed;

namespace {

struct Span {
    const char* text; // UTF-8; "\n" starts a new paragraph
    RtfCharFormat format;
};

RtfCharFormat fmt(const char* family, double size, bool b = false, bool i = false, bool u = false,
                  std::optional<quint32> color = {}) {
    return RtfCharFormat{QString::fromUtf8(family), size, b, i, u, color};
}

struct DocCase {
    const char* name;
    std::vector<Span> spans;
};

void fill(QTextDocument& doc, const std::vector<Span>& spans) {
    QTextCursor c(&doc);
    for (const Span& s : spans)
        c.insertText(QString::fromUtf8(s.text), toTextCharFormat(s.format));
}

class RtfRoundTripTest : public ::testing::TestWithParam<DocCase> {};

TEST_P(RtfRoundTripTest, KeepsTextAndFormats) {
    QPlainTextEdit original;
    fill(*original.document(), GetParam().spans);
    const QByteArray rtf = writeRtf(*original.document());

    QPlainTextEdit reread;
    reread.setPlainText(QStringLiteral("old content"));
    QString error;
    ASSERT_TRUE(readRtf(rtf, *reread.document(), &error)) << error.toStdString();
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(reread.document()->toRawText(), original.document()->toRawText());
    EXPECT_EQ(rtfContentOf(*reread.document()), rtfContentOf(*original.document()))
        << rtf.toStdString();
    // And the content itself survives a second write unchanged.
    EXPECT_EQ(writeRtf(*reread.document()), rtf);
}

const DocCase kDocs[] = {
    {"Empty", {}},
    {"PlainAscii", {{"Hello, world.", fmt("Arial", 12)}}},
    {"Formats",
     {{"plain ", fmt("Arial", 12)},
      {"bold ", fmt("Arial", 12, true)},
      {"italic ", fmt("Arial", 12, false, true)},
      {"under ", fmt("Arial", 12, false, false, true)},
      {"red ", fmt("Arial", 12, false, false, false, 0xFF0000)},
      {"all", fmt("Courier New", 10.5, true, true, true, 0x0080FF)},
      {" black", fmt("Arial", 12, false, false, false, 0x000000)}}},
    {"Sizes", {{"a", fmt("Arial", 1)}, {"b", fmt("Arial", 8.5)}, {"c", fmt("Arial", 1638)}}},
    {"Accents", {{"café naïve Ærøskøbing € “quotes” — ß Ω", fmt("Times", 12)}}},
    {"CjkAndEmoji", {{"日本語 한국어 中文 😀👍🏽 𝄞", fmt("Noto Sans", 14)}}},
    {"TabsAndEmptyParagraphs", {{"\ta\tb\t\n\n\nc\n", fmt("Mono", 9)}}},
    {"BackslashesAndBraces", {{"\\par {\\b not bold} \\u233? \\'e9 }{", fmt("Arial", 12)}}},
    {"ControlCharacters", {{"bell\x07 esc\x1b nbsp\xC2\xA0 shy\xC2\xAD", fmt("Arial", 12)}}},
    {"FontNamesNeedEscapes", {{"x", fmt("Ｍ{S}\\ Gothic", 12)}, {"y", fmt("", 12)}}},
    {"ManyParagraphsSharedFormat",
     {{"one\ntwo\n", fmt("Arial", 12, true)}, {"three", fmt("Arial", 12)}}},
};

INSTANTIATE_TEST_SUITE_P(Documents, RtfRoundTripTest, ::testing::ValuesIn(kDocs),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(RtfDocument, UnformattedTextTakesTheDefaultFont) {
    QTextDocument doc;
    QFont base(QStringLiteral("Courier New"));
    base.setPointSizeF(9);
    doc.setDefaultFont(base);
    doc.setPlainText(QStringLiteral("abc"));
    const RtfContent content = rtfContentOf(doc);
    ASSERT_EQ(content.paragraphs.size(), 1);
    ASSERT_EQ(content.paragraphs[0].runs.size(), 1);
    EXPECT_EQ(content.paragraphs[0].runs[0].format, fmt("Courier New", 9));
}

TEST(RtfDocument, LineBreaksBecomeBlocks) {
    QTextDocument doc;
    ASSERT_TRUE(readRtf("{\\rtf1 a\\line b\\par c}", doc));
    EXPECT_EQ(doc.blockCount(), 3);
    EXPECT_EQ(doc.toRawText(), QString::fromUtf16(u"a\u2029b\u2029c"));
}

TEST(RtfDocument, LoadIsOneUndoStepAndBadInputChangesNothing) {
    QPlainTextEdit edit;
    edit.setPlainText(QStringLiteral("before"));
    QTextDocument& doc = *edit.document();
    doc.clearUndoRedoStacks();

    QString error;
    EXPECT_FALSE(readRtf("not rtf at all", doc, &error));
    EXPECT_EQ(error, QStringLiteral("not an RTF file: it does not begin with {\\rtf"));
    EXPECT_EQ(doc.toPlainText(), QStringLiteral("before"));
    EXPECT_FALSE(doc.isUndoAvailable());

    ASSERT_TRUE(readRtf("{\\rtf1 {\\b one}\\par two\\par three}", doc, &error));
    EXPECT_TRUE(error.isEmpty());
    EXPECT_EQ(doc.toPlainText(), QStringLiteral("one\ntwo\nthree"));
    doc.undo();
    EXPECT_EQ(doc.toPlainText(), QStringLiteral("before"));
    EXPECT_FALSE(doc.isUndoAvailable());
}

} // namespace
