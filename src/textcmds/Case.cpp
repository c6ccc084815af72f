#include "textcmds/Case.h"

#include "textcmds/CaseMapping.h"
#include "textcmds/Framework.h"
#include "textcmds/Utf8Transforms.h"
#include "util/HugePages.h"

#include <type_traits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

// Text is mostly ASCII: blocks of ASCII characters are mapped by simple loops the compiler can
// keep branch-free, everything else one character at a time.
constexpr qsizetype kBlock = 16;

bool asciiBlock(const char16_t* p) {
    char16_t any = 0;
    for (qsizetype k = 0; k < kBlock; ++k)
        any |= p[k];
    return any < 0x80;
}

char16_t asciiLower(char16_t c) {
    return char16_t(c + (char16_t(c - u'A') < 26 ? 32 : 0));
}
char16_t asciiUpper(char16_t c) {
    return char16_t(c - (char16_t(c - u'a') < 26 ? 32 : 0));
}
bool asciiBoundary(char16_t c) {
    return c == u' ' || char16_t(c - 9) < 5 || c == 0;
}

// Writes f(character, position) for the character at `i` (one unit, or a surrogate pair) and
// returns the number of units it takes. A mapping that would change the number of units keeps
// the character as it is; a lone surrogate is copied unchanged.
template <class F>
qsizetype mapOne(const char16_t* in, qsizetype n, qsizetype i, char16_t* out, F& f) {
    const char16_t c = in[i];
    if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(in[i + 1])) {
        const char32_t m = f(QChar::surrogateToUcs4(c, in[i + 1]), i);
        const bool fits = QChar::requiresSurrogates(m);
        out[i] = fits ? QChar::highSurrogate(m) : c;
        out[i + 1] = fits ? QChar::lowSurrogate(m) : in[i + 1];
        return 2;
    }
    if (QChar::isSurrogate(c)) {
        out[i] = c;
        return 1;
    }
    const char32_t m = f(char32_t(c), i);
    out[i] = QChar::requiresSurrogates(m) ? c : char16_t(m);
    return 1;
}

// Maps all of `src` into `out` (room for src.size() units): runs of ASCII characters through
// block(in, out, position, count), with count a compile-time constant (kBlock or 1), other
// characters through f(character, position).
template <class B, class F> void mapText(QStringView src, char16_t* out, B&& block, F&& f) {
    const char16_t* in = src.utf16();
    const qsizetype n = src.size();
    qsizetype i = 0;
    while (i < n) {
        if (n - i >= kBlock && asciiBlock(in + i)) {
            block(in + i, out + i, i, std::integral_constant<qsizetype, kBlock>());
            i += kBlock;
        } else if (in[i] < 0x80) {
            block(in + i, out + i, i, std::integral_constant<qsizetype, 1>());
            ++i;
        } else {
            i += mapOne(in, n, i, out, f);
        }
    }
}

char16_t* units(QString& s) {
    return reinterpret_cast<char16_t*>(s.data());
}

char32_t lowerOf(char32_t c) {
    if (c < 0x80)
        return c >= u'A' && c <= u'Z' ? c + 32 : c;
    return QChar::toLower(c);
}

char32_t upperOf(char32_t c) {
    if (c < 0x80)
        return c >= u'a' && c <= u'z' ? c - 32 : c;
    return QChar::toUpper(c);
}

char32_t titleOf(char32_t c) {
    return c < 0x80 ? upperOf(c) : QChar::toTitleCase(c);
}

bool isWordBoundary(char32_t c) {
    if (c < 0x80)
        return c == u' ' || (c >= 0x09 && c <= 0x0D) || c == 0;
    return QChar::isSpace(c);
}

// Full case conversion in one pass: runs of ASCII characters eight at a time, every other
// character by its full mapping, so the text grows without being copied again where a character
// maps to more than one.
QString convertCase(QStringView s, bool upper) {
    const qsizetype n = s.size();
    const QChar* in = s.data();
    QString out(n, Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(n) * sizeof(QChar));
    QChar* d = out.data();
    qsizetype o = 0;
    CaseMapping mapping(upper);
    auto room = [&](qsizetype need) {
        if (o + need > out.size()) {
            out.resize(qMax(out.size() + out.size() / 2, o + need) + 16);
            d = out.data();
        }
    };
    const char16_t* raw = s.utf16();
    const char16_t first = upper ? u'a' : u'A';
    qsizetype i = 0;
    while (i < n) {
#ifdef __SSE2__
        // The letters of the other case get their 0x20 bit flipped. All eight are written; only
        // the ASCII ones before the first other character count.
        const __m128i before = _mm_set1_epi16(short(first - 1));
        const __m128i after = _mm_set1_epi16(short(first + 26));
        const __m128i caseBit = _mm_set1_epi16(0x20);
        const __m128i nonAscii = _mm_set1_epi16(short(0xFF80));
        while (n - i >= 8) {
            room(8);
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(raw + i));
            const __m128i letter =
                _mm_and_si128(_mm_cmpgt_epi16(v, before), _mm_cmplt_epi16(v, after));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + o),
                             _mm_xor_si128(v, _mm_and_si128(letter, caseBit)));
            const auto ascii = unsigned(_mm_movemask_epi8(
                _mm_cmpeq_epi16(_mm_and_si128(v, nonAscii), _mm_setzero_si128())));
            if (ascii != 0xFFFF) {
                const int k = __builtin_ctz(~ascii) / 2;
                o += k;
                i += k;
                break;
            }
            o += 8;
            i += 8;
        }
