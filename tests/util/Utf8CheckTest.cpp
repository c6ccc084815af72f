#include "util/TextCodec.h"
#include "util/Utf8.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;

namespace {

// The byte decoder must read as UTF-8 exactly what the text decoder reads as UTF-8: a disagreement
// on any input would write a document back in another encoding.
TEST(Utf8Check, AcceptsExactlyWhatTheDecoderReadsAsUtf8) {
    const QByteArray cases[] = {
        "", "plain", "caf\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF",
        "\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\x9F\xBF", "\xF0\x8F\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\x80", "\xC3", "\xE2\x82", "\xC3\xA9\x80",
        "\xEF\xBB\xBF"
        "bom",
        "\xEF\xBB\xBF\xFF",
        // The same faults at every place of a sixteen-byte block and past the first 64 bytes.
        QByteArray(15, 'a') + "\xC3", QByteArray(63, 'a') + "\xE2\x82\xAC" + QByteArray(20, 'b'),
        QByteArray(70, 'a') + "\xED\xA0\x80" + QByteArray(20, 'b')};
    for (const QByteArray& b : cases) {
        TextFormat f;
        decodeText(b, &f);
        TextFormat bytesFormat;
        decodeToModel(b, &bytesFormat);
        EXPECT_EQ(bytesFormat.encoding, f.encoding) << b.toHex().constData();
    }
    // Random bytes, mostly ASCII with some of every kind of lead and continuation byte, long
    // enough for faults to fall on every place of the vector check's blocks and across them. The
    // vector check and the plain one must both agree with the decoder.
    std::mt19937 random(7);
    const unsigned char other[] = {0x80, 0x9F, 0xA0, 0xBF, 0xC2, 0xDF, 0xE0,
                                   0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xC0, 0xFF};
    const QByteArray valid[] = {"\xC3\xA9",        "\xE2\x82\xAC",     "\xF0\x9F\x98\x80",
                                "\xED\x9F\xBF",    "\xF4\x8F\xBF\xBF", "\xE0\xA0\x80",
                                "\xF0\x90\x80\x80"};
    for (int round = 0; round < 20000; ++round) {
        QByteArray b;
        const int n = int(random() % 200);
        while (b.size() < n)
            if (random() % 3)
                b += char('a' + random() % 26);
            else
                b += valid[random() % std::size(valid)];
        // Half of them get one stray byte, or lose one, somewhere.
        if (!b.isEmpty() && round % 2) {
            const qsizetype at = qsizetype(random() % quint32(b.size()));
            if (random() % 4)
                b.insert(at, char(other[random() % sizeof other]));
            else
                b.remove(at, 1);
        }
        TextFormat f;
        decodeText(b, &f);
        const bool utf8 = f.encoding == Encoding::Utf8;
        ASSERT_EQ(isValidUtf8(b.constData(), b.size()), utf8) << b.toHex().constData();
        ASSERT_EQ(isValidUtf8Plain(b.constData(), b.size()), utf8) << b.toHex().constData();
    }
}

// The style found on the bytes must be the one the model's round trip keeps.
TEST(Utf8Check, FindsTheLineBreakTheDecoderFinds) {
    const struct {
        QByteArray bytes;
        LineBreak expected;
    } cases[] = {
        {"a\r\nb", LineBreak::CrLf},
        {"a\nb", LineBreak::Lf},
        {"\nab", LineBreak::Lf},
        {"a\rb", LineBreak::Cr},
        {"\rab", LineBreak::Cr},
        {"a\r\rb\r\n", LineBreak::CrLf},
        {"no break at all", LineBreak::CrLf}, // written back with the model's CR LF
        {"", LineBreak::CrLf},
        {QByteArray(40, 'x') + "\r\n" + QByteArray(5000, 'y') + "\n", LineBreak::Lf},
        {QByteArray(5000, 'y') + "\r\n" + QByteArray(17, 'z') + "\r", LineBreak::CrLf},
        // A break across the 64 KB pieces the scan takes, and a lone LF starting one.
        {QByteArray(65535, 'x') + "\r\ny", LineBreak::CrLf},
        {QByteArray(65536, 'x') + "\nx\r\n", LineBreak::Lf},
        {QByteArray(65535, 'x') + "\r" + QByteArray(65536, 'x'), LineBreak::Cr},
    };
    for (const auto& c : cases) {
        TextFormat f;
        decodeToModel(c.bytes, &f);
        EXPECT_EQ(f.lineBreak, c.expected) << c.bytes.left(20).constData();
    }
    // A lone LF anywhere in a block, with CR LF all around, for both decoders.
    for (int at = 0; at < 40; ++at) {
        QByteArray bytes;
        for (int i = 0; i < 40; ++i)
            bytes += i == at ? "\n" : (i % 3 == 0 ? "\r\n" : "x");
        TextFormat f, textFormat;
        decodeToModel(bytes, &f);
        EXPECT_EQ(f.lineBreak, LineBreak::Lf) << at;
        EXPECT_EQ(encodeText(decodeText(bytes, &textFormat), textFormat), bytes) << at;
        EXPECT_EQ(textFormat.lineBreak, LineBreak::Lf) << at;
    }
}

} // namespace
