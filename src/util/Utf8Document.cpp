#include "util/Utf8Document.h"

#include "util/Utf8.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

// The style decodeText finds in the text, except that a text without any break gets CR LF (as
// a document without a line break is written back).
LineBreak detectLineBreak(const char* p, qsizetype n) {
    if (n > 0 && p[0] == '\n')
        return LineBreak::Lf;
    bool lf = false;
    bool cr = false;
    qsizetype i = 1;
#ifdef __SSE2__
    // Sixteen bytes at a time, each compared with the one before it: an LF not after a CR is a
    // lone one.
    // Without a branch per block: line breaks come too irregularly to predict. A lone LF is
    // looked for after every 4 KB.
    const __m128i newline = _mm_set1_epi8('\n');
    const __m128i ret = _mm_set1_epi8('\r');
    __m128i anyCr = _mm_setzero_si128();
    __m128i anyLf = _mm_setzero_si128();
    __m128i lone = _mm_setzero_si128();
    while (i + 16 <= n) {
        const qsizetype stop = qMin(n - 15, i + 4096);
        for (; i < stop; i += 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            const __m128i before = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i - 1));
            const __m128i lfs = _mm_cmpeq_epi8(v, newline);
            anyCr = _mm_or_si128(anyCr, _mm_cmpeq_epi8(v, ret));
            anyLf = _mm_or_si128(anyLf, lfs);
            lone = _mm_or_si128(lone, _mm_andnot_si128(_mm_cmpeq_epi8(before, ret), lfs));
        }
        if (_mm_movemask_epi8(lone) != 0)
            return LineBreak::Lf;
    }
    cr = _mm_movemask_epi8(anyCr) != 0;
    lf = _mm_movemask_epi8(anyLf) != 0;
#endif
    for (; i < n; ++i) {
        if (p[i] == '\n') {
            if (p[i - 1] != '\r')
                return LineBreak::Lf;
            lf = true;
        }
        cr = cr || p[i] == '\r';
    }
    if (lf)
        return LineBreak::CrLf;
    if (cr || (n > 0 && p[0] == '\r'))
        return LineBreak::Cr;
    return LineBreak::CrLf;
}

} // namespace

std::optional<Utf8Document> Utf8Document::fromFile(const QByteArray& bytes) {
    const char* p = bytes.constData();
    qsizetype n = bytes.size();
    const bool bom = n >= 3 && uchar(p[0]) == 0xEF && uchar(p[1]) == 0xBB && uchar(p[2]) == 0xBF;
    if (bom) {
        p += 3;
        n -= 3;
    }
    if (!isValidUtf8(p, n))
        return std::nullopt;
    return Utf8Document(QByteArray::fromRawData(p, n), bom);
}

LineBreak Utf8Document::lineBreak() const {
    if (!lineBreak_)
        lineBreak_ = detectLineBreak(text_.constData(), text_.size());
    return *lineBreak_;
}

QByteArray Utf8Document::fileBytes() const {
    if (!bom_)
        return text_;
    QByteArray out;
    out.reserve(text_.size() + 3);
    out.append("\xEF\xBB\xBF").append(text_);
    return out;
}

QByteArrayView Utf8Document::lineBreakBytes() const {
    switch (lineBreak()) {
    case LineBreak::CrLf:
        return "\r\n";
    case LineBreak::Lf:
        return "\n";
    case LineBreak::Cr:
        return "\r";
    }
    return "\r\n";
}

} // namespace ed
