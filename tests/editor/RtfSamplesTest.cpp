// Files written by a common word processor read to the text that word processor itself reads
// from them (the .txt beside each .rtf), and keep their character formatting and line breaks.

#include "RtfSampleFiles.h"
#include "editor/RtfReader.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(RtfSamples, ReadTheSameWordsAsTheReference) {
    for (const char* base : {"writer-plain", "writer-mixed"}) {
        SCOPED_TRACE(base);
        const QString reference = QString::fromUtf8(readSample(QString(base) + ".txt"));
        ASSERT_FALSE(reference.isEmpty());
        QString error;
        const RtfContent content = parseRtf(readSample(QString(base) + ".rtf"), &error);
        EXPECT_TRUE(error.isEmpty()) << error.toStdString();
        EXPECT_EQ(words(content.plainText()), words(reference));
    }
}

TEST(RtfSamples, KeepCharacterFormats) {
    const RtfContent content = parseRtf(readSample("writer-mixed.rtf"));
    const std::pair<const char*, const char*> cases[] = {
        {"Plain paragraph", "Liberation Serif 12"},
        {"bold", "Liberation Serif 12 b"},
        {"italic", "Liberation Serif 12 i"},
        {"underlined", "Liberation Serif 12 u"},
        {"red", "Liberation Serif 12 #c00000"},
        {"Accents", "Liberation Mono 10"},
        {"Big bold italic heading", "Liberation Serif 20 b i"},
    };
    for (const auto& [text, format] : cases) {
        QString found = "<no run>";
        for (const RtfParagraph& p : content.paragraphs)
            for (const RtfRun& r : p.runs)
                if (found == "<no run>" && r.text.contains(QString::fromUtf8(text)))
                    found = describe(r.format);
        EXPECT_EQ(found, format) << text;
    }
}

// What words() does not see: line breaks, tabs and characters outside the BMP.
TEST(RtfSamples, KeepParagraphsAndLineBreaks) {
    const QString text = rtfToPlainText(readSample("writer-mixed.rtf"));
    EXPECT_TRUE(text.contains(QStringLiteral("Line one\r\nline two after a line break\r\ntab")));
    EXPECT_TRUE(text.contains(QString::fromUtf8("emoji 😀.")));
    EXPECT_TRUE(text.contains(QString::fromUtf8("\u2022\tfirst item\r\n")));
    EXPECT_TRUE(text.contains(QStringLiteral("cell A\tcell B")));
    EXPECT_EQ(rtfToPlainText(readSample("writer-plain.rtf")),
              QString::fromUtf8("Just plain text\r\nsecond line with café"));
}

} // namespace