#endif
        if (i >= n)
            break;
        const QChar c = in[i];
        if (c.unicode() < 0x80) {
            room(1);
            d[o++] = QChar(char16_t(upper ? upperOf(c.unicode()) : lowerOf(c.unicode())));
            ++i;
            continue;
        }
        char32_t cp = c.unicode();
        qsizetype units = 1;
        if (c.isHighSurrogate() && i + 1 < n && in[i + 1].isLowSurrogate()) {
            cp = QChar::surrogateToUcs4(c, in[i + 1]);
            units = 2;
        }
        const QStringView full = mapping.map(cp);
        room(full.size());
        for (QChar f : full)
            d[o++] = f;
        i += units;
    }
    out.truncate(o);
    return out;
}

QString lowered(QStringView s) {
    return convertCase(s, false);
}
QString uppered(QStringView s) {
    return convertCase(s, true);
}

} // namespace

void lowerSameLength(QStringView src, QString& dst) {
    dst.resize(src.size());
    mapText(
        src, units(dst),
        [](const char16_t* in, char16_t* out, qsizetype, auto count) {
            for (qsizetype k = 0; k < count; ++k)
                out[k] = asciiLower(in[k]);
        },
        [](char32_t c, qsizetype) { return lowerOf(c); });
}

QString properCase(QStringView s) {
    QString out(s.size(), Qt::Uninitialized);
    bool wordStart = true;
    mapText(
        s, units(out),
        [&](const char16_t* in, char16_t* o, qsizetype, auto count) {
            // A boundary character has no case, so each character is simply upper-cased after a
            // boundary and lower-cased elsewhere.
            // Written without branches: word starts are too irregular to predict.
            o[0] = wordStart ? asciiUpper(in[0]) : asciiLower(in[0]);
            for (qsizetype k = 1; k < count; ++k) {
                const char16_t c = in[k], p = in[k - 1];
                const unsigned start =
                    unsigned(p == u' ') | unsigned(char16_t(p - 9) < 5) | unsigned(p == 0);
                const unsigned upper = unsigned(char16_t(c - u'A') < 26);
                const unsigned lower = unsigned(char16_t(c - u'a') < 26);
                o[k] = char16_t(c + 32 * (upper & (start ^ 1)) - 32 * (lower & start));
            }
            wordStart = asciiBoundary(in[count - 1]);
        },
        [&](char32_t c, qsizetype) {
            if (isWordBoundary(c)) {
                wordStart = true;
                return c;
            }
            const char32_t m = wordStart ? titleOf(c) : lowerOf(c);
            wordStart = false;
            return m;
        });
    return out;
}

QString crippledCase(QStringView s) {
    // Position i + 1 (1-based) is even when the 0-based index i is odd.
    QString out(s.size(), Qt::Uninitialized);
    mapText(
        s, units(out),
        [](const char16_t* in, char16_t* o, qsizetype i, auto count) {
            for (qsizetype k = 0; k < count; ++k)
                o[k] = (i + k) % 2 ? asciiUpper(in[k]) : asciiLower(in[k]);
        },
        [](char32_t c, qsizetype i) { return i % 2 ? upperOf(lowerOf(c)) : lowerOf(c); });
    return out;
}

void mnuConvertToLowerCase_Click(CommandContext& ctx) {
    selectionOrWhole(ctx, !ctx.edit.selText().isEmpty(), lowered);
}

void mnuConvertToUpperCase_Click(CommandContext& ctx) {
    selectionOrWhole(ctx, !ctx.edit.selText().isEmpty(), uppered);
}

// Only a document without a selection comes here: the whole text is converted.
void mnuConvertToLowerCase_Utf8(CommandContext&, Utf8Document& doc) {
    doc.setText(convertCaseUtf8(doc.text(), false));
}

void mnuConvertToUpperCase_Utf8(CommandContext&, Utf8Document& doc) {
    doc.setText(convertCaseUtf8(doc.text(), true));
}

void mnuConvertToProperCase_Click(CommandContext& ctx) {
    // A selection of spaces only counts as none: the whole text is converted.
    const QString sel = ctx.edit.selText();
    selectionOrWhole(ctx, !trimSpaces(sel).isEmpty(), properCase);
}

void mnuCapitalizeEachWord_Click(CommandContext& ctx) {
    // Each space-separated piece (empty ones included) in proper case and followed by one space.
    // A space is a word boundary of properCase, so converting the stretch in one go and adding
    // the final space gives the same text as converting piece by piece.
    selectionOrWhole(ctx, !ctx.edit.selText().isEmpty(), [](QStringView s) {
        QString out = properCase(s);
        out.append(u' ');
        return out;
    });
}

void mnuConvertToCrippledText_Click(CommandContext& ctx) {
    // The stretch is trimmed of spaces before it goes back, and the caret is left where the new
    // text puts it.
    selectionOrWhole(
        ctx, ctx.edit.selLength() != 0, [](QStringView s) { return crippledCase(trimSpaces(s)); },
        false);
}

} // namespace ed
