#include "util/TextCodec.h"

#include "util/HugePages.h"
#include "util/Utf8.h"

#include <QStringDecoder>

#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace ed {

TextFormat defaultTextFormat() {
#ifdef Q_OS_WIN
    return {Encoding::Utf8, LineBreak::CrLf};
#else
    return {Encoding::Utf8, LineBreak::Lf};
#endif
}

namespace {

LineBreak detectLineBreak(const QString& text) {
    const char16_t* p = reinterpret_cast<const char16_t*>(text.constData());
    const qsizetype n = text.size();
    bool crlf = false;
    // Any lone LF: keep every byte by converting LF alone.
    auto lone = [&](qsizetype lf) { return lf == 0 || p[lf - 1] != u'\r'; };
    qsizetype i = 0;
#ifdef __SSE2__
    // Eight characters at a time, each compared with the one before it: an LF not after a CR
    // anywhere in the block is a lone one.
    if (n > 0 && p[0] == u'\n')
        return LineBreak::Lf;
    // Without a branch per block (line breaks come too irregularly to predict): the blocks'
    // findings are gathered and looked at every 4 K characters.
    const __m128i newline = _mm_set1_epi16(u'\n');
    const __m128i cr = _mm_set1_epi16(u'\r');
    __m128i anyLf = _mm_setzero_si128();
    __m128i loneLf = _mm_setzero_si128();
    for (i = 1; i + 8 <= n;) {
        const qsizetype stop = qMin(n - 7, i + 4096);
        for (; i < stop; i += 8) {
            const __m128i lf =
                _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i)), newline);
            const __m128i afterCr =
                _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i - 1)), cr);
            anyLf = _mm_or_si128(anyLf, lf);
            loneLf = _mm_or_si128(loneLf, _mm_andnot_si128(afterCr, lf));
        }
        if (_mm_movemask_epi8(loneLf) != 0)
            return LineBreak::Lf;
    }
    crlf = _mm_movemask_epi8(anyLf) != 0;
#endif
    for (; i < n; ++i) {
        if (p[i] == u'\n') {
            if (lone(i))
                return LineBreak::Lf;
            crlf = true;
        }
    }
    if (crlf)
        return LineBreak::CrLf;
    if (text.contains(u'\r'))
        return LineBreak::Cr;
    // A file without any line break of its own ends its record with CR LF, as the batch runner
    // writes it.
    return LineBreak::CrLf;
}

// QString::toUtf8, optionally after a byte order mark, into a buffer sized for the worst case
// and advised huge pages; eight ASCII characters at a time are narrowed at once. A text with a
// lone surrogate is converted by toUtf8 instead, which writes '?' for it.
QByteArray encodeUtf8(const QString& text, bool bom) {
    const QByteArray mark = bom ? QByteArray("\xEF\xBB\xBF") : QByteArray();
    const qsizetype n = text.size();
    QByteArray out(mark.size() + 3 * n, Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(out.size()));
    std::memcpy(out.data(), mark.constData(), size_t(mark.size()));
    auto* d = reinterpret_cast<unsigned char*>(out.data()) + mark.size();
    const auto* s = reinterpret_cast<const char16_t*>(text.constData());
    qsizetype i = 0;
    while (i < n) {
#ifdef __SSE2__
        const __m128i nonAscii = _mm_set1_epi16(short(0xFF80));
        while (i + 8 <= n) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
            // All eight are written; only the ASCII ones before the first other one count.
            _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(v, v));
            const unsigned ascii = unsigned(_mm_movemask_epi8(
                _mm_cmpeq_epi16(_mm_and_si128(v, nonAscii), _mm_setzero_si128())));
            if (ascii != 0xFFFF) {
                const int k = __builtin_ctz(~ascii) / 2;
                d += k;
                i += k;
                break;
            }
            d += 8;
            i += 8;
        }
