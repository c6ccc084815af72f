#include "textcmds/Whitespace.h"

#include "textcmds/Framework.h"
#include "util/ByteWriter.h"

#include <array>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif
#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define ED_PACK_BLOCKS 1
#endif

namespace ed {

namespace {

constexpr QByteArrayView kBreak("\r\n");

#ifdef ED_PACK_BLOCKS
// For each pattern of dropped bytes among eight (bit k set: byte k goes), the positions of the
// others in order (then -1, which a shuffle turns into 0), and how many there are.
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

bool canPack() {
    static const bool ssse3 = __builtin_cpu_supports("ssse3");
    return ssse3;
}

// Writes the bytes of `v` whose bit in `drop` is clear, in order, at `d` (sixteen bytes are
// written in all) and returns the end of the kept ones: one shuffle per half.
__attribute__((target("ssse3"))) inline char* packBlock(__m128i v, unsigned drop, char* d,
                                                        const KeptBytes& kept) {
    const unsigned lo = drop & 0xFF, hi = drop >> 8;
    const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&kept.positions[lo]));
    __m128i high = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&kept.positions[hi]));
    // -1 plus 8 would name a byte: the unused places keep their top bit.
    high = _mm_or_si128(_mm_add_epi8(high, _mm_set1_epi8(8)),
                        _mm_cmplt_epi8(high, _mm_setzero_si128()));
    const __m128i packed = _mm_shuffle_epi8(v, _mm_unpacklo_epi64(low, high));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(d), packed);
    d += kept.count[lo];
    _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_srli_si128(packed, 8));
    return d + kept.count[hi];
}

unsigned spacesIn(__m128i v) {
    return unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8(' '))));
}

// The whole blocks of sixteen bytes of [s, s + n) without their spaces, written at `d`; returns
// the end of what was written.
__attribute__((target("ssse3"))) char* removeSpacesBlocks(const char* s, qsizetype n, char* d) {
    const KeptBytes& kept = keptBytes();
    for (qsizetype i = 0; i + 16 <= n; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        d = packBlock(v, spacesIn(v), d, kept);
    }
    return d;
}

// The whole blocks of sixteen bytes of [s, s + n) with every space that follows a space left
// out; `afterSpace` says whether the byte before `s` was a space, and then the last one.
__attribute__((target("ssse3"))) char* collapseSpacesBlocks(const char* s, qsizetype n, char* d,
                                                            unsigned& afterSpace) {
    const KeptBytes& kept = keptBytes();
    for (qsizetype i = 0; i + 16 <= n; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const unsigned spaces = spacesIn(v);
        const unsigned drop = spaces & ((spaces << 1) | afterSpace);
        afterSpace = spaces >> 15;
        if (drop == 0) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d), v);
            d += 16;
        } else {
            d = packBlock(v, drop, d, kept);
        }
    }
    return d;
}
#endif

