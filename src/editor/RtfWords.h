#pragma once
// The control words the RTF reader acts on, and what each one means to it.

#include <string_view>

namespace ed::rtf {

enum class Word : unsigned char {
    Unknown,
    SkipDestination, // a group whose text is not part of the document
    // Destinations the reader reads.
    FontTable,
    ColorTable,
    Upr,
    Ud,
    // Text and breaks.
    Par,
    Line,
    Row,
    Cell,
    Char,
    Unicode,
    Uc,
    Bin,
    // Character formats.
    Plain,
    Bold,
    Italic,
    Underline,
    UnderlineNone,
    Hidden,
    Font,
    FontSize,
    Color,
    // Fonts, colours and code pages.
    Deff,
    Fcharset,
    Cpg,
    Ansi,
    Ansicpg,
    Mac,
    Pc,
    Pca,
    Red,
    Green,
    Blue
};

struct WordEntry {
    std::string_view name;
    Word word;
    char16_t ch = 0; // for Word::Char
};

// The entry for a control word's name (without backslash and parameter); null when the reader
// does not know the word.
const WordEntry* findWord(std::string_view name);

} // namespace ed::rtf
