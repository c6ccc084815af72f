// Every kind of file read and written back byte for byte, by the byte core and by the UTF-16
// text codec alike, and positions in the byte core that mean the same characters as in UTF-16.

#include "util/ModelText.h"
#include "util/TextCodec.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <vector>

using namespace ed;

namespace {

const QByteArray kFiles[] = {
    "",
    "plain",
    "a\r\nb\r\n",
    "a\nb\n",
    "a\rb\r",
    "a\r\nb\nc",    // a lone LF makes LF the style: the CR before an LF is ordinary
    "x\r\r\ny\r\n", // a CR before a CR LF
    "\n",
    "\r",
    "lone\rcr\r\nthen", // CR LF style with a lone CR inside a line
    "caf\xC3\xA9\r\n\xF0\x9F\x98\x80 \xE2\x80\xA8 \xE2\x80\xA9\n",
    "\xEF\xBB\xBF"
    "bom\r\n",
    "\xEF\xBB\xBF\xEF\xBB\xBF"
    "two marks",
    "\xEF\xBB\xBF\xFF not utf-8 after the mark",
    "latin \xE9\xE8\r\n\xFF\n",
    QByteArray("nul\0byte\r\n", 11),
    QByteArray("\xFF\xFE"
               "A\0\r\0\n\0\x3D\xD8\0\xDE",
               12), // UTF-16 LE with a surrogate pair
    QByteArray("\xFF\xFE"
               "A\0\x00\xD8"
               "B\0",
               8), // UTF-16 LE with a lone surrogate
    QByteArray("\xFE\xFF\0A\0\n\0B", 8),
    QByteArray("\xFF\xFE\xFF\xFE"
               "A\0",
               6), // a U+FEFF after the mark
    QByteArray("\xFF\xFE"
               "odd",
               5),                        // odd length: not UTF-16
    QByteArray("\xFE\xFF\xFE\xFF\0A", 6), // a U+FEFF after the big-endian mark
    "\xC0\xAF overlong",                  // not UTF-8
    QByteArray("\xFF\xFE\xFF\xFE", 4),    // nothing but U+FEFF
};

TEST(ModelCodec, DecodesAsTheUtf16ModelAndWritesTheSameBytesBack) {
    for (const QByteArray& file : kFiles) {
        SCOPED_TRACE(file.toHex(' ').constData());
        TextFormat bytesFormat, textFormat;
        const QByteArray model = decodeToModel(file, &bytesFormat);
        const QString text = decodeText(file, &textFormat);
        EXPECT_EQ(model, toModelUtf8(text));
        EXPECT_EQ(bytesFormat.encoding, textFormat.encoding);
        EXPECT_EQ(bytesFormat.lineBreak, textFormat.lineBreak);
        EXPECT_EQ(encodeModel(model, bytesFormat), file);
        EXPECT_EQ(encodeText(text, textFormat), file);
    }
    TextFormat lf;
    EXPECT_EQ(decodeToModel("a\nb", &lf), "a\r\nb"); // the model's line break is always CR LF
}

TEST(ModelCodec, WritesWhatAFormatCannotHoldSafely) {
    const QByteArray model = toModelUtf8(QStringLiteral("\u20ac\r\nb"));
    // Latin-1 cannot hold the euro sign: the document is written as UTF-8 rather than lose it.
    EXPECT_EQ(encodeModel(model, {Encoding::Latin1, LineBreak::Lf}), "\xE2\x82\xAC\nb");
    // A lone surrogate cannot go into a UTF-8 file; it becomes U+FFFD, never invalid bytes.
    const QByteArray lone = toModelUtf8(QString(QChar(0xD800)) + QStringLiteral("x"));
    EXPECT_EQ(encodeModel(lone, {Encoding::Utf8, LineBreak::CrLf}), "\xEF\xBF\xBDx");
}

const QString kTexts[] = {
    QString(),
    u"ascii only, longer than one block of sixteen bytes"_qs,
    u"\u00e9\u20ac\U0001F600a\r\nb"_qs,
    QString(40, QChar(0x0130)) + QStringLiteral("\U0001F600") + QString(20, u'x'),
    QString(QChar(0xDC00)) + QStringLiteral("lone low, then ") + QChar(0xD800),
    u"\r\n\r\n\n\r"_qs,
};

TEST(ModelText, PositionsAndLinesMeanWhatTheyMeanInUtf16) {
    for (const QString& text : kTexts) {
        SCOPED_TRACE(text.toStdString());
        const QByteArray bytes = toModelUtf8(text);
        EXPECT_EQ(fromModelUtf8(bytes), text);
        EXPECT_EQ(utf16Length(bytes), text.size());
        for (qsizetype pos = 0; pos <= text.size(); ++pos) {
            const qsizetype b = byteOffsetOf(bytes, pos);
            const bool insidePair = pos > 0 && pos < text.size() && text[pos].isLowSurrogate() &&
                                    text[pos - 1].isHighSurrogate();
            EXPECT_EQ(utf16Length(QByteArrayView(bytes).first(b)), insidePair ? pos - 1 : pos)
                << "position " << pos;
        }
        EXPECT_EQ(byteOffsetOf(bytes, text.size() + 5), bytes.size());

        std::vector<QString> byteLines;
        forEachModelLine(bytes, [&](QByteArrayView l) { byteLines.push_back(fromModelUtf8(l)); });
        const QStringList textLines = text.split(u"\r\n"_qs);
        EXPECT_EQ(byteLines, std::vector<QString>(textLines.begin(), textLines.end()));
        EXPECT_EQ(countModelLines(bytes), textLines.size());
    }
}

} // namespace
