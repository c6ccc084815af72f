// The RTF reader's handling of control words, symbols, code pages, destinations and formats.

#include "editor/RtfReader.h"
#include "RtfDescribe.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace ed;

namespace {

QByteArray wrap(const char* body) {
    return QByteArray("{\\rtf1\\ansi ") + body + "}";
}

struct TextCase {
    const char* name;
    const char* body; // between "{\rtf1\ansi " and the closing "}"
    const char* text; // UTF-8, the expected plain text
};

class RtfTextTest : public ::testing::TestWithParam<TextCase> {};

TEST_P(RtfTextTest, ReadsText) {
    const TextCase& c = GetParam();
    QString error;
    const RtfContent content = parseRtf(wrap(c.body), &error);
    EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    EXPECT_EQ(content.plainText(), QString::fromUtf8(c.text));
}

const TextCase kTextCases[] = {
    {"ParBetween", "a\\par b", "a\r\nb"},
    {"ParAtEndEndsLastParagraph", "a\\par b\\par ", "a\r\nb"},
    {"EmptyParagraphKept", "a\\par\\par b", "a\r\n\r\nb"},
    {"EmptyLastParagraph", "a\\par\\par ", "a\r\n"},
    {"SectEndsParagraph", "a\\sect b", "a\r\nb"},
    {"BackslashNewlineIsPar", "a\\\nb\\\r\nc", "a\r\nb\r\nc"},
    {"LineBreak", "a\\line b", "a\r\nb"},
    {"PageAndColumnBreakLines", "a\\page b\\column c", "a\r\nb\r\nc"},
    {"Tab", "a\\tab b", "a\tb"},
    {"RawTabIsTab", "a\tb", "a\tb"},
    {"RawLineBreaksIgnored", "a\r\nb\nc", "abc"},
    {"SpaceAfterWordIsDelimiter", "\\b  x", " x"},
    {"HexIs1252", "caf\\'e9 \\'80\\'93x\\'94 \\'9f", "café €“x” Ÿ"},
    {"HexUpperCase", "\\'C9", "É"},
    {"BadHexIsText", "\\'zz", "zz"},
    {"UnicodeSkipsOneFallback", "\\u233?x", "éx"},
    {"UnicodeSkipsHexFallback", "\\u233\\'e9x", "éx"},
    {"UnicodeSkipsControlWordFallback", "\\u233\\par x", "éx"},
    {"UcTwo", "\\uc2\\u233\\'e9\\'e9x", "éx"},
    {"UcZero", "\\uc0\\u233 x", "éx"},
    {"UcScopedToGroup", "{\\uc2\\u233??}x\\u233?y", "éxéy"},
    {"BraceEndsFallback", "{\\u233}x", "éx"},
    {"UnicodeNegative", "\\u-3913?", "\xEF\x82\xB7"},
    {"SurrogatePairNegative", "\\u-10179?\\u-8704?", "😀"},
    {"SurrogatePairPositive", "\\uc0 \\u55357\\uc1 \\u56832\\'3f.", "😀."},
    {"LoneHighSurrogate", "\\u55357?x", "\xEF\xBF\xBDx"},
    {"LoneLowSurrogate", "\\u56832?x", "\xEF\xBF\xBDx"},
    {"HighThenHigh", "\\u55357?\\u55357?\\u56832?", "\xEF\xBF\xBD😀"},
    {"UnicodeLineAndParagraphSeparators", "a\\u8232?b\\u8233?c", "a\r\nb\r\nc"},
    {"EscapedControlKeptButNulCrLf", "\\u7?\\u0?\\u13?\\'0a\\'1ba\x01",
     "\x07\x1b"
     "a"},
    {"FrameMarkersReplaced", "\\u-560?", "\xEF\xBF\xBD"},
    {"NamedCharacters",
     "\\emdash\\endash\\bullet\\lquote\\rquote\\ldblquote\\rdblquote\\emspace\\enspace",
     "—–•‘’“”\u2003\u2002"},
    {"ControlSymbols", "a\\~b\\-c\\_d\\:e\\|f", "a\u00A0b\u00ADc\u2011def"},
    {"EscapedLiterals", "\\\\\\{\\}", "\\{}"},
    {"UnknownWordKeepsText", "{\\unknownword12 kept}", "kept"},
    {"StarredUnknownSkipped", "{\\*\\unknown hidden {\\b nested}}shown", "shown"},
    {"StarredTextSkipped", "{\\* odd}shown", "shown"},
    {"TablesAndInfoSkipped",
     "{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red1\\green2\\blue3;}{\\stylesheet{\\s0 Normal;}}"
     "{\\info{\\title T}{\\author A}}{\\*\\generator G;}text",
     "text"},
    {"PictureSkipped", "a{\\pict\\pngblip 89504e47{\\*\\blipuid 00}}b", "ab"},
    {"BinSkipsRawBytes", "a{\\pict\\bin3 }}}b}c", "ac"},
    {"BinOutsidePicture", "a\\bin2 {}b", "ab"},
    {"HeadersFootersFootnotesSkipped", "{\\header h}{\\footer f}a{\\footnote n}b", "ab"},
    {"FieldShowsResult", "{\\field{\\*\\fldinst HYPERLINK \"x\"}{\\fldrslt link}}", "link"},
    {"HiddenTextDropped", "{\\v hidden}visible\\v x\\v0 y", "visibley"},
    {"DeletedRevisionDropped", "x{\\deleted gone}y", "xy"},
    {"ShapesAndNestedTableFallbackSkipped",
     "{\\shp{\\shpinst{\\sp{\\sn a}{\\sv 1}}}{\\shprslt r}}{\\nonesttables n}x", "rx"},
    {"UprUsesUd", "{\\upr{ansi}{\\*\\ud{\\u233?}}}x", "éx"},
    {"ListTextKept", "{\\listtext\\'95\\tab}item", "•\titem"},
    {"TableCellsAsTabs", "A\\cell B\\cell\\row C", "A\tB\r\nC"},
    {"EmptyCells", "\\cell B\\cell\\cell\\row", "\tB"},
    {"NestedTableWords", "A\\nestcell B\\nestcell\\nestrow", "A\tB"},
    {"RowAfterParNoEmptyParagraph", "A\\par\\row B", "A\r\nB"},
    {"TextAfterRootIgnored", "a}b{c", "a"},
    {"Ansicpg1251", "\\ansicpg1251 \\'c0\\'e1", "Аб"},
    {"UnsupportedCodepageIs1252", "\\ansicpg12345 \\'e9", "é"},
    {"FontCharsetShiftJis", "{\\fonttbl{\\f1\\fcharset128 MS;}}\\f1 \\'82\\'a0\\'83e", "あテ"},
    {"FontCharsetGreekThenAnsi", "{\\fonttbl{\\f0 A;}{\\f1\\fcharset161 G;}}\\f1\\'e1\\f0\\'e1",
     "αá"},
    {"FallbackAfterDbcsCountsBytes", "\\uc2\\u26085\\'93\\'fax", "日x"},
};

INSTANTIATE_TEST_SUITE_P(ControlWords, RtfTextTest, ::testing::ValuesIn(kTextCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Runs as "text{family size [b][i][u][#rrggbb]}", paragraphs separated by " | ".
QString describe(const RtfContent& content) {
    QStringList paragraphs;
    for (const RtfParagraph& p : content.paragraphs) {
        QString out;
        for (const RtfRun& r : p.runs)
            out += r.text + '{' + test::describe(r.format) + '}';
        paragraphs << out;
    }
    return paragraphs.join(QStringLiteral(" | "));
}

struct FormatCase {
    const char* name;
    const char* body;
    const char* runs; // as describe() writes them
};

class RtfFormatTest : public ::testing::TestWithParam<FormatCase> {};

TEST_P(RtfFormatTest, ReadsFormats) {
    const FormatCase& c = GetParam();
    EXPECT_EQ(describe(parseRtf(wrap(c.body))), QString::fromUtf8(c.runs));
}

#define FONTS "{\\fonttbl{\\f0\\froman Times;}{\\f1\\fmodern Courier New;}}"
#define COLORS "{\\colortbl;\\red255\\green0\\blue0;\\red0\\green128\\blue255;}"

const FormatCase kFormatCases[] = {
    {"NoFontTable", "x", "x{ 12}"},
    {"DefaultFont", "\\deff1" FONTS "x", "x{Courier New 12}"},
    {"FontAndSize", FONTS "\\f1\\fs20 x\\f0 y", "x{Courier New 10}y{Times 10}"},
    {"HalfPointSize", FONTS "\\fs21 x", "x{Times 10.5}"},
    {"UnknownFontNumber", FONTS "\\f7 x", "x{ 12}"},
    {"FontTableWithoutGroups", "{\\fonttbl\\f0\\fswiss Helvetica;\\f1 Courier;}\\f1 x",
     "x{Courier 12}"},
    {"FontAlternativeSkipped", "{\\fonttbl{\\f0 Times{\\*\\falt Roman};}}x", "x{Times 12}"},
    {"FontNameNonAscii", "{\\fonttbl{\\f0\\fcharset128 \\'82\\'6c\\'82\\'72 Mincho;}}x",
     "x{ＭＳ Mincho 12}"},
    {"BoldOnOff", "\\b x\\b0 y", "x{ 12 b}y{ 12}"},
    {"GroupRestoresFormat", "{\\i x}y", "x{ 12 i}y{ 12}"},
    {"UnderlineStyles", "\\ul a\\ulnone b\\uldb c\\ul0 d\\ulwave e",
     "a{ 12 u}b{ 12}c{ 12 u}d{ 12}e{ 12 u}"},
    {"UnderlineColourIsNotUnderline", "\\ulc1 x", "x{ 12}"},
    {"Colours", COLORS "\\cf1 x\\cf2 y\\cf0 z\\cf9 w", "x{ 12 #ff0000}y{ 12 #0080ff}zw{ 12}"},
    {"ColourTableFirstEntryDefined", "{\\colortbl\\red1\\green2\\blue3;}\\cf0 x", "x{ 12 #010203}"},
    {"PlainResets", FONTS COLORS "\\f1\\fs30\\b\\i\\ul\\cf1 x\\plain y",
     "x{Courier New 15 b i u #ff0000}y{Times 12}"},
    {"SizeLimits", "\\fs0 a\\fs1 b\\fs99999 c\\fs-4 d", "a{ 12}b{ 1}c{ 1638}d{ 12}"},
    {"EqualFormatsMerge", "{\\b x}{\\b y}\\b0{z}", "xy{ 12 b}z{ 12}"},
    {"FormatCarriesOverPar", "\\b x\\par y", "x{ 12 b} | y{ 12 b}"},
    {"CellTabTakesNextFormat", "A\\cell\\b B\\row", "A{ 12}\tB{ 12 b}"},
};

INSTANTIATE_TEST_SUITE_P(Formats, RtfFormatTest, ::testing::ValuesIn(kFormatCases),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
