// Damaged and hostile input: the reader never crashes or hangs, rejects what is not RTF with a
// reason, reads what it can of the rest, and always produces content the writer can reproduce.

#include "RtfSampleFiles.h"
#include "editor/RtfReader.h"
#include "editor/RtfWriter.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace ed;

namespace {

// What every parse result must satisfy, whatever the input.
void expectWellFormed(const RtfContent& content) {
    for (const RtfParagraph& p : content.paragraphs) {
        for (qsizetype i = 0; i < p.runs.size(); ++i) {
            const RtfRun& run = p.runs[i];
            EXPECT_FALSE(run.text.isEmpty());
            EXPECT_TRUE(i == 0 || run.format != p.runs[i - 1].format);
            EXPECT_FALSE(run.format.family.contains(u';'));
            EXPECT_TRUE(run.format.pointSize >= 1 && run.format.pointSize <= 1638);
            for (qsizetype k = 0; k < run.text.size(); ++k) {
                const char16_t c = run.text[k].unicode();
                EXPECT_TRUE(c != 0 && c != '\r' && c != '\n' && c != 0x2029 && c != 0xFDD0 &&
                            c != 0xFDD1);
                if (QChar::isHighSurrogate(c)) {
                    EXPECT_TRUE(k + 1 < run.text.size() && run.text[++k].isLowSurrogate());
                } else {
                    EXPECT_FALSE(QChar::isLowSurrogate(c));
                }
            }
        }
    }
    QString error;
    EXPECT_EQ(parseRtf(writeRtf(content), &error), content);
    EXPECT_TRUE(error.isEmpty());
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

TEST(RtfMalformed, ReadsSafely) {
    const char* const notRtf = "not an RTF file: it does not begin with {\\rtf";
    const char* const tooDeep = "the RTF groups are nested more than 1000 levels deep";
    const struct {
        QByteArray bytes;
        const char* error; // nullptr: accepted
        const char* text;  // UTF-8 expected text; nullptr: anything well formed
    } cases[] = {
        {"", notRtf, nullptr},
        {"hello {\\rtf1 x}", notRtf, nullptr},
        {"{\\rtf", nullptr, ""},
        {"{\\rtf1 a\\par {\\b bold", nullptr, "a\r\nbold"},
        {"{\\rtf1{\\fonttbl{\\f0 Ari", nullptr, ""},
        {"{\\rtf1 a\\", nullptr, "a"},
        {"{\\rtf1 a\\'4", nullptr, "a4"},
        {"{\\rtf1\\ansicpg932 a\\'82", nullptr, nullptr},
        {"{\\rtf1 a\\u55357?", nullptr, "a\xEF\xBF\xBD"},
        {"{\\rtf1 a}}}}b", nullptr, "a"},
        {"{\\rtf1 " + QByteArray(999, '{') + "deep", nullptr, "deep"},
        {"{\\rtf1 " + QByteArray(1000, '{') + "deep", tooDeep, nullptr},
        {"{\\rtf1 " + QByteArray("{x}").repeated(100000) + "}", nullptr, nullptr},
        {"{\\rtf1 a\\bin999999999999 b}", nullptr, "a"},
        {"{\\rtf1 a\\bin-5 b}", nullptr, "ab"},
        {"{\\rtf1 \\u99999999999999999999 x\\u1114112?y}", nullptr, "\xEF\xBF\xBD\xEF\xBF\xBDy"},
        {"{\\rtf1 {\\uc99999999 \\u233 abc\\par}x}", nullptr, "éx"},
        {"{\\rtf1 \\f2147483647\\fs2147483647\\cf-2147483648\\deff99999999999 x}", nullptr, "x"},
        {"{\\rtf1 \\" + QByteArray(100000, 'a') + "12 x}", nullptr, "x"},
        {"{\\rtf1 \\fs- x}", nullptr, "- x"},
        {"{\\rtf1{\\fonttbl" + QByteArray("{\\f7 A;}").repeated(5000) + "}{\\colortbl" +
             QByteArray(5000, ';') + "}\\f7\\cf4999 x}",
         nullptr, "x"},
        {"{\\rtf1 a{\\fonttbl{\\f0 X;}}\\f0 b}", nullptr, "ab"},
        {"{\\rtf1 \\*\\*a{\\*}{\\*\\*\\par}b}", nullptr, "ab"},
        {QByteArray("{\\rtf1 a\0b\\'00c}", 16), nullptr, "abc"},
        {junk(1, 20000), nullptr, nullptr},
        {"{\\rtf1\\ansicpg936 " + junk(3, 5000).mid(7), nullptr, nullptr},
        {"\xEF\xBB\xBF\r\n {\\rtf1 ok}", nullptr, "ok"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes.left(60).toStdString());
        QString error;
        const RtfContent content = parseRtf(c.bytes, &error);
        EXPECT_EQ(error, QString::fromUtf8(c.error ? c.error : ""));
        if (c.error) {
            EXPECT_TRUE(content.paragraphs.isEmpty());
            continue;
        }
        if (c.text) {
            EXPECT_EQ(content.plainText(), QString::fromUtf8(c.text));
        }
        expectWellFormed(content);
    }
}

TEST(RtfMalformed, EveryPrefixOfASampleReads) {
    const QByteArray whole = test::readSample("writer-mixed.rtf");
    const QString full = parseRtf(whole).plainText();
    for (qsizetype n = 5; n <= whole.size(); n += 7) {
        QString error;
        const RtfContent part = parseRtf(whole.left(n), &error);
        ASSERT_TRUE(error.isEmpty()) << n;
        expectWellFormed(part);
        // Text only grows as more of the file arrives; the last character may still change
        // (a fallback or a surrogate half not yet seen).
        const QString text = part.plainText();
        EXPECT_TRUE(full.startsWith(text.left(text.size() - 1))) << n;
    }
}

} // namespace