QByteArray withoutSpaces(QByteArrayView text) {
    ByteWriter out(text.size() + 16);
    char* d = out.room(text.size() + 16);
    const char* s = text.data();
    const qsizetype n = text.size();
    qsizetype i = 0;
#ifdef ED_PACK_BLOCKS
    if (canPack()) {
        d = removeSpacesBlocks(s, n, d);
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

// Every run of spaces shortened to one space: what replacing "  " by " " until no pair is left
// gives.
QByteArray collapseSpaces(QByteArrayView text) {
    ByteWriter out(text.size() + 16);
    char* d = out.room(text.size() + 16);
    const char* s = text.data();
    const qsizetype n = text.size();
    unsigned afterSpace = 0;
    qsizetype i = 0;
#ifdef ED_PACK_BLOCKS
    if (canPack()) {
        d = collapseSpacesBlocks(s, n, d, afterSpace);
        i = n - n % 16;
    }
#endif
    for (; i < n; ++i) {
        const unsigned space = s[i] == ' ';
        *d = s[i];
        d += 1 - (space & afterSpace);
        afterSpace = space;
    }
    out.advance(d);
    return std::move(out).finish();
}

// Lines joined into paragraphs. Step by step: CR LF CR LF becomes "^" (left to right), every
// other CR LF a space, every "^" CR LF CR LF, and then each pair of spaces, left to right in one
// pass, one space. Done here in one scan over tokens: a paragraph break (CR LF CR LF or "^"), a
// line break (any other CR LF) or a space, and single bytes. The line breaks and spaces read as
// spaces, and every run of k of them becomes (k + 1) / 2 spaces: the 1st, 3rd, 5th ... is kept.
struct Joiner {
    const char* s;
    qsizetype n;
    qsizetype i = 0;
    char* d;
    unsigned run = 0; // 1 after an odd number of spaces and line breaks

    // One token at `i`.
    void step() {
        const char c = s[i];
        const bool crlf = c == '\r' && i + 1 < n && s[i + 1] == '\n';
        const bool paragraph =
            c == '^' || (crlf && i + 3 < n && s[i + 2] == '\r' && s[i + 3] == '\n');
        if (paragraph) {
            std::memcpy(d, "\r\n\r\n", 4);
            d += 4;
            i += c == '^' ? 1 : 4;
            run = 0;
        } else if (c == ' ' || crlf) {
            *d = ' ';
            d += 1 - run;
            run ^= 1;
            i += crlf ? 2 : 1;
        } else {
            *d++ = c;
            run = 0;
            ++i;
        }
    }

#ifdef ED_PACK_BLOCKS
    // Blocks of sixteen bytes while each space or line break in them stands alone (it is then
    // written as one space, the line feed of a line break dropped) and there is no paragraph
    // break; stops before the first token that needs step().
    __attribute__((target("ssse3"))) void blocks() {
        const KeptBytes& kept = keptBytes();
        auto bits = [](__m128i v, char c) {
            return unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8(c))));
        };
        while (n - i >= 19) {
            const char* p = s + i;
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 1));
            const __m128i crlfLanes = _mm_and_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('\r')),
                                                    _mm_cmpeq_epi8(next, _mm_set1_epi8('\n')));
            const auto crlf = unsigned(_mm_movemask_epi8(crlfLanes)); // at the CR
            const unsigned space = bits(v, ' ');
            // A CR LF two bytes on: a paragraph break (or the rest of one).
            const unsigned paragraph =
                crlf & bits(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 2)), '\r') &
                bits(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 3)), '\n');
            const unsigned spaceLike = space | crlf;
            const unsigned afterSpaceLike = (space << 1) | (crlf << 2) | run;
            const unsigned stop = bits(v, '^') | paragraph | (spaceLike & afterSpaceLike);
            // A line break across the end of the block is left for the next one.
            const int whole = crlf >> 15 ? 15 : 16;
            const int used = qMin(stop ? __builtin_ctz(stop) : 16, whole);
            if (used == 0)
                return;
            const unsigned drop = ((crlf << 1) | ~((1u << used) - 1)) & 0xFFFF;
            if (drop == 0) {
                _mm_storeu_si128(reinterpret_cast<__m128i*>(d), v);
                d += 16;
            } else {
                const __m128i spaced = _mm_or_si128(_mm_andnot_si128(crlfLanes, v),
                                                    _mm_and_si128(crlfLanes, _mm_set1_epi8(' ')));
                d = packBlock(spaced, drop, d, kept);
            }
            i += used;
            run = ((space >> (used - 1)) & 1) | (used >= 2 ? (crlf >> (used - 2)) & 1 : 0);
            if (used < whole)
                return;
        }
    }
#endif
};

QByteArray joinParagraphs(QByteArrayView text) {
    const char* s = text.data();
    const qsizetype n = text.size();
    // The text grows only where "^" becomes four bytes; sixteen to spare for the block stores.
    qsizetype carets = 0;
    for (const char* p = s; (p = static_cast<const char*>(std::memchr(p, '^', size_t(s + n - p))));
         ++p)
        ++carets;
    const qsizetype room = n + 3 * carets + 16;
    ByteWriter out(room);
    Joiner j{s, n, 0, out.room(room)};
#ifdef ED_PACK_BLOCKS
    const bool blocks = canPack();
#else
    const bool blocks = false;
#endif
    while (j.i < n) {
#ifdef ED_PACK_BLOCKS
        if (blocks) {
            j.blocks();
            if (j.i >= n)
                break;
        }
#endif
        j.step();
    }
    out.advance(j.d);
    return std::move(out).finish();
}

