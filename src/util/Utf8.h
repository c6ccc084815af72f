#pragma once
// Small pieces of UTF-8 work on raw bytes: checking, and one character read or written.

#include <QtGlobal>

namespace ed {

// Whether [p, p + n) is UTF-8 as the text decoder accepts it: no overlong forms, no surrogates,
// nothing past U+10FFFF, no sequence cut short.
bool isValidUtf8(const char* p, qsizetype n);
// The same one sequence at a time, for processors without the vector instructions isValidUtf8
// uses (and to check it against).
bool isValidUtf8Plain(const char* p, qsizetype n);

// The line breaks a text holds: an LF not right after a CR (one at the start counts), any LF,
// any CR.
struct LineBreaksSeen {
    bool loneLf = false;
    bool lf = false;
    bool cr = false;
};
// isValidUtf8, noting the line breaks of [p, p + n) in `seen` in the same pass (when valid).
// False in `done` where the processor lacks the vector instructions to do both at once.
bool isValidUtf8NotingBreaks(const char* p, qsizetype n, LineBreaksSeen& seen, bool& done);

// The character starting at `s` in valid UTF-8; `len` gets its length in bytes.
inline char32_t decodeUtf8At(const unsigned char* s, int& len) {
    const unsigned c = s[0];
    if (c < 0x80) {
        len = 1;
        return c;
    }
    if (c < 0xE0) {
        len = 2;
        return ((c & 0x1F) << 6) | (s[1] & 0x3F);
    }
    if (c < 0xF0) {
        len = 3;
        return ((c & 0x0F) << 12) | ((s[1] & 0x3F) << 6) | (s[2] & 0x3F);
    }
    len = 4;
    return ((c & 0x07) << 18) | ((s[1] & 0x3F) << 12) | ((s[2] & 0x3F) << 6) | (s[3] & 0x3F);
}

// The character of the sequence starting with the byte 0x80 or above at `s`, at most `left`
// bytes: its length, with the character in `cp`, or 0 when it is not UTF-8 as the text decoder
// accepts it (overlong, a surrogate, past U+10FFFF or cut short).
inline int checkedUtf8At(const unsigned char* s, qsizetype left, quint32& cp) {
    const unsigned c = s[0];
    int len;
    if (c >= 0xC2 && c <= 0xDF) {
        len = 2;
        cp = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
        len = 3;
        cp = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
        len = 4;
        cp = c & 0x07;
    } else {
        return 0;
    }
    if (len > left)
        return 0;
    for (int k = 1; k < len; ++k) {
        const unsigned cc = s[k];
        if ((cc & 0xC0) != 0x80)
            return 0;
        cp = (cp << 6) | (cc & 0x3F);
    }
    if ((len == 3 && (cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF))) ||
        (len == 4 && (cp < 0x10000 || cp > 0x10FFFF)))
        return 0;
    return len;
}

inline int utf8Length(char32_t cp) {
    return cp < 0x80 ? 1 : cp < 0x800 ? 2 : cp < 0x10000 ? 3 : 4;
}

// Writes `cp` (not a surrogate) as UTF-8 at `d` and returns the end of what was written.
inline char* encodeUtf8At(char32_t cp, char* d) {
    if (cp < 0x80) {
        *d++ = char(cp);
    } else if (cp < 0x800) {
        *d++ = char(0xC0 | (cp >> 6));
        *d++ = char(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        *d++ = char(0xE0 | (cp >> 12));
        *d++ = char(0x80 | ((cp >> 6) & 0x3F));
        *d++ = char(0x80 | (cp & 0x3F));
    } else {
        *d++ = char(0xF0 | (cp >> 18));
        *d++ = char(0x80 | ((cp >> 12) & 0x3F));
        *d++ = char(0x80 | ((cp >> 6) & 0x3F));
        *d++ = char(0x80 | (cp & 0x3F));
    }
    return d;
}

} // namespace ed
