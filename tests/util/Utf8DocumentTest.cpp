#include "util/Utf8Document.h"
#include "util/TextCodec.h"
#include "util/Utf8.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;

namespace {

// The bytes path is taken only where the decoder reads UTF-8: a disagreement on any input would
// write a document the decoder would have read as Latin-1.
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
        const bool utf8 = f.encoding == Encoding::Utf8 || f.encoding == Encoding::Utf8Bom;
        EXPECT_EQ(Utf8Document::fromFile(b).has_value(), utf8) << b.toHex().constData();
    }
    // Random bytes, mostly ASCII with some of every kind of lead and continuation byte.
    std::mt19937 random(7);
    const unsigned char other[] = {0x80, 0x9F, 0xA0, 0xBF, 0xC2, 0xDF, 0xE0,
                                   0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xC0, 0xFF};
    for (int round = 0; round < 3000; ++round) {
        QByteArray b;
        const int n = int(random() % 80);
        for (int i = 0; i < n; ++i)
            b += random() % 4 ? char('a' + random() % 26) : char(other[random() % sizeof other]);
        TextFormat f;
        decodeText(b, &f);
        ASSERT_EQ(isValidUtf8(b.constData(), b.size()), f.encoding == Encoding::Utf8)
            << b.toHex().constData();
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
    };
    for (const auto& c : cases) {
        const auto doc = Utf8Document::fromFile(c.bytes);
        ASSERT_TRUE(doc);
        EXPECT_EQ(doc->lineBreak(), c.expected) << c.bytes.left(20).constData();
    }
    // A lone LF anywhere in a block, with CR LF all around.
    for (int at = 0; at < 40; ++at) {
        QByteArray bytes;
        for (int i = 0; i < 40; ++i)
            bytes += i == at ? "\n" : (i % 3 == 0 ? "\r\n" : "x");
        EXPECT_EQ(Utf8Document::fromFile(bytes)->lineBreak(), LineBreak::Lf) << at;
    }
}

} // namespace
