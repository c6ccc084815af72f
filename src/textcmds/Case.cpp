#include "textcmds/Case.h"

#include "textcmds/CaseMapping.h"
#include "textcmds/Framework.h"
#include "util/ByteWriter.h"
#include "util/Utf8.h"

#include <algorithm>
#include <array>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

// Every case command walks the text's bytes once through one of the mappers below: runs of ASCII
// sixteen bytes at a time (block), single ASCII bytes (one), and every other character (wide),
// which writes its own bytes. A mapper that works one character at a time keeps the number of
// UTF-16 units of every character (see putSimple), so positions keep their meaning.

bool isAsciiUpper(unsigned c) {
    return c - 'A' < 26;
}
bool isAsciiLower(unsigned c) {
    return c - 'a' < 26;
}
bool isLoneSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}
// An ASCII byte in upper case (`upper`) or lower case.
unsigned asciiCase(unsigned c, bool upper) {
    return upper ? (isAsciiLower(c) ? c - 32 : c) : (isAsciiUpper(c) ? c + 32 : c);
}

#ifdef __SSE2__
// The lanes of `v` holding a byte from `first` to `last` (both ASCII).
__m128i inRange(__m128i v, char first, char last) {
    return _mm_and_si128(_mm_cmpgt_epi8(v, _mm_set1_epi8(char(first - 1))),
                         _mm_cmplt_epi8(v, _mm_set1_epi8(char(last + 1))));
}
// The letters of `v` in upper case in the lanes set in `upper`, in lower case in the others.
__m128i setCase(__m128i v, __m128i upper) {
    const __m128i flip = _mm_or_si128(_mm_andnot_si128(upper, inRange(v, 'A', 'Z')),
                                      _mm_and_si128(upper, inRange(v, 'a', 'z')));
    return _mm_xor_si128(v, _mm_and_si128(flip, _mm_set1_epi8(0x20)));
}
#endif

// Writes `mapped` for `c` unless that changes how many UTF-16 units the character takes.
void putSimple(char32_t c, char32_t mapped, ByteWriter& out) {
    if (QChar::requiresSurrogates(mapped) != QChar::requiresSurrogates(c))
        mapped = c;
    char* d = out.room(4);
    out.advance(encodeUtf8At(mapped, d));
}

template <class Mapper> void mapCharacters(QByteArrayView text, Mapper& m, ByteWriter& out) {
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    const qsizetype n = text.size();
    qsizetype i = 0;
    while (i < n) {
#ifdef __SSE2__
        // All sixteen lanes are written; only the ASCII ones before the first other byte count.
        while (n - i >= 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
            const auto other = unsigned(_mm_movemask_epi8(v));
            const int k = other ? __builtin_ctz(other) : 16;
            if (k == 0)
                break;
            char* d = out.room(16);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d), m.block(v, k));
            out.advance(d + k);
            i += k;
            if (k < 16)
                break;
        }
#endif
        if (i >= n)
            break;
        if (s[i] < 0x80) {
            char* d = out.room(1);
            *d = char(m.one(s[i]));
            out.advance(d + 1);
            ++i;
            continue;
        }
        int len;
        const char32_t c = decodeUtf8At(s + i, len);
        if (len > n - i) { // cut short: not from the model, kept as it is
            out.append(text.sliced(i));
            break;
        }
        m.wide(c, out);
        i += len;
    }
}

// The UTF-8 of the full case mapping of characters outside ASCII. The two-byte characters (the
// letters of most European scripts) are worked out once each, the others every time.
class FullMapping {
public:
    explicit FullMapping(bool upper) : mapping_(upper) {
        for (Entry& e : twoByte_)
            e.size = kUnknown;
    }

    void put(char32_t cp, ByteWriter& out) {
        if (cp < 0x800) {
            Entry& e = twoByte_[cp - 0x80];
            if (e.size == kUnknown) {
                const QStringView m = mapping_.map(cp);
                if (m.size() * 3 <= qsizetype(sizeof e.bytes))
                    e.size = quint8(write(m, e.bytes) - e.bytes);
                else
                    e.size = kLong;
            }
            if (e.size != kLong) {
                char* d = out.room(sizeof e.bytes);
                std::memcpy(d, e.bytes, sizeof e.bytes);
                out.advance(d + e.size);
                return;
            }
        }
        const QStringView m = mapping_.map(cp);
        out.advance(write(m, out.room(3 * m.size())));
    }

private:
    static constexpr quint8 kUnknown = 0xFF;
    static constexpr quint8 kLong = 0xFE;
    struct Entry {
        quint8 size;
        char bytes[15];
    };

    // UTF-8 of a mapping (at most three bytes per unit; a surrogate pair takes four for two).
    static char* write(QStringView m, char* d) {
        for (qsizetype k = 0; k < m.size(); ++k) {
            char32_t u = m[k].unicode();
            if (m[k].isHighSurrogate() && k + 1 < m.size() && m[k + 1].isLowSurrogate()) {
                u = QChar::surrogateToUcs4(m[k], m[k + 1]);
                ++k;
            }
            d = encodeUtf8At(u, d);
        }
        return d;
    }

    CaseMapping mapping_;
    std::array<Entry, 0x800 - 0x80> twoByte_;
};

