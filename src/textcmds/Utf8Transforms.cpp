#include "textcmds/Utf8Transforms.h"

#include "textcmds/CaseMapping.h"
#include "util/ByteWriter.h"
#include "util/Utf8.h"

#include <algorithm>
#include <array>

#ifdef __SSE2__
#include <emmintrin.h>
#endif
#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace ed {

namespace {

// The UTF-8 of the full case mapping of characters outside ASCII. The two-byte characters (the
// letters of most European scripts) are worked out once each, the others every time.
class Utf8CaseMapper {
public:
    explicit Utf8CaseMapper(bool upper) : mapping_(upper) {
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

// Copies `n` bytes from `s` to `d` and returns d + n. Sixteen bytes are copied at a time when
// that reads nothing at or past `limit`, and then up to fifteen bytes past d + n are written too.
inline char* copyShort(char* d, const char* s, qsizetype n, const char* limit) {
#ifdef __SSE2__
    if (limit - s >= n + 15) {
        for (qsizetype k = 0; k < n; k += 16)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + k),
                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + k)));
        return d + n;
    }
#endif
    std::memcpy(d, s, size_t(n));
    return d + n;
}

// Writes trimSpaces(a + b + c) at `d` without putting the three together first; returns the end.
char* putTrimmed(char* d, QByteArrayView a, QByteArrayView b, QByteArrayView c) {
    const QByteArrayView parts[3] = {a, b, c};
    // Where the text starts: the first part with something other than spaces, and in it.
    int first = 0;
    qsizetype from = 0;
    for (; first < 3; ++first) {
        const QByteArrayView p = parts[first];
        from = 0;
        while (from < p.size() && p[from] == ' ')
            ++from;
        if (from < p.size())
            break;
    }
    if (first == 3)
        return d; // nothing but spaces
    // Where it ends: the last part with something other than spaces, and in it.
    int last = 2;
    qsizetype to = 0;
    for (;; --last) {
        const QByteArrayView p = parts[last];
        to = p.size();
        while (to > 0 && p[to - 1] == ' ')
            --to;
        if (to > 0)
            break;
    }
    for (int k = first; k <= last; ++k) {
        const QByteArrayView p = parts[k];
        const qsizetype b = k == first ? from : 0;
        const qsizetype e = k == last ? to : p.size();
        std::memcpy(d, p.data() + b, size_t(e - b));
        d += e - b;
    }
    return d;
}

#if defined(__x86_64__) || defined(__i386__)
// For each pattern of spaces among eight bytes (bit k set: byte k is a space), the positions of
// the other bytes in order (then -1, which a shuffle turns into 0), and how many there are.
struct KeptBytes {
    std::array<std::array<qint8, 8>, 256> positions;
    std::array<quint8, 256> count;
};

const KeptBytes& keptBytes() {
    static const KeptBytes table = [] {
        KeptBytes t{};
        for (int m = 0; m < 256; ++m) {
            int k = 0;
            for (int b = 0; b < 8; ++b)
                if (!(m & (1 << b)))
                    t.positions[m][k++] = qint8(b);
            t.count[m] = quint8(k);
            for (; k < 8; ++k)
                t.positions[m][k] = -1;
        }
        return t;
    }();
    return table;
}

// Removes the spaces of the whole blocks of sixteen bytes of [s, s + n) into `d` and returns the
// end of what was written: each block's bytes other than spaces are moved together by one
// shuffle per half.
__attribute__((target("ssse3"))) char* removeSpacesShuffled(const char* s, qsizetype n, char* d) {
    const KeptBytes& kept = keptBytes();
    const __m128i space = _mm_set1_epi8(' ');
    const __m128i eight = _mm_set1_epi8(8);
    for (qsizetype i = 0; i + 16 <= n; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const auto mask = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(v, space)));
        const unsigned lo = mask & 0xFF, hi = mask >> 8;
        const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&kept.positions[lo]));
        __m128i high = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&kept.positions[hi]));
        // -1 plus 8 would name a byte: the unused places keep their top bit.
        high = _mm_or_si128(_mm_add_epi8(high, eight), _mm_cmplt_epi8(high, _mm_setzero_si128()));
        const __m128i packed = _mm_shuffle_epi8(v, _mm_unpacklo_epi64(low, high));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d), packed);
        d += kept.count[lo];
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_srli_si128(packed, 8));
        d += kept.count[hi];
    }
    return d;
}
#endif

} // namespace

QByteArray convertCaseUtf8(QByteArrayView text, bool upper) {
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    const qsizetype n = text.size();
    // Room for a little growth (a sharp s becomes "SS"); more is made when needed.
    ByteWriter out(n + n / 16 + 64);
    Utf8CaseMapper mapper(upper);
    const char first = upper ? 'a' : 'A';
    qsizetype i = 0;
    while (i < n) {
#ifdef __SSE2__
        // Sixteen bytes mapped at once: the letters of the other case have their 0x20 bit
        // flipped. All sixteen are written; only the ASCII ones before the first other byte
        // count.
        const __m128i before = _mm_set1_epi8(char(first - 1));
        const __m128i after = _mm_set1_epi8(char(first + 26));
        const __m128i caseBit = _mm_set1_epi8(0x20);
        while (i + 16 <= n) {
            char* d = out.room(16);
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
            const __m128i letter =
                _mm_and_si128(_mm_cmpgt_epi8(v, before), _mm_cmplt_epi8(v, after));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d),
                             _mm_xor_si128(v, _mm_and_si128(letter, caseBit)));
            const int nonAscii = _mm_movemask_epi8(v);
            if (nonAscii != 0) {
                const int k = __builtin_ctz(unsigned(nonAscii));
                out.advance(d + k);
                i += k;
                break;
            }
            out.advance(d + 16);
            i += 16;
        }
