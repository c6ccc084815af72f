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

struct HexCase {
    const char* text;
    const char* hex;
};

class AsciiToHexTest : public ::testing::TestWithParam<HexCase> {};

TEST_P(AsciiToHexTest, WritesEachUtf8Byte) {
    Harness h(u8(GetParam().text));
    h.run("mnuAsciiToHex");
    EXPECT_EQ(h.edit.utf8(), QByteArray(GetParam().hex));
    EXPECT_EQ(h.edit.selStart(), 0);
    EXPECT_EQ(h.edit.selLength(), 0);
}

INSTANTIATE_TEST_SUITE_P(Cases, AsciiToHexTest,
                         ::testing::Values(HexCase{"Hi", "48 69"}, HexCase{"\xc3\xa9", "C3 A9"},
                                           HexCase{"a\r\nb", "61 0D 0A 62"}, HexCase{"", ""},
                                           HexCase{"\xf0\x9f\x98\x80", "F0 9F 98 80"}));

struct ParseCase {
    const char* hex;
    const char* text; // nullptr: not hexadecimal UTF-8 bytes
};

class HexToAsciiTest : public ::testing::TestWithParam<ParseCase> {};

TEST_P(HexToAsciiTest, ReadsPairsOrRefuses) {
    const ParseCase& c = GetParam();
    Harness h(u8(c.hex));
    h.run("mnuHexToAscii");
    if (c.text) {
        EXPECT_EQ(h.edit.utf8(), QByteArray(c.text));
        EXPECT_TRUE(h.dialogs.messages.empty());
        return;
    }
    EXPECT_EQ(h.edit.utf8(), QByteArray(c.hex));
    EXPECT_EQ(h.edit.assignments(), 0);
    ASSERT_EQ(h.dialogs.messages.size(), 1u);
    EXPECT_EQ(h.dialogs.messages[0].text, "The text is not hexadecimal UTF-8 bytes.");
    EXPECT_EQ(h.dialogs.messages[0].title, "Hex To Ascii");
    EXPECT_EQ(h.dialogs.messages[0].icon, Icon::Exclamation);
    EXPECT_TRUE(h.log.errors.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, HexToAsciiTest,
    ::testing::Values(
        ParseCase{"4869", "Hi"}, ParseCase{"48 69", "Hi"}, ParseCase{"0x48 0x69", "Hi"},
        ParseCase{"0X480x69", "Hi"}, ParseCase{"4\t8\r\n6 9\n", "Hi"},
        ParseCase{"c3A9", "\xc3\xa9"}, ParseCase{"610D0A62", "a\r\nb"}, ParseCase{"  ", ""},
        ParseCase{"486", nullptr}, ParseCase{"48 6G", nullptr}, ParseCase{"FF", nullptr},
        ParseCase{"C3", nullptr}, ParseCase{"ED A0 80", nullptr}, ParseCase{"0x", nullptr},
        ParseCase{"0x0x48", nullptr}, ParseCase{"48,69", nullptr}, ParseCase{"\xc3\xa9", nullptr}));

// Texts that tend to get lost on the way: each must come back byte for byte.
const char* const kAwkward[] = {
    "",
    "plain",
    "\xf0\x9f\x98\x80 non-BMP \xf0\x90\x8d\x88",
    "a\r\nb\r\n",
    "lone\rCR and lone\nLF\r\r\n\n",
    "\xc4\xb0\xc3\x9f \xe2\x80\xa8 \xef\xbb\xbf",
    " \t leading and trailing \t ",
};

TEST(HexRoundTrip, GivesBackAnyText) {
    std::vector<QByteArray> texts(std::begin(kAwkward), std::end(kAwkward));
    texts.push_back(QByteArray("nul\0inside\0", 11));
    for (const QByteArray& text : texts) {
        Harness h;
        h.edit.setUtf8(text);
        h.run("mnuAsciiToHex");
        h.run("mnuHexToAscii");
        EXPECT_EQ(h.edit.utf8(), text) << text.toHex().constData();
        EXPECT_TRUE(h.dialogs.messages.empty());
    }
}

TEST(HexRoundTrip, ASelectionStaysSelectedBothWays) {
    // Positions count UTF-16 units and a CR LF as two: the non-BMP character is two units.
    Harness h(u8("\xf0\x9f\x98\x80x\r\n\xc3\xa9yz"));
    h.select(2, 4); // "x", CR LF, "é"
    h.run("mnuAsciiToHex");
    EXPECT_EQ(h.edit.text(), u8("\xf0\x9f\x98\x80"
                                "78 0D 0A C3 A9yz"));
    EXPECT_EQ(h.edit.selStart(), 2);
    EXPECT_EQ(h.edit.selLength(), 14);
    EXPECT_EQ(h.edit.assignments(), 1);
    h.run("mnuHexToAscii");
    EXPECT_EQ(h.edit.text(), u8("\xf0\x9f\x98\x80x\r\n\xc3\xa9yz"));
    EXPECT_EQ(h.edit.selStart(), 2);
    EXPECT_EQ(h.edit.selLength(), 4);
}

TEST(HexRoundTrip, AFiveMegabyteLine) {
    QByteArray line(5 << 20, 'a');
    for (qsizetype i = 0; i < line.size(); i += 7)
        line[i] = char('0' + i % 10);
    Harness h;
    h.edit.setUtf8(line);
    h.run("mnuAsciiToHex");
    EXPECT_EQ(h.edit.utf8().size(), 3 * line.size() - 1);
    h.run("mnuHexToAscii");
    EXPECT_EQ(h.edit.utf8(), line);
}

struct CharCase {
    const char* text;
    int start, length;
    const char* message;
};

class ShowAsciiTest : public ::testing::TestWithParam<CharCase> {};

TEST_P(ShowAsciiTest, NamesTheCodePoints) {
    const CharCase& c = GetParam();
    Harness h(u8(c.text));
    h.select(c.start, c.length);
    h.run("mnuShowASCII");
    ASSERT_EQ(h.dialogs.messages.size(), 1u);
    EXPECT_EQ(h.dialogs.messages[0].text, u8(c.message));
    EXPECT_EQ(h.dialogs.messages[0].title, "Char To ASCII");
    EXPECT_EQ(h.dialogs.messages[0].icon, Icon::Information);
    EXPECT_EQ(h.edit.assignments(), 0);
    EXPECT_EQ(h.edit.selStart(), c.start);
    EXPECT_EQ(h.edit.selLength(), c.length);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ShowAsciiTest,
    ::testing::Values(CharCase{"AB", 0, 0, "A = 65 (U+0041)"},
                      CharCase{"x\xf0\x9f\x98\x80y", 1, 0, "\xf0\x9f\x98\x80 = 128512 (U+1F600)"},
                      CharCase{"a\r\nb", 1, 2, "<13> = 13 (U+000D)\r\n<10> = 10 (U+000A)"},
                      CharCase{" \x7f~", 0, 3,
                               "<32> = 32 (U+0020)\r\n<127> = 127 (U+007F)\r\n~ = 126 (U+007E)"},
                      CharCase{"\xc3\xa9\xe2\x82\xac", 0, 2,
                               "\xc3\xa9 = 233 (U+00E9)\r\n\xe2\x82\xac = 8364 (U+20AC)"},
                      CharCase{"ab", 2, 0, "No character at the caret."},
                      CharCase{"", 0, 0, "No character at the caret."}));

TEST(ShowAscii, ListsAtMost32Characters) {
    Harness h(QString(40, u'q'));
    h.select(0, 33);
    h.run("mnuShowASCII");
    ASSERT_EQ(h.dialogs.messages.size(), 1u);
    const QStringList lines = h.dialogs.messages[0].text.split("\r\n");
    ASSERT_EQ(lines.size(), 33);
    EXPECT_EQ(lines[31], "q = 113 (U+0071)");
    EXPECT_EQ(lines[32], "...");
}

} // namespace
