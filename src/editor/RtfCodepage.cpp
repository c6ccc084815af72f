#include "editor/RtfCodepage.h"

#include <algorithm>
#include <array>

namespace ed::rtf {

namespace {

// Windows-1252 0x80..0x9F; the rest of the code page is Latin-1.
constexpr std::array<char16_t, 32> kHigh1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

struct CodepageName {
    int codepage;
    const char* name;
};

// The code pages files name in practice, with the name the decoder knows them by.
constexpr std::array<CodepageName, 20> kCodepageNames = {{
    {437, "IBM437"},        {850, "IBM850"},        {852, "IBM852"},        {866, "IBM866"},
    {874, "windows-874"},   {932, "Shift_JIS"},     {936, "GBK"},           {949, "windows-949"},
    {950, "Big5"},          {1250, "windows-1250"}, {1251, "windows-1251"}, {1253, "windows-1253"},
    {1254, "windows-1254"}, {1255, "windows-1255"}, {1256, "windows-1256"}, {1257, "windows-1257"},
    {1258, "windows-1258"}, {10000, "macintosh"},   {1252, "windows-1252"}, {20127, "US-ASCII"},
}};

const char* codepageName(int codepage) {
    for (const CodepageName& c : kCodepageNames)
        if (c.codepage == codepage)
            return c.name;
    return nullptr;
}

} // namespace

char16_t cp1252ToUnicode(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? kHigh1252[byte - 0x80] : char16_t(byte);
}

unsigned char unicodeToCp1252(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return static_cast<unsigned char>(unit);
    const auto it = std::find(kHigh1252.begin(), kHigh1252.end(), unit);
    return it == kHigh1252.end() ? 0 : static_cast<unsigned char>(0x80 + (it - kHigh1252.begin()));
}

int codepageOfCharset(int charset) {
    switch (charset) {
    case 77:
        return 10000;
    case 128:
        return 932;
    case 129:
        return 949;
    case 134:
        return 936;
    case 136:
        return 950;
    case 161:
        return 1253;
    case 162:
        return 1254;
    case 163:
        return 1258;
    case 177:
        return 1255;
    case 178:
        return 1256;
    case 186:
        return 1257;
    case 204:
        return 1251;
    case 222:
        return 874;
    case 238:
        return 1250;
    case 254:
        return 437;
    default:
        return 0;
    }
}

int supportedCodepage(int codepage) {
    return codepageName(codepage) ? codepage : kWesternCodepage;
}

QString CodepageDecoders::decode(int codepage, QByteArrayView bytes) {
    auto it = decoders_.find(codepage);
    if (it == decoders_.end()) {
        const char* name = codepageName(codepage);
        it = decoders_
                 .emplace(codepage, QStringDecoder(name ? name : "windows-1252",
                                                   QStringConverter::Flag::Stateless))
                 .first;
    }
    if (!it->second.isValid()) {
        QString out;
        out.reserve(bytes.size());
        for (char b : bytes)
            out.append(QChar(cp1252ToUnicode(static_cast<unsigned char>(b))));
        return out;
    }
    return it->second.decode(bytes);
}

} // namespace ed::rtf
