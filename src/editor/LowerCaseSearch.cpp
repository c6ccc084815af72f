#include "editor/LowerCaseSearch.h"

#include "util/ModelText.h"
#include "util/ByteSearch.h"
#include "util/Utf8.h"

#include <QChar>

#include <algorithm>
#include <cstring>
#include <memory>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

// The lower case of every character of the Basic Multilingual Plane, built once. A character
// whose lower case lies outside that plane keeps its own (the two would differ in UTF-16 units).
class LowerCaseTable {
public:
    static const LowerCaseTable& instance() {
        static const LowerCaseTable table;
        return table;
    }
    char32_t lower(char32_t c) const {
        if (c < 0x10000)
            return map_[c];
        const char32_t l = QChar::toLower(c);
        return QChar::requiresSurrogates(l) ? l : c; // a pair always lowers to a pair
    }

private:
    LowerCaseTable() : map_(std::make_unique<char16_t[]>(0x10000)) {
        for (char32_t u = 0; u < 0x10000; ++u) {
            const char32_t l = QChar::isSurrogate(u) ? u : QChar::toLower(u);
            map_[u] = char16_t(QChar::requiresSurrogates(l) ? u : l);
        }
        // Capital I with dot is the one letter whose full lower case is two characters (i and a
        // combining dot); its simple lower case is a plain i.
        map_[0x130] = u'i';
    }
    std::unique_ptr<char16_t[]> map_;
};

// Length of the sequence a byte of 0x80 or above starts; 0 for a byte that starts none.
inline int sequenceLength(unsigned char c) {
    return c < 0xC0 ? 0 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : c < 0xF8 ? 4 : 0;
}

// Writes the lower case of the whole characters in [s, s + n) at `d` and returns the end of what
// was written. `d` needs room for 3 * n / 2 + 16 bytes (a two-byte character can lower to three;
// whole blocks of sixteen are stored at once). Bytes that are not UTF-8 are copied as they are.
char* lowerInto(const unsigned char* s, qsizetype n, char* d, const LowerCaseTable& table) {
    qsizetype i = 0;
    while (i < n) {
#ifdef __SSE2__
        if (i + 16 <= n) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
            // Bytes of 0x80 and above are negative here, so they are never taken for capitals.
            const __m128i upper = _mm_and_si128(_mm_cmpgt_epi8(v, _mm_set1_epi8('A' - 1)),
                                                _mm_cmplt_epi8(v, _mm_set1_epi8('Z' + 1)));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d),
                             _mm_or_si128(v, _mm_and_si128(upper, _mm_set1_epi8(0x20))));
            const unsigned wide = unsigned(_mm_movemask_epi8(v));
            const int ascii = wide ? __builtin_ctz(wide) : 16;
            i += ascii;
            d += ascii;
            if (ascii == 16)
                continue;
        }
#endif
        const unsigned char c = s[i];
        if (c < 0x80) {
            *d++ = char(unsigned(c - 'A') < 26u ? c + 0x20 : c);
            ++i;
            continue;
        }
        const int len = sequenceLength(c);
        bool whole = len > 0 && len <= n - i;
        for (int k = 1; whole && k < len; ++k)
            whole = (s[i + k] & 0xC0) == 0x80;
        if (!whole) {
            *d++ = char(c);
            ++i;
            continue;
        }
        int decoded = 0;
        const char32_t cp = decodeUtf8At(s + i, decoded);
        const char32_t l = table.lower(cp);
        if (l == cp || l > 0x10FFFF) {
            std::memcpy(d, s + i, size_t(len));
            d += len;
        } else {
            d = encodeUtf8At(l, d);
        }
        i += len;
    }
    return d;
}

inline bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

QByteArray lowerSameLength(QByteArrayView text) {
    QByteArray out(text.size() * 3 / 2 + 16, Qt::Uninitialized);
    const char* end = lowerInto(reinterpret_cast<const unsigned char*>(text.data()), text.size(),
                                out.data(), LowerCaseTable::instance());
    out.truncate(end - out.constData());
    return out;
}

qsizetype indexOfIgnoringCase(QByteArrayView text, QByteArrayView needle, qsizetype from) {
    from = std::max<qsizetype>(from, 0);
    const qsizetype n = text.size();
    qsizetype at = byteOffsetOf(text, from);
    qsizetype units = utf16Length(text.first(at));
    if (units < from) {
        // Past the end, or inside a surrogate pair: a match can only start after that character.
        if (at >= n)
            return -1;
        do
            ++at;
        while (at < n && isContinuation(text[at]));
        units += 2;
    }
    const QByteArray pattern = lowerSameLength(needle);
    if (pattern.isEmpty())
        return from;
    const ByteSearch finder(pattern);
    const LowerCaseTable& table = LowerCaseTable::instance();

    // The text is lowered a piece at a time behind the last pattern.size() - 1 bytes (or a few
    // more, back to a character's start) of the piece before, so a match across two pieces is
    // seen. A character and its lower case count the same UTF-16 units, so the units before a
    // match are counted on the text itself, once, when there is one.
    constexpr qsizetype kPiece = qsizetype(1) << 16;
    const qsizetype keepMax = pattern.size() + 3;
    QByteArray buffer(keepMax + kPiece * 3 / 2 + 32, Qt::Uninitialized);
    char* const buf = buffer.data();
    const qsizetype start = at;
    qsizetype kept = 0;
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    while (at < n) {
        qsizetype end = std::min(n, at + kPiece);
        while (end < n && isContinuation(text[end]))
            ++end; // whole characters only
        const qsizetype filled = lowerInto(s + at, end - at, buf + kept, table) - buf;
        const qsizetype hit = finder.find(QByteArrayView(buf, filled));
        if (hit >= 0) {
            const qsizetype before = units + utf16Length(text.sliced(start, at - start));
            return hit >= kept ? before + utf16Length(QByteArrayView(buf + kept, hit - kept))
                               : before - utf16Length(QByteArrayView(buf + hit, kept - hit));
        }
        at = end;
        qsizetype keepFrom = std::max<qsizetype>(0, filled - (pattern.size() - 1));
        while (keepFrom > 0 && isContinuation(buf[keepFrom]))
            --keepFrom;
        kept = filled - keepFrom;
        std::memmove(buf, buf + keepFrom, size_t(kept));
    }
    return -1;
}

} // namespace ed