#endif
        if (i >= n)
            break;
        const char16_t c = s[i];
        if (c < 0x80) {
            *d++ = (unsigned char)c;
            ++i;
        } else if (c < 0x800) {
            *d++ = (unsigned char)(0xC0 | (c >> 6));
            *d++ = (unsigned char)(0x80 | (c & 0x3F));
            ++i;
        } else if (!QChar::isSurrogate(c)) {
            *d++ = (unsigned char)(0xE0 | (c >> 12));
            *d++ = (unsigned char)(0x80 | ((c >> 6) & 0x3F));
            *d++ = (unsigned char)(0x80 | (c & 0x3F));
            ++i;
        } else if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(s[i + 1])) {
            const char32_t cp = QChar::surrogateToUcs4(c, s[i + 1]);
            *d++ = (unsigned char)(0xF0 | (cp >> 18));
            *d++ = (unsigned char)(0x80 | ((cp >> 12) & 0x3F));
            *d++ = (unsigned char)(0x80 | ((cp >> 6) & 0x3F));
            *d++ = (unsigned char)(0x80 | (cp & 0x3F));
            i += 2;
        } else {
            return mark + text.toUtf8();
        }
    }
    out.truncate(reinterpret_cast<char*>(d) - out.constData());
    return out;
}

// Checks and decodes UTF-8 in one pass: sixteen ASCII bytes at a time are widened at once, and
// anything else is decoded one sequence at a time (no overlong forms, no surrogates, nothing past
// U+10FFFF). False when the bytes are not valid UTF-8 (`text` is then unspecified).
bool decodeValidUtf8(const char* p, qsizetype n, QString& text) {
    text = QString(n, Qt::Uninitialized);
    adviseHugePages(text.constData(), size_t(n) * sizeof(QChar));
    auto* d = reinterpret_cast<char16_t*>(text.data());
    const auto* s = reinterpret_cast<const unsigned char*>(p);
    qsizetype i = 0;
    while (i < n) {
#ifdef __SSE2__
        const __m128i zero = _mm_setzero_si128();
        while (i + 16 <= n) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
            // All sixteen are written; only the ASCII ones before the first other byte count.
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_unpacklo_epi8(v, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 8), _mm_unpackhi_epi8(v, zero));
            const int mask = _mm_movemask_epi8(v);
            if (mask != 0) {
                const int ascii = __builtin_ctz(unsigned(mask));
                d += ascii;
                i += ascii;
                break;
            }
            d += 16;
            i += 16;
        }
#endif
        if (i >= n)
            break;
        const unsigned char c = s[i];
        if (c < 0x80) {
            *d++ = c;
            ++i;
            continue;
        }
        quint32 cp;
        const int len = checkedUtf8At(s + i, n - i, cp);
        if (len == 0)
            return false;
        if (cp >= 0x10000) {
            *d++ = char16_t(0xD800 + ((cp - 0x10000) >> 10));
            *d++ = char16_t(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            *d++ = char16_t(cp);
        }
        i += len;
    }
    text.truncate(d - reinterpret_cast<const char16_t*>(text.constData()));
    return true;
}

} // namespace

QString toModelBreaks(const QString& text, LineBreak style) {
    if (style == LineBreak::CrLf)
        return text;
    const char16_t from = style == LineBreak::Lf ? u'\n' : u'\r';
    const qsizetype extra = text.count(QChar(from));
    if (extra == 0)
        return text;
    QString out(text.size() + extra, Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(out.size()) * sizeof(QChar));
    char16_t* d = reinterpret_cast<char16_t*>(out.data());
    const char16_t* s = reinterpret_cast<const char16_t*>(text.constData());
    const char16_t* end = s + text.size();
    for (; s < end; ++s) {
        if (*s == from) {
            *d++ = u'\r';
            *d++ = u'\n';
        } else {
            *d++ = *s;
        }
    }
    return out;
}

