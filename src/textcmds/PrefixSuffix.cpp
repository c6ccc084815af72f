#include "textcmds/PrefixSuffix.h"

#include "textcmds/Framework.h"
#include "util/ByteWriter.h"

#include <algorithm>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

constexpr QByteArrayView kBreak("\r\n");
// Bytes to spare behind every piece copied by copyShort.
constexpr qsizetype kSpare = 16;

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

// Each line becomes trimSpaces(pre + line + suf) followed by CR LF.
QByteArray affixLines(QByteArrayView text, const QByteArray& pre, const QByteArray& suf) {
    const char* const textEnd = text.data() + text.size();
    // A line with something other than spaces becomes head + line + tail, the line trimmed at the
    // ends where the prefix or suffix is blank; only a blank line needs the whole worked out.
    const bool trimStart = isBlank(pre);
    const bool trimEnd = isBlank(suf);
    // The prefix without its leading spaces, the suffix without its trailing ones.
    QByteArray head, tail;
    if (!trimStart)
        head = pre.sliced(trimSpaces(pre).data() - pre.data());
    if (!trimEnd)
        tail = suf.first(trimSpaces(suf).data() + trimSpaces(suf).size() - suf.data());
    tail += kBreak;
    const qsizetype headSize = head.size(), tailSize = tail.size();
    head.append(QByteArray(kSpare, '\0'));
    tail.append(QByteArray(kSpare, '\0'));
    // The result is at most every line with the whole prefix, suffix and break.
    const qsizetype lines = countModelLines(text);
    ByteWriter out(text.size() + lines * (pre.size() + suf.size()) + kBreak.size() + 3 * kSpare);
    forEachModelLine(text, [&](QByteArrayView line) {
        char* d = out.room(pre.size() + line.size() + suf.size() + kBreak.size() + 3 * kSpare);
        qsizetype b = 0, e = line.size();
        while (e > 0 && line[e - 1] == ' ')
            --e;
        if (e == 0) {
            d = putTrimmed(d, pre, line, suf);
            std::memcpy(d, kBreak.data(), size_t(kBreak.size()));
            out.advance(d + kBreak.size());
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

void affix(CommandContext& ctx, const QString& prompt, const QString& key, bool prefix) {
    const auto answer = promptRemembered(ctx, prompt, QStringLiteral("Enter text"), key);
    if (!answer)
        return;
    const QByteArray bytes = toModelUtf8(*answer);
    ctx.edit.setUtf8(
        affixLines(ctx.edit.utf8(), prefix ? bytes : QByteArray(), prefix ? QByteArray() : bytes));
}

} // namespace

void mnuAddPrefix_Click(CommandContext& ctx) {
    affix(ctx, QStringLiteral("Enter text to add as Prefix."), QStringLiteral("Previous Prefix"),
          true);
}

void mnuAddSuffix_Click(CommandContext& ctx) {
    affix(ctx, QStringLiteral("Enter text to add as Suffix."), QStringLiteral("Previous Suffix"),
          false);
}

} // namespace ed