#endif
        if (i >= n)
            break;
        const unsigned char c = s[i];
        if (c < 0x80) {
            char* d = out.room(1);
            *d = char(c ^ (unsigned(c - first) < 26 ? 0x20 : 0));
            out.advance(d + 1);
            ++i;
            continue;
        }
        int len;
        mapper.put(decodeUtf8At(s + i, len), out);
        i += len;
    }
    return std::move(out).finish();
}

QByteArray removeSpacesUtf8(QByteArrayView text) {
    ByteWriter out(text.size());
    char* d = out.room(text.size());
    const char* s = text.data();
    const qsizetype n = text.size();
    qsizetype i = 0;
#if defined(__x86_64__) || defined(__i386__)
    static const bool shuffle = __builtin_cpu_supports("ssse3");
    if (shuffle) {
        d = removeSpacesShuffled(s, n, d);
        i = n - n % 16;
    }
#endif
    // Every byte is written and the next one overwrites it if it was a space: no branch to
    // mispredict on irregular spaces.
    for (; i < n; ++i) {
        *d = s[i];
        d += s[i] != ' ';
    }
    out.advance(d);
    return std::move(out).finish();
}

namespace {

// Each line with its spaces at both ends trimmed; runs of lines without such spaces are copied
// in one piece.
QByteArray trimLinesUtf8(const Utf8Document& doc) {
    const QByteArrayView text = doc.text();
    const QByteArrayView br = doc.lineBreakBytes();
    ByteWriter out(text.size() + br.size());
    qsizetype runStart = 0; // the first line not yet written
    forEachUtf8Line(text, doc.lineBreak(), [&](QByteArrayView line) {
        qsizetype b = 0, e = line.size();
        if (e == 0 || (line[0] != ' ' && line[e - 1] != ' '))
            return;
        while (b < e && line[b] == ' ')
            ++b;
        while (e > b && line[e - 1] == ' ')
            --e;
        const qsizetype start = line.data() - text.data();
        out.append(text.sliced(runStart, start - runStart));
        out.append(line.sliced(b, e - b));
        out.append(br);
        runStart = start + line.size() + br.size();
    });
    // The lines after the last one trimmed; the last piece of the text gets a break too.
    if (runStart <= text.size()) {
        out.append(text.sliced(runStart));
        out.append(br);
    }
    return std::move(out).finish();
}

} // namespace

QByteArray affixLinesUtf8(const Utf8Document& doc, const QString& prefix, const QString& suffix) {
    if (prefix.isEmpty() && suffix.isEmpty())
        return trimLinesUtf8(doc);
    const QByteArray pre = prefix.toUtf8();
    const QByteArray suf = suffix.toUtf8();
    const QByteArrayView br = doc.lineBreakBytes();
    const QByteArrayView text = doc.text();
    const char* const textEnd = text.data() + text.size();
    auto blank = [](QByteArrayView s) {
        return std::all_of(s.begin(), s.end(), [](char c) { return c == ' '; });
    };
    // A line with something other than spaces becomes head + line + tail, the line trimmed at the
    // ends where the prefix or suffix is blank; only a blank line needs the whole worked out.
    const bool trimStart = blank(pre);
    const bool trimEnd = blank(suf);
    QByteArray head = trimStart ? QByteArray() : pre;
    while (head.startsWith(' '))
        head.remove(0, 1);
    QByteArray tail = trimEnd ? QByteArray() : suf;
    while (tail.endsWith(' '))
        tail.chop(1);
    tail += br;
    const qsizetype headSize = head.size(), tailSize = tail.size();
    // Sixteen bytes to spare behind each, for the short copies.
    head.append(QByteArray(16, '\0'));
    tail.append(QByteArray(16, '\0'));
    constexpr qsizetype kSpare = 16;
    // Room for lines of sixteen bytes on average; more is made when they are shorter.
    ByteWriter out(text.size() + (text.size() / 16 + 1) * (pre.size() + suf.size() + 1) +
                   br.size() + kSpare);
    forEachUtf8Line(text, doc.lineBreak(), [&](QByteArrayView line) {
        char* d = out.room(pre.size() + line.size() + suf.size() + br.size() + 3 * kSpare);
        qsizetype b = 0, e = line.size();
        while (e > 0 && line[e - 1] == ' ')
            --e;
        if (e == 0) {
            d = putTrimmed(d, pre, line, suf);
            std::memcpy(d, br.data(), size_t(br.size()));
            out.advance(d + br.size());
            return;
        }
        if (trimStart)
            while (line[b] == ' ')
                ++b;
        if (!trimEnd)
            e = line.size();
        d = copyShort(d, head.constData(), headSize, head.constData() + head.size());
        d = copyShort(d, line.data() + b, e - b, textEnd);
        d = copyShort(d, tail.constData(), tailSize, tail.constData() + tail.size());
        out.advance(d);
    });
    return std::move(out).finish();
}

} // namespace ed