QString fromModelBreaks(const QString& model, LineBreak style) {
    if (style == LineBreak::CrLf)
        return model;
    const char16_t to = style == LineBreak::Lf ? u'\n' : u'\r';
    QString out(model.size(), Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(out.size()) * sizeof(QChar));
    char16_t* d = reinterpret_cast<char16_t*>(out.data());
    const char16_t* s = reinterpret_cast<const char16_t*>(model.constData());
    const char16_t* end = s + model.size();
    while (s < end) {
        if (*s == u'\r' && s + 1 < end && s[1] == u'\n') {
            *d++ = to;
            s += 2;
        } else {
            *d++ = *s++;
        }
    }
    out.truncate(d - reinterpret_cast<char16_t*>(out.data()));
    return out;
}

// The byte order mark is skipped by hand; a U+FEFF right after it is a character of the text.
constexpr auto kKeepLeadingFeff =
    QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom;

QString decodeText(const QByteArray& bytes, TextFormat* format) {
    TextFormat f;
    QString text;
    const char* p = bytes.constData();
    const qsizetype n = bytes.size();
    if (n >= 3 && uchar(p[0]) == 0xEF && uchar(p[1]) == 0xBB && uchar(p[2]) == 0xBF &&
        decodeValidUtf8(p + 3, n - 3, text)) {
        f.encoding = Encoding::Utf8Bom;
    } else if (n >= 2 && n % 2 == 0 && uchar(p[0]) == 0xFF && uchar(p[1]) == 0xFE) {
        f.encoding = Encoding::Utf16LE;
        QStringDecoder dec(QStringDecoder::Utf16LE, kKeepLeadingFeff);
        text = dec(QByteArrayView(p + 2, n - 2));
    } else if (n >= 2 && n % 2 == 0 && uchar(p[0]) == 0xFE && uchar(p[1]) == 0xFF) {
        f.encoding = Encoding::Utf16BE;
        QStringDecoder dec(QStringDecoder::Utf16BE, kKeepLeadingFeff);
        text = dec(QByteArrayView(p + 2, n - 2));
    } else if (decodeValidUtf8(p, n, text)) {
        f.encoding = Encoding::Utf8;
    } else {
        f.encoding = Encoding::Latin1;
        text = QString::fromLatin1(p, n);
    }
    f.lineBreak = detectLineBreak(text);
    if (format)
        *format = f;
    return toModelBreaks(text, f.lineBreak);
}

QByteArray encodeText(const QString& model, const TextFormat& format) {
    const QString text = fromModelBreaks(model, format.lineBreak);
    switch (format.encoding) {
    case Encoding::Utf8:
        return encodeUtf8(text, false);
    case Encoding::Utf8Bom:
        return encodeUtf8(text, true);
    case Encoding::Utf16LE: {
        QStringEncoder enc(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        return enc(text);
    }
    case Encoding::Utf16BE: {
        QStringEncoder enc(QStringEncoder::Utf16BE, QStringEncoder::Flag::WriteBom);
        return enc(text);
    }
    case Encoding::Latin1: {
        // A character Latin-1 cannot hold would be lost: such a document is written as UTF-8.
        for (QChar c : text)
            if (c.unicode() > 0xFF)
                return text.toUtf8();
        return text.toLatin1();
    }
    }
    return text.toUtf8();
}

const char* encodingName(Encoding e) {
    switch (e) {
    case Encoding::Utf8:
        return "UTF-8";
    case Encoding::Utf8Bom:
        return "UTF-8 with BOM";
    case Encoding::Utf16LE:
        return "UTF-16 LE";
    case Encoding::Utf16BE:
        return "UTF-16 BE";
    case Encoding::Latin1:
        return "Latin-1";
    }
    return "?";
}

const char* lineBreakName(LineBreak l) {
    switch (l) {
    case LineBreak::CrLf:
        return "CR LF";
    case LineBreak::Lf:
        return "LF";
    case LineBreak::Cr:
        return "CR";
    }
    return "?";
}

} // namespace ed
