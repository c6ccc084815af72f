// Ascii To Hex, Hex To Ascii and Char To ASCII.
#include "textcmds/Convert.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

QString u8(const char* s) {
    return QString::fromUtf8(s);
}

TEST(Convert, HexToAsciiReadsPairsOrRefuses) {
    const std::pair<const char*, const char*> cases[] = {
        // the hex, and the text it gives (nullptr: not hexadecimal UTF-8 bytes)
        {"4869", "Hi"},        {"0X480x69", "Hi"},     {"4\t8\r\n6 9\n", "Hi"},
        {"c3A9", "é"},         {"610D0A62", "a\r\nb"}, {"  ", ""},
        {"486", nullptr},      {"48 6G", nullptr},     {"C3", nullptr},
        {"ED A0 80", nullptr}, // a lone surrogate
        {"0x", nullptr},       {"0x0x48", nullptr},    {"48,69", nullptr},
        {"é", nullptr},
    };
    for (const auto& [hex, text] : cases) {
        SCOPED_TRACE(hex);
        const auto h = runOn("mnuHexToAscii", u8(hex));
        EXPECT_EQ(h->edit.utf8(), QByteArray(text ? text : hex));
        EXPECT_EQ(h->edit.assignments(), text ? 1 : 0);
        EXPECT_EQ(h->dialogs.messages.empty() ? QString() : h->dialogs.messages[0].text,
                  text ? "" : "The text is not hexadecimal UTF-8 bytes.");
    }
}

// Texts that tend to get lost on the way: each must come back byte for byte.
TEST(Convert, HexRoundTripGivesBackAnyText) {
    QByteArray line(5 << 20, 'a');
    for (qsizetype i = 0; i < line.size(); i += 7)
        line[i] = char('0' + i % 10);
    const QByteArray texts[] = {
        "",
        "\xf0\x9f\x98\x80 non-BMP \xf0\x90\x8d\x88",
        "lone\rCR and lone\nLF\r\r\n\n",
        " \t leading and trailing \t \xc4\xb0\xc3\x9f \xe2\x80\xa8 \xef\xbb\xbf",
        QByteArray("nul\0inside\0", 11),
        line,
    };
    for (const QByteArray& text : texts) {
        Harness h;
        h.edit.setUtf8(text);
        h.run("mnuAsciiToHex");
        h.run("mnuHexToAscii");
        EXPECT_EQ(h.edit.utf8(), text) << text.left(40).toHex().constData();
        EXPECT_TRUE(h.dialogs.messages.empty());
    }

    // A selection stays selected both ways; positions count UTF-16 units and a CR LF as two.
    const auto h = runOn("mnuAsciiToHex", "😀x\r\néyz", {}, 2, 4); // "x", CR LF, "é"
    EXPECT_EQ(h->edit.text(), "😀78 0D 0A C3 A9yz");
    EXPECT_EQ(h->edit.selStart(), 2);
    EXPECT_EQ(h->edit.selLength(), 14);
    h->run("mnuHexToAscii");
    EXPECT_EQ(h->edit.text(), "😀x\r\néyz");
    EXPECT_EQ(h->edit.selStart(), 2);
    EXPECT_EQ(h->edit.selLength(), 4);
}

TEST(Convert, CharToAsciiNamesTheCodePoints) {
    struct Case {
        const char* text;
        int start, length;
        const char* message;
    };
    const Case cases[] = {
        {"x😀y", 1, 0, "😀 = 128512 (U+1F600)"},
        {"a\r\nb", 1, 2, "<13> = 13 (U+000D)\r\n<10> = 10 (U+000A)"},
        {"é€", 0, 2, "é = 233 (U+00E9)\r\n€ = 8364 (U+20AC)"},
        {"ab", 2, 0, "No character at the caret."},
    };
    for (const Case& c : cases) {
        const auto h = runOn("mnuShowASCII", u8(c.text), {}, c.start, c.length);
        ASSERT_EQ(h->dialogs.messages.size(), 1u);
        EXPECT_EQ(h->dialogs.messages[0].text, u8(c.message));
        EXPECT_EQ(h->edit.assignments(), 0);
    }
}

} // namespace
