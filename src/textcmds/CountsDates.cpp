#include "textcmds/CountsDates.h"

#include "app/ErrorLogger.h"
#include "textcmds/Framework.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

namespace {

// Replaces the selection (or inserts at the caret) with `stamp`; the caret ends in front of it.
void putAtSelection(CommandContext& ctx, const QString& stamp) {
    const int start = ctx.edit.selStart();
    ctx.edit.replaceRange(start, ctx.edit.selLength(), stamp);
    ctx.edit.setSelStart(start);
    ctx.edit.setSelLength(0);
}

} // namespace

qsizetype countLineBreaks(QByteArrayView text) {
    const char* p = text.data();
    const qsizetype n = text.size();
    qsizetype breaks = 0;
    qsizetype i = 0;
#ifdef __SSE2__
    // Each CR whose next byte is an LF, sixteen bytes at a time, counted in byte lanes that are
    // added up before they can overflow.
    const __m128i zero = _mm_setzero_si128();
    while (i + 17 <= n) {
        __m128i lanes = zero;
        for (int k = 0; k < 255 && i + 17 <= n; ++k, i += 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
            const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i + 1));
            const __m128i pairs = _mm_and_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('\r')),
                                                _mm_cmpeq_epi8(next, _mm_set1_epi8('\n')));
            lanes = _mm_sub_epi8(lanes, pairs);
        }
        const __m128i sums = _mm_sad_epu8(lanes, zero);
        breaks += _mm_cvtsi128_si64(sums) + _mm_cvtsi128_si64(_mm_unpackhi_epi64(sums, sums));
    }
#endif
    for (; i + 1 < n; ++i)
        breaks += p[i] == '\r' && p[i + 1] == '\n';
    return breaks;
}

void mnuGetCharCount_Click(CommandContext& ctx) {
    const int selected = ctx.edit.selLength();
    const QString text = selected >= 1
                             ? QStringLiteral("Selected Character Count = %1").arg(selected)
                             : QStringLiteral("Character Count = %1").arg(ctx.edit.textLength());
    ctx.dialogs.messageBox(text, defaultTitle(), Buttons::Ok, Icon::Information);
}

void mnuShowLineCount_Click(CommandContext& ctx) {
    // Every piece between CR LFs counts, so a final CR LF adds an empty last line; an empty text
    // has no lines at all.
    const QByteArray text = ctx.edit.utf8();
    const qsizetype lines = text.isEmpty() ? 0 : countLineBreaks(text) + 1;
    ctx.dialogs.messageBox(QStringLiteral("Line Count = %1").arg(lines), defaultTitle(),
                           Buttons::Ok, Icon::None);
}

void mnuInsertDate_Click(CommandContext& ctx) {
    putAtSelection(ctx, localeShortDate(ctx.clock.now().date()));
}

void mnuInsertTime_Click(CommandContext& ctx) {
    putAtSelection(ctx, localeTime(ctx.clock.now().time()));
}

void mnuInsertDateTime_Click(CommandContext& ctx) {
    const QDateTime now = ctx.clock.now();
    putAtSelection(ctx,
                   localeShortDate(now.date()) + QStringLiteral(": ") + localeTime(now.time()));
}

} // namespace ed
