#include "util/TextCodec.h"

#include <gtest/gtest.h>

using namespace ed;

namespace {

// The line-break scan looks at eight characters at a time: a lone LF must be seen wherever it
// falls in such a block, and at the very start.
TEST(TextCodecScan, FindsALoneLfAtEveryPosition) {
    for (int at = 0; at < 40; ++at) {
        QByteArray bytes;
        for (int i = 0; i < 40; ++i)
            bytes += i == at ? "\n" : (i % 3 == 0 ? "\r\n" : "x");
        TextFormat f;
        decodeText(bytes, &f);
        EXPECT_EQ(f.lineBreak, LineBreak::Lf) << at;
        EXPECT_EQ(encodeText(decodeText(bytes, nullptr), f), bytes) << at;
    }
    TextFormat f;
    decodeText(QByteArray("abcdefg\r\nhijklmnopq\r\n"), &f);
    EXPECT_EQ(f.lineBreak, LineBreak::CrLf);
    decodeText(QByteArray("abcdefghijklmnopq\rr"), &f);
    EXPECT_EQ(f.lineBreak, LineBreak::Cr);
}

// Large documents are decoded and encoded through preallocated buffers: the bytes must be what
// the plain conversions give.
TEST(TextCodecScan, LargeDocumentsConvertLikeThePlainFunctions) {
    QString unit = QString::fromUtf8("caf\xC3\xA9 \xF0\x9F\x98\x80 line\r\n");
    QString model;
    while (model.size() < (6 << 20))
        model += unit;
    for (Encoding e : {Encoding::Utf8, Encoding::Utf8Bom}) {
        for (LineBreak lb : {LineBreak::CrLf, LineBreak::Lf}) {
            const TextFormat f{e, lb};
            const QByteArray bytes = encodeText(model, f);
            const QByteArray plain =
                (e == Encoding::Utf8Bom ? QByteArray("\xEF\xBB\xBF") : QByteArray()) +
                fromModelBreaks(model, lb).toUtf8();
            ASSERT_EQ(bytes, plain);
            TextFormat back;
            ASSERT_EQ(decodeText(bytes, &back), model);
            EXPECT_EQ(back.encoding, e);
            EXPECT_EQ(back.lineBreak, lb);
        }
    }
}

TEST(TextCodecScan, LoneSurrogatesAreWrittenAsQuestionMarks) {
    const QString model = QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b") +
                          QChar(0xDC00) + QString::fromUtf8("\xF0\x9F\x98\x80");
    EXPECT_EQ(encodeText(model, {Encoding::Utf8, LineBreak::Lf}), model.toUtf8());
    EXPECT_EQ(encodeText(model, {Encoding::Utf8Bom, LineBreak::Lf}),
              QByteArray("\xEF\xBB\xBF") + model.toUtf8());
}

} // namespace
