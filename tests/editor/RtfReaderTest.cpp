// The RTF reader's handling of control words, symbols, code pages, destinations and formats.

#include "editor/RtfReader.h"
#include "RtfSampleFiles.h"

#include <gtest/gtest.h>

using namespace ed;

namespace {

QByteArray wrap(const char* body) {
    return QByteArray("{\\rtf1\\ansi ") + body + "}";
}

// Each case is a rule of the format a reader could get wrong: paragraph ends, fallbacks after
// \u, surrogates, destinations to skip, tables, code pages.
TEST(RtfReader, ReadsText) {
    const struct {
        const char* body; // between "{\rtf1\ansi " and the closing "}"
        const char* text; // UTF-8
    } cases[] = {
        {"a\\par b\\par ", "a\r\nb"},
        {"a\\par\\par b", "a\r\n\r\nb"},
        {"a\\par\\par ", "a\r\n"},
        {"a\\\nb\\\r\nc\\sect d", "a\r\nb\r\nc\r\nd"},
        {"a\\line b\\page c\\column d", "a\r\nb\r\nc\r\nd"},
        {"a\\tab b\tc\r\nd\ne", "a\tb\tcde"},
        {"\\b  x", " x"},
        {"caf\\'e9 \\'80\\'93x\\'94 \\'9f\\'C9", "café €“x” ŸÉ"},
        {"\\'zz", "zz"},
        {"\\u233?a\\u233\\'e9b\\u233\\par c", "éaébéc"},
        {"\\uc2\\u233\\'e9\\'e9x", "éx"},
        {"{\\uc2\\u233??}x\\u233?y", "éxéy"},
        {"{\\u233}x", "éx"},
        {"\\u-3913?", "\xEF\x82\xB7"},
        {"\\u-10179?\\u-8704?", "😀"},
        {"\\uc0 \\u55357\\uc1 \\u56832\\'3f.", "😀."},
        {"\\u55357?x\\u56832?y", "\xEF\xBF\xBDx\xEF\xBF\xBDy"},
        {"\\u55357?\\u55357?\\u56832?", "\xEF\xBF\xBD😀"},
        {"a\\u8232?b\\u8233?c", "a\r\nb\r\nc"},
        {"\\u7?\\u0?\\u13?\\'0a\\'1ba\x01", "\x07\x1b"
                                            "a"},
        {"\\u-560?", "\xEF\xBF\xBD"},
        {"\\emdash\\endash\\bullet\\lquote\\rquote\\ldblquote\\rdblquote\\emspace\\enspace",
         "—–•‘’“”\u2003\u2002"},
        {"a\\~b\\-c\\_d\\:e\\|f\\\\\\{\\}", "a\u00A0b\u00ADc\u2011def\\{}"},
        {"{\\unknownword12 kept}{\\*\\unknown hidden {\\b nested}}{\\* odd}shown", "keptshown"},
        {"{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red1\\green2\\blue3;}{\\stylesheet{\\s0 N;}}"
         "{\\info{\\title T}}{\\*\\generator G;}text",
         "text"},
        {"a{\\pict\\pngblip 8950{\\*\\blipuid 00}}b{\\pict\\bin3 }}}c}d", "abd"},
        {"{\\header h}{\\footer f}a{\\footnote n}b{\\deleted gone}", "ab"},
        {"{\\field{\\*\\fldinst HYPERLINK \"x\"}{\\fldrslt link}}", "link"},
        {"{\\v hidden}visible\\v x\\v0 y", "visibley"},
        {"{\\listtext\\'95\\tab}item", "•\titem"},
        {"A\\cell B\\cell\\row C\\nestcell D\\nestcell\\nestrow", "A\tB\r\nC\tD"},
        {"a}b{c", "a"},
        {"\\ansicpg1251 \\'c0\\'e1", "Аб"},
        {"{\\fonttbl{\\f1\\fcharset128 MS;}}\\f1 \\'82\\'a0\\'83e", "あテ"},
        {"\\uc2\\u26085\\'93\\'fax", "日x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.body);
        QString error;
        EXPECT_EQ(parseRtf(wrap(c.body), &error).plainText(), QString::fromUtf8(c.text));
        EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    }
}

#define FONTS "{\\fonttbl{\\f0\\froman Times;}{\\f1\\fmodern Courier New;}}"
#define COLORS "{\\colortbl;\\red255\\green0\\blue0;\\red0\\green128\\blue255;}"

TEST(RtfReader, ReadsFormats) {
    const struct {
        const char* body;
        const char* runs; // "text{format}" per run, paragraphs separated by " | "
    } cases[] = {
        {"\\deff1" FONTS "x", "x{Courier New 12}"},
        {FONTS "\\f1\\fs20 x\\f0\\fs21 y\\f7 z", "x{Courier New 10}y{Times 10.5}z{ 10.5}"},
        {"{\\fonttbl\\f0\\fswiss Helvetica;\\f1 Courier;}\\f1 x", "x{Courier 12}"},
        {"{\\fonttbl{\\f0\\fcharset128 \\'82\\'6c\\'82\\'72 Mincho;}}x", "x{ＭＳ Mincho 12}"},
        {"{\\i x}\\b y\\b0 z", "x{ 12 i}y{ 12 b}z{ 12}"},
        {"\\ul a\\ulnone b\\uldb c\\ul0\\ulc1 d\\ulwave e", "a{ 12 u}b{ 12}c{ 12 u}d{ 12}e{ 12 u}"},
        {COLORS "\\cf1 x\\cf2 y\\cf0 z\\cf9 w", "x{ 12 #ff0000}y{ 12 #0080ff}zw{ 12}"},
        {"{\\colortbl\\red1\\green2\\blue3;}\\cf0 x", "x{ 12 #010203}"},
        {FONTS COLORS "\\f1\\fs30\\b\\i\\ul\\cf1 x\\plain y",
         "x{Courier New 15 b i u #ff0000}y{Times 12}"},
        {"\\fs0 a\\fs1 b\\fs99999 c\\fs-4 d", "a{ 12}b{ 1}c{ 1638}d{ 12}"},
        {"{\\b x}{\\b y}\\b0{z}", "xy{ 12 b}z{ 12}"},
        {"\\b x\\par y", "x{ 12 b} | y{ 12 b}"},
        {"A\\cell\\b B\\row", "A{ 12}\tB{ 12 b}"},
    };
    for (const auto& c : cases) {
        QStringList paragraphs;
        for (const RtfParagraph& p : parseRtf(wrap(c.body)).paragraphs) {
            QString out;
            for (const RtfRun& r : p.runs)
                out += r.text + '{' + test::describe(r.format) + '}';
            paragraphs << out;
        }
        EXPECT_EQ(paragraphs.join(" | "), QString::fromUtf8(c.runs)) << c.body;
    }
}

} // namespace
