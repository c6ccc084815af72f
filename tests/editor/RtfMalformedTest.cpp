// Damaged and hostile input: the reader never crashes or hangs, rejects what is not RTF with a
// reason, reads what it can of the rest, and always produces content the writer can reproduce.

#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace ed;

namespace {

QString testDir() {
    return QFileInfo(QString::fromUtf8(__FILE__)).absolutePath();
}

QByteArray readFile(const QString& path) {
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << path.toStdString();
    return f.readAll();
}

// What every parse result must satisfy, whatever the input.
void expectWellFormed(const RtfContent& content) {
    for (const RtfParagraph& p : content.paragraphs) {
        for (qsizetype i = 0; i < p.runs.size(); ++i) {
            const RtfRun& run = p.runs[i];
            EXPECT_FALSE(run.text.isEmpty());
            if (i > 0) {
                EXPECT_NE(run.format, p.runs[i - 1].format);
            }
            EXPECT_FALSE(run.format.family.contains(u';'));
            EXPECT_GE(run.format.pointSize, 1);
            EXPECT_LE(run.format.pointSize, 1638);
            for (qsizetype k = 0; k < run.text.size(); ++k) {
                const QChar c = run.text[k];
                EXPECT_TRUE(c != u'\0' && c != u'\r' && c != u'\n' &&
                            c != QChar::ParagraphSeparator);
                EXPECT_TRUE(c.unicode() != 0xFDD0 && c.unicode() != 0xFDD1);
                if (c.isHighSurrogate()) {
                    EXPECT_TRUE(k + 1 < run.text.size() && run.text[++k].isLowSurrogate());
                } else {
                    EXPECT_FALSE(c.isLowSurrogate());
                }
            }
        }
    }
    QString error;
    EXPECT_EQ(parseRtf(writeRtf(content), &error), content);
    EXPECT_TRUE(error.isEmpty());
}

struct BadCase {
    const char* name;
    QByteArray bytes;
    const char* error; // nullptr: accepted
    const char* text;  // UTF-8 expected text; nullptr: anything well formed
};

class RtfMalformedTest : public ::testing::TestWithParam<BadCase> {};

TEST_P(RtfMalformedTest, ReadsSafely) {
    const BadCase& c = GetParam();
    QString error;
    const RtfContent content = parseRtf(c.bytes, &error);
    if (c.error) {
        EXPECT_EQ(error, QString::fromUtf8(c.error));
        EXPECT_TRUE(content.paragraphs.isEmpty());
        return;
    }
    EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    if (c.text) {
        EXPECT_EQ(content.plainText(), QString::fromUtf8(c.text));
    }
    expectWellFormed(content);
}

QByteArray repeat(const char* piece, int n) {
    return QByteArray(piece).repeated(n);
}

QByteArray junk(quint32 seed, int size) {
    QRandomGenerator rng(seed);
    QByteArray out("{\\rtf1 ");
    const char alphabet[] = "{}\\'*;0123456789-abuxfcnlpr \r\n\t\x80\xff";
    for (int i = 0; i < size; ++i)
        out += rng.bounded(4) == 0 ? char(rng.bounded(256))
                                   : alphabet[rng.bounded(int(sizeof alphabet) - 1)];
    return out;
}

const char* const kNotRtf = "not an RTF file: it does not begin with {\\rtf";
const char* const kTooDeep = "the RTF groups are nested more than 1000 levels deep";

const BadCase kCases[] = {
    {"Empty", "", kNotRtf, nullptr},
    {"PlainText", "hello {\\rtf1 x}", kNotRtf, nullptr},
    {"HeaderOnly", "{\\rtf", nullptr, ""},
    {"Truncated", "{\\rtf1 trunc", nullptr, "trunc"},
    {"TruncatedInGroup", "{\\rtf1 a\\par {\\b bold", nullptr, "a\r\nbold"},
    {"TruncatedInFontTable", "{\\rtf1{\\fonttbl{\\f0 Ari", nullptr, ""},
    {"TruncatedAfterBackslash", "{\\rtf1 a\\", nullptr, "a"},
    {"TruncatedHex", "{\\rtf1 a\\'4", nullptr, "a4"},
    {"TruncatedDbcs", "{\\rtf1\\ansicpg932 a\\'82", nullptr, nullptr},
    {"TruncatedSurrogate", "{\\rtf1 a\\u55357?", nullptr, "a\xEF\xBF\xBD"},
    {"ExtraClosingBraces", "{\\rtf1 a}}}}b", nullptr, "a"},
    {"NestingAtLimit", "{\\rtf1 " + repeat("{", 999) + "deep", nullptr, "deep"},
    {"NestingOneTooDeep", "{\\rtf1 " + repeat("{", 1000) + "deep", kTooDeep, nullptr},
    {"NestingTooDeep", "{\\rtf1 " + repeat("{", 100000), kTooDeep, nullptr},
    {"DeepButClosed", "{\\rtf1 " + repeat("{x}", 100000) + "}", nullptr, nullptr},
    {"HugeBin", "{\\rtf1 a\\bin999999999999 b}", nullptr, "a"},
    {"NegativeBin", "{\\rtf1 a\\bin-5 b}", nullptr, "ab"},
    {"HugeUnicode", "{\\rtf1 \\u99999999999999999999 x}", nullptr, "\xEF\xBF\xBD"},
    {"BeyondUnicode", "{\\rtf1 \\u1114112?x}", nullptr, "\xEF\xBF\xBDx"},
    {"HugeUc", "{\\rtf1 {\\uc99999999 \\u233 abc\\par}x}", nullptr, "éx"},
    {"HugeNumbers", "{\\rtf1 \\f2147483647\\fs2147483647\\cf-2147483648\\deff99999999999 x}",
     nullptr, "x"},
    {"LongControlWord", "{\\rtf1 \\" + repeat("a", 100000) + "12 x}", nullptr, "x"},
    {"MinusWithoutDigits", "{\\rtf1 \\fs- x}", nullptr, "- x"},
    {"ManyFontsAndColours",
     "{\\rtf1{\\fonttbl" + repeat("{\\f7 A;}", 5000) + "}{\\colortbl" + repeat(";", 5000) +
         "}\\f7\\cf4999 x}",
     nullptr, "x"},
    {"FontTableInBody", "{\\rtf1 a{\\fonttbl{\\f0 X;}}\\f0 b}", nullptr, "ab"},
    {"StarEverywhere", "{\\rtf1 \\*\\*a{\\*}{\\*\\*\\par}b}", nullptr, "ab"},
    {"NulBytes", QByteArray("{\\rtf1 a\0b\\'00c}", 16), nullptr, "abc"},
    {"BinaryJunk", junk(1, 20000), nullptr, nullptr},
    {"JunkInDbcs", "{\\rtf1\\ansicpg936 " + junk(3, 5000).mid(7), nullptr, nullptr},
    {"Utf8BomAndSpace", "\xEF\xBB\xBF\r\n {\\rtf1 ok}", nullptr, "ok"},
};

INSTANTIATE_TEST_SUITE_P(Inputs, RtfMalformedTest, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(RtfMalformed, EveryPrefixOfASampleReads) {
    const QByteArray whole = readFile(testDir() + QStringLiteral("/RtfSamples/writer-mixed.rtf"));
    const QString full = parseRtf(whole).plainText();
    for (qsizetype n = 5; n <= whole.size(); n += 7) {
        QString error;
        const RtfContent part = parseRtf(whole.left(n), &error);
        ASSERT_TRUE(error.isEmpty()) << n;
        expectWellFormed(part);
        // Text only grows as more of the file arrives; the last character may still change
        // (a fallback or a surrogate half not yet seen).
        const QString text = part.plainText();
        EXPECT_TRUE(full.startsWith(text.left(text.size() - 1)))
            << n << ": " << text.toStdString() << "\n"
            << whole.left(n).right(40).toStdString();
    }
}

} // namespace
