#pragma once
// Lower case of UTF-8 text one character at a time into one buffer reused from call to call, so
// that lowering every line or block of a document allocates only when the buffer grows and never
// moves what was already written.
//  - Full: exactly what QString::toLower gives (the dotted capital I becomes "i" and a combining
//    dot), as the line filters compare.
//  - Simple: one character for each character (the dotted capital I stays as it is), so that the
//    n-th character of the result stands for the n-th character of the text, as the positional
//    edits compare.
// A character may take a different number of bytes in lower case (the Kelvin sign becomes "k"):
// keptLengths() tells whether that happened in the last call, that is whether every byte offset
// of the result is the same offset in the text.

#include "textcmds/CaseMapping.h"

#include <QByteArray>
#include <QByteArrayView>

#include <array>

namespace ed {

class Utf8Lowering {
public:
    enum class Mapping { Full, Simple };
    explicit Utf8Lowering(Mapping mapping);

    // The lower case of `text` (model bytes). The view stays valid until the next call.
    QByteArrayView operator()(QByteArrayView text);
    bool keptLengths() const { return keptLengths_; }

private:
    // Writes the lower case of the character `cp` at `d`; returns the end of what was written.
    char* put(char32_t cp, char* d);
    char* putMapped(char32_t cp, char* d);

    struct Entry {
        quint8 size; // kUnknown until worked out
        char bytes[7];
    };
    static constexpr quint8 kUnknown = 0xFF;
    static constexpr quint8 kLong = 0xFE;

    Mapping mapping_;
    CaseMapping full_{false};
    // The characters of two bytes (most European scripts), worked out once each.
    std::array<Entry, 0x800 - 0x80> twoByte_;
    QByteArray buffer_;
    bool keptLengths_ = true;
};

} // namespace ed