// Every line followed by CR LF, without the blank lines for which drop(start, end) is true
// (their bytes [start, end) in order). Only lines that begin with a space or a line break can
// be blank: those are found sixteen bytes at a time, and runs of kept lines are copied in one
// piece.
template <class Drop> QByteArray withoutBlankLines(QByteArrayView text, Drop&& drop) {
    const char* s = text.data();
    const qsizetype n = text.size();
    ByteWriter out(n + kBreak.size());
    qsizetype runStart = 0; // the first byte not yet written or dropped
    // The line starting at `start`, when it is blank.
    auto visit = [&](qsizetype start) {
        qsizetype end = start;
        while (end < n && s[end] == ' ')
            ++end;
        if (end < n && !(s[end] == '\r' && end + 1 < n && s[end + 1] == '\n'))
            return;
        if (!drop(start, end))
            return;
        out.append(text.sliced(runStart, start - runStart));
        runStart = end + kBreak.size();
    };
    visit(0);
    // Each LF of a CR LF followed by a space or a CR.
    qsizetype i = 1;
#ifdef __SSE2__
    auto at = [&](qsizetype k) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + k)); };
    for (; i + 17 <= n; i += 16) {
        const __m128i next = at(i + 1);
        const __m128i breaks = _mm_and_si128(_mm_cmpeq_epi8(at(i), _mm_set1_epi8('\n')),
                                             _mm_cmpeq_epi8(at(i - 1), _mm_set1_epi8('\r')));
        const __m128i starts = _mm_or_si128(_mm_cmpeq_epi8(next, _mm_set1_epi8(' ')),
                                            _mm_cmpeq_epi8(next, _mm_set1_epi8('\r')));
        for (auto m = unsigned(_mm_movemask_epi8(_mm_and_si128(breaks, starts))); m; m &= m - 1)
            visit(i + __builtin_ctz(m) + 1);
    }
#endif
    for (; i + 1 < n; ++i)
        if (s[i] == '\n' && s[i - 1] == '\r' && (s[i + 1] == ' ' || s[i + 1] == '\r'))
            visit(i + 1);
    // An empty last line after a final CR LF.
    if (n >= 2 && s[n - 2] == '\r' && s[n - 1] == '\n')
        visit(n);
    // The lines after the last one dropped; the last piece of the text gets a break too.
    if (runStart <= n) {
        out.append(text.sliced(runStart));
        out.append(kBreak);
    }
    return std::move(out).finish();
}

// Each line with its spaces at both ends trimmed and followed by CR LF; runs of lines without
// such spaces are copied in one piece.
QByteArray trimLines(QByteArrayView text) {
    ByteWriter out(text.size() + kBreak.size());
    qsizetype runStart = 0; // the first byte not yet written
    forEachModelLine(text, [&](QByteArrayView line) {
        if (line.isEmpty() || (line.front() != ' ' && line.back() != ' '))
            return;
        const qsizetype start = line.data() - text.data();
        out.append(text.sliced(runStart, start - runStart));
        out.append(trimSpaces(line));
        out.append(kBreak);
        runStart = start + line.size() + kBreak.size();
    });
    if (runStart <= text.size()) {
        out.append(text.sliced(runStart));
        out.append(kBreak);
    }
    return std::move(out).finish();
}

} // namespace

void mnuRemoveAllSpaces_Click(CommandContext& ctx) {
    selectionOrWholeUtf8(ctx, ctx.edit.selLength() != 0, withoutSpaces);
}

void mnuTrimLeadingAndTrailingSpaces_Click(CommandContext& ctx) {
    ctx.edit.setUtf8(trimLines(ctx.edit.utf8()));
}

void mnuCnvDblSpcToSingle_Click(CommandContext& ctx) {
    ctx.edit.setUtf8(collapseSpaces(ctx.edit.utf8()));
}

void mnuReplaceDoubleBlankLineWithSingle_Click(CommandContext& ctx) {
    // The first blank line of each run stays as it is (spaces included); the others go.
    qsizetype afterBlank = -1; // where the line after the last blank line starts
    ctx.edit.setUtf8(withoutBlankLines(ctx.edit.utf8(), [&](qsizetype start, qsizetype end) {
        const bool again = start == afterBlank;
        afterBlank = end + kBreak.size();
        return again;
    }));
}

void mnuTrimSpaces_Click(CommandContext& ctx) {
    ctx.edit.setUtf8(withoutBlankLines(ctx.edit.utf8(), [](qsizetype, qsizetype) { return true; }));
}

void mnuRemoveCRLF_Click(CommandContext& ctx) {
    const QByteArray joined = joinParagraphs(ctx.edit.utf8());
    ctx.edit.setUtf8(QByteArray());
    ctx.edit.setUtf8(joined);
}

void mnuInsertBlankLines_Click(CommandContext& ctx) {
    constexpr int kBreaks = 301;
    const QByteArray text = ctx.edit.utf8();
    ByteWriter out(kBreaks * kBreak.size() + text.size());
    for (int i = 0; i < kBreaks; ++i)
        out.append(kBreak);
    out.append(text);
    ctx.edit.setUtf8(std::move(out).finish());
}

} // namespace ed