// Upper or lower case by the full mappings (sharp s becomes "SS", dotted capital I "i" and a
// combining dot), as a whole string converts.
struct FullCase {
    explicit FullCase(bool upper) : full(upper), first(upper ? 'a' : 'A') {}
    FullMapping full;
    unsigned first; // the first letter that changes

#ifdef __SSE2__
    __m128i block(__m128i v, int) const {
        // The letters of the other case get their 0x20 bit flipped.
        const __m128i letter = _mm_and_si128(_mm_cmpgt_epi8(v, _mm_set1_epi8(char(first - 1))),
                                             _mm_cmplt_epi8(v, _mm_set1_epi8(char(first + 26))));
        return _mm_xor_si128(v, _mm_and_si128(letter, _mm_set1_epi8(0x20)));
    }
#endif
    unsigned one(unsigned c) const {
        return c ^ (c - first < 26 ? 0x20 : 0);
    }
    void wide(char32_t c, ByteWriter& out) {
        full.put(c, out);
    }
};

bool isWordBoundary(char32_t c) {
    if (c < 0x80)
        return c == ' ' || (c >= 0x09 && c <= 0x0D) || c == 0;
    return QChar::isSpace(c);
}

// The first character of every word in title case, every other one in lower case.
struct ProperCase {
    bool wordStart = true;

#ifdef __SSE2__
    __m128i block(__m128i v, int used) {
        // Space, tab to carriage return, and NUL.
        const __m128i boundary = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8(' ')), inRange(v, '\t', '\r')),
            _mm_cmpeq_epi8(v, _mm_setzero_si128()));
        // A word starts after a boundary: the lane before, or for lane 0 what came before.
        const __m128i start =
            _mm_or_si128(_mm_slli_si128(boundary, 1), _mm_cvtsi32_si128(wordStart ? 0xFF : 0));
        // A boundary character has no case, so it may go either way.
        wordStart = (unsigned(_mm_movemask_epi8(boundary)) >> (used - 1)) & 1;
        return setCase(v, start);
    }
#endif
    unsigned one(unsigned c) {
        const unsigned mapped = asciiCase(c, wordStart);
        wordStart = isWordBoundary(c);
        return mapped;
    }
    void wide(char32_t c, ByteWriter& out) {
        if (isLoneSurrogate(c)) {
            putSimple(c, c, out); // neither a word nor a boundary
            return;
        }
        const bool boundary = QChar::isSpace(c);
        putSimple(c, boundary ? c : wordStart ? QChar::toTitleCase(c) : QChar::toLower(c), out);
        wordStart = boundary;
    }
};

// Lower case, and every character at an even position (1-based, in UTF-16 units) upper case.
struct Crippled {
    qsizetype pos = 0; // 0-based: odd positions go upper

#ifdef __SSE2__
    __m128i block(__m128i v, int used) {
        const __m128i oddLanes = _mm_set1_epi16(short(0xFF00));
        const __m128i up = pos % 2 ? _mm_xor_si128(oddLanes, _mm_set1_epi8(-1)) : oddLanes;
        pos += used;
        return setCase(v, up);
    }
#endif
    unsigned one(unsigned c) {
        return asciiCase(c, pos++ % 2);
    }
    void wide(char32_t c, ByteWriter& out) {
        if (isLoneSurrogate(c)) {
            putSimple(c, c, out);
            ++pos;
            return;
        }
        const char32_t lower = QChar::toLower(c);
        putSimple(c, pos % 2 ? QChar::toUpper(lower) : lower, out);
        pos += QChar::requiresSurrogates(c) ? 2 : 1;
    }
};

// Room for a little growth (a sharp s becomes "SS"); more is made when needed.
qsizetype guessedSize(QByteArrayView text) {
    return text.size() + text.size() / 16 + 64;
}

QByteArray convertCase(QByteArrayView text, bool upper) {
    ByteWriter out(guessedSize(text));
    FullCase mapper(upper);
    mapCharacters(text, mapper, out);
    return std::move(out).finish();
}

QByteArray properCase(QByteArrayView text, bool trailingSpace) {
    ByteWriter out(guessedSize(text));
    ProperCase mapper;
    mapCharacters(text, mapper, out);
    if (trailingSpace)
        out.append(" ");
    return std::move(out).finish();
}

QByteArray crippledCase(QByteArrayView text) {
    ByteWriter out(guessedSize(text));
    Crippled mapper;
    mapCharacters(text, mapper, out);
    return std::move(out).finish();
}

} // namespace

void mnuConvertToLowerCase_Click(CommandContext& ctx) {
    selectionOrWholeUtf8(ctx, ctx.edit.selLength() != 0,
                         [](QByteArrayView s) { return convertCase(s, false); });
}

void mnuConvertToUpperCase_Click(CommandContext& ctx) {
    selectionOrWholeUtf8(ctx, ctx.edit.selLength() != 0,
                         [](QByteArrayView s) { return convertCase(s, true); });
}

void mnuConvertToProperCase_Click(CommandContext& ctx) {
    // A selection of spaces only counts as none: the whole text is converted.
    const QString sel = ctx.edit.selText();
    const bool onlySpaces = std::all_of(sel.begin(), sel.end(), [](QChar c) { return c == u' '; });
    selectionOrWholeUtf8(ctx, !onlySpaces, [](QByteArrayView s) { return properCase(s, false); });
}

void mnuCapitalizeEachWord_Click(CommandContext& ctx) {
    // Each space-separated piece (empty ones included) in proper case and followed by one space.
    // A space is a word boundary of proper case, so converting the stretch in one go and adding
    // the final space gives the same text as converting piece by piece.
    selectionOrWholeUtf8(ctx, ctx.edit.selLength() != 0,
                         [](QByteArrayView s) { return properCase(s, true); });
}

void mnuConvertToCrippledText_Click(CommandContext& ctx) {
    // The stretch is trimmed of spaces before it goes back, and the caret is left where the new
    // text puts it.
    selectionOrWholeUtf8(
        ctx, ctx.edit.selLength() != 0,
        [](QByteArrayView s) { return crippledCase(trimSpaces(s)); }, false);
}

} // namespace ed
