#pragma once
// Finds a text's line-break style a piece at a time, as decoding does: LF when any LF stands
// alone, else CR LF when there is any, else CR when there is any CR; a text without any break
// gets CR LF (as a document without a line break is written back).

#include "util/TextCodec.h"
#include "util/Utf8.h"

#include <QtGlobal>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

// Finds the style decodeText finds in a text, a piece at a time, except that a text without any
// break gets CR LF (as a document without a line break is written back).
class LineBreakScan {
public:
    // Looks at [from, to) of the text at `p` (and at the byte before `from`).
    void add(const char* p, qsizetype from, qsizetype to) {
        if (lone_)
            return;
        qsizetype i = from;
        if (i == 0 && i < to) {
            lone_ = p[0] == '\n';
            cr_ = p[0] == '\r';
            ++i;
        }
#ifdef __SSE2__
        // Sixteen bytes at a time, each compared with the one before it: an LF not after a CR is
        // a lone one. Without a branch per block: line breaks come too irregularly to predict.
        const __m128i newline = _mm_set1_epi8('\n');
        const __m128i ret = _mm_set1_epi8('\r');
        __m128i anyCr = _mm_setzero_si128();
        __m128i anyLf = _mm_setzero_si128();
        __m128i lone = _mm_setzero_si128();
        for (; i + 16 <= to; i += 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            const __m128i before = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i - 1));
            const __m128i lfs = _mm_cmpeq_epi8(v, newline);
            anyCr = _mm_or_si128(anyCr, _mm_cmpeq_epi8(v, ret));
            anyLf = _mm_or_si128(anyLf, lfs);
            lone = _mm_or_si128(lone, _mm_andnot_si128(_mm_cmpeq_epi8(before, ret), lfs));
        }
        lone_ = lone_ || _mm_movemask_epi8(lone) != 0;
        cr_ = cr_ || _mm_movemask_epi8(anyCr) != 0;
        lf_ = lf_ || _mm_movemask_epi8(anyLf) != 0;
#endif
        for (; i < to; ++i) {
            if (p[i] == '\n') {
                lone_ = lone_ || p[i - 1] != '\r';
                lf_ = true;
            }
            cr_ = cr_ || p[i] == '\r';
        }
    }

    // Takes what another scan of the whole text found (isValidUtf8NotingBreaks).
    void add(const LineBreaksSeen& seen) {
        lone_ = lone_ || seen.loneLf;
        lf_ = lf_ || seen.lf;
        cr_ = cr_ || seen.cr;
    }

    LineBreak result() const {
        if (lone_)
            return LineBreak::Lf;
        if (lf_)
            return LineBreak::CrLf;
        if (cr_)
            return LineBreak::Cr;
        return LineBreak::CrLf;
    }

private:
    bool lone_ = false;
    bool lf_ = false;
    bool cr_ = false;
};

} // namespace ed
