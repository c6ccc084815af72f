#pragma once
// Code pages met in RTF files: the Windows-1252 table the reader and writer use directly, and
// decoders for the other code pages a file may name (\ansicpg, \cpg, \fcharset).

#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>

#include <map>

namespace ed::rtf {

constexpr int kWesternCodepage = 1252;

// Windows-1252 byte -> UTF-16 unit. The five bytes 1252 leaves undefined map to the C1 code
// point of the same value, as Windows does.
char16_t cp1252ToUnicode(unsigned char byte);

// UTF-16 unit -> Windows-1252 byte; 0 when 1252 has no byte for it.
unsigned char unicodeToCp1252(char16_t unit);

// The code page a \fcharsetN stands for; 0 when it has none of its own (ANSI, default, symbol).
int codepageOfCharset(int charset);

// The code page to use for a number read from a file: itself when it can be decoded here,
// otherwise 1252.
int supportedCodepage(int codepage);

// Decodes byte runs of any supported code page other than 1252 (multi-byte ones included).
class CodepageDecoders {
public:
    QString decode(int codepage, QByteArrayView bytes);

private:
    std::map<int, QStringDecoder> decoders_;
};

} // namespace ed::rtf
