// File bytes <-> the model's UTF-8 bytes: the same formats and the same round trip as the UTF-16
// codec, without ever holding the text as UTF-16 (UTF-16 files aside).

#include "util/HugePages.h"
#include "util/LineBreakScan.h"
#include "util/ModelText.h"
#include "util/TextCodec.h"
#include "util/Utf8.h"

#include <QStringEncoder>

#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

namespace ed {

namespace {

QByteArray uninitialized(qsizetype size) {
    QByteArray out(size, Qt::Uninitialized);
    adviseHugePages(out.constData(), size_t(size));
    return out;
}

// Every `from` byte (LF or CR) becomes CR LF.
QByteArray expandBreaks(const QByteArray& text, char from) {
    const char* p = text.constData();
    const qsizetype n = text.size();
    const qsizetype extra = text.count(from);
    if (extra == 0)
        return text;
    QByteArray out = uninitialized(n + extra);
    char* d = out.data();
    qsizetype i = 0;
    while (i < n) {
        const void* hit = std::memchr(p + i, from, size_t(n - i));
        const qsizetype at = hit ? static_cast<const char*>(hit) - p : n;
        std::memcpy(d, p + i, size_t(at - i));
        d += at - i;
        if (at == n)
            break;
        *d++ = '\r';
        *d++ = '\n';
        i = at + 1;
    }
    return out;
}

// Every CR LF becomes `to`.
QByteArray collapseBreaks(const QByteArray& model, char to) {
    const char* p = model.constData();
    const qsizetype n = model.size();
    QByteArray out = uninitialized(n);
    char* d = out.data();
    qsizetype i = 0;
    while (i < n) {
        const void* hit = std::memchr(p + i, '\n', size_t(n - i));
        const qsizetype at = hit ? static_cast<const char*>(hit) - p : n;
        if (at == n) {
            std::memcpy(d, p + i, size_t(n - i));
            d += n - i;
            break;
        }
        const bool pair = at > i && p[at - 1] == '\r';
        const qsizetype keep = at - i - (pair ? 1 : 0);
        std::memcpy(d, p + i, size_t(keep));
        d += keep;
        *d++ = pair ? to : '\n';
        i = at + 1;
    }
    out.truncate(d - out.constData());
    return out;
}

QByteArray latin1ToUtf8(QByteArrayView bytes) {
    QByteArray out = uninitialized(2 * bytes.size());
    char* d = out.data();
    for (const char c : bytes) {
        const auto b = (unsigned char)c;
        if (b < 0x80) {
            *d++ = char(b);
        } else {
            *d++ = char(0xC0 | (b >> 6));
            *d++ = char(0x80 | (b & 0x3F));
        }
    }
    out.truncate(d - out.constData());
    return out;
}

// The Latin-1 bytes of model text, or nothing when a character is above U+00FF.
bool utf8ToLatin1(const QByteArray& model, QByteArray& out) {
    out = uninitialized(model.size());
    char* d = out.data();
    const auto* s = reinterpret_cast<const unsigned char*>(model.constData());
    const qsizetype n = model.size();
    for (qsizetype i = 0; i < n;) {
        if (s[i] < 0x80) {
            *d++ = char(s[i++]);
        } else if ((s[i] == 0xC2 || s[i] == 0xC3) && i + 1 < n) {
            *d++ = char(((s[i] & 0x03) << 6) | (s[i + 1] & 0x3F));
            i += 2;
        } else {
            return false;
        }
    }
    out.truncate(d - out.constData());
    return true;
}

// A lone surrogate kept in the model cannot go into a UTF-8 file: it becomes U+FFFD there.
QByteArray withoutLoneSurrogates(const QByteArray& model) {
    const char* p = model.constData();
    const qsizetype n = model.size();
    const void* first = std::memchr(p, '\xED', size_t(n));
    if (!first)
        return model;
    bool any = false;
    for (qsizetype i = static_cast<const char*>(first) - p; i + 1 < n; ++i)
        if ((unsigned char)p[i] == 0xED && (unsigned char)p[i + 1] >= 0xA0)
            any = true;
    if (!any)
        return model;
    QByteArray out;
    out.reserve(n);
    for (qsizetype i = 0; i < n;) {
        if ((unsigned char)p[i] == 0xED && i + 2 < n && (unsigned char)p[i + 1] >= 0xA0) {
            out.append("\xEF\xBF\xBD");
            i += 3;
        } else {
            out.append(p[i++]);
        }
    }
    return out;
}

} // namespace

// Checks that [p, p + n) is UTF-8 and finds its line-break style in the same pass: in one go
// where the check's vector instructions note the breaks too, else a piece at a time while the
// piece is in the cache. A piece ends before an ASCII byte, so no sequence spans two.
bool scanUtf8(const char* p, qsizetype n, LineBreakScan& breaks) {
    LineBreaksSeen seen;
    bool done = false;
    const bool valid = isValidUtf8NotingBreaks(p, n, seen, done);
    if (done) {
        breaks.add(seen);
        return valid;
    }
    constexpr qsizetype kPiece = 64 * 1024;
    for (qsizetype from = 0; from < n;) {
        qsizetype to = qMin(n, from + kPiece);
        while (to < n && uchar(p[to]) >= 0x80)
            ++to;
        if (!isValidUtf8(p + from, to - from))
            return false;
        breaks.add(p, from, to);
        from = to;
    }
    return true;
}

QByteArray decodeToModel(const QByteArray& bytes, TextFormat* format) {
    const char* p = bytes.constData();
    const qsizetype n = bytes.size();
    const bool bom = n >= 3 && uchar(p[0]) == 0xEF && uchar(p[1]) == 0xBB && uchar(p[2]) == 0xBF;
    TextFormat f;
    QByteArray text;
    LineBreakScan scan;
    if (bom && scanUtf8(p + 3, n - 3, scan)) {
        f.encoding = Encoding::Utf8Bom;
        text = bytes.sliced(3);
    } else if (n >= 2 && n % 2 == 0 &&
               ((uchar(p[0]) == 0xFF && uchar(p[1]) == 0xFE) ||
                (uchar(p[0]) == 0xFE && uchar(p[1]) == 0xFF))) {
        return toModelUtf8(decodeText(bytes, format));
    } else if (scan = LineBreakScan(), scanUtf8(p, n, scan)) {
        f.encoding = Encoding::Utf8;
        text = bytes;
    } else {
        f.encoding = Encoding::Latin1;
        text = latin1ToUtf8(bytes);
        scan = LineBreakScan();
        scan.add(text.constData(), 0, text.size());
    }
    f.lineBreak = scan.result();
    if (format)
        *format = f;
    switch (f.lineBreak) {
    case LineBreak::CrLf:
        return text;
    case LineBreak::Lf:
        return expandBreaks(text, '\n');
    case LineBreak::Cr:
        return expandBreaks(text, '\r');
    }
    return text;
}

bool decodeToModelInPieces(const QByteArray& bytes, TextFormat* format,
                           const std::function<bool(QByteArrayView, qsizetype)>& sink) {
    constexpr qsizetype kPiece = qsizetype(1) << 20;
    const char* p = bytes.constData();
    const qsizetype n = bytes.size();
    const bool bom = n >= 3 && uchar(p[0]) == 0xEF && uchar(p[1]) == 0xBB && uchar(p[2]) == 0xBF;
    TextFormat f;
    LineBreakScan scan;
    qsizetype from = 0;
    if (bom && scanUtf8(p + 3, n - 3, scan)) {
        f.encoding = Encoding::Utf8Bom;
        from = 3;
    } else if (n >= 2 && n % 2 == 0 &&
               ((uchar(p[0]) == 0xFF && uchar(p[1]) == 0xFE) ||
                (uchar(p[0]) == 0xFE && uchar(p[1]) == 0xFF))) {
        // UTF-16 is rare and decoded whole.
        return sink(decodeToModel(bytes, format), n);
    } else if (scan = LineBreakScan(), scanUtf8(p, n, scan)) {
        f.encoding = Encoding::Utf8;
    } else {
        // Latin-1: each byte one character, the line breaks where its bytes have them.
        f.encoding = Encoding::Latin1;
        scan = LineBreakScan();
        scan.add(p, 0, n);
    }
    f.lineBreak = scan.result();
    if (format)
        *format = f;
    const char breakChar = f.lineBreak == LineBreak::Lf   ? '\n'
                           : f.lineBreak == LineBreak::Cr ? '\r'
                                                          : 0;
    QByteArray converted;
    for (qsizetype at = from; at < n; at += kPiece) {
        const qsizetype len = qMin(kPiece, n - at);
        QByteArrayView piece(p + at, len);
        if (f.encoding == Encoding::Latin1) {
            converted = latin1ToUtf8(piece);
            piece = converted;
        }
        if (breakChar) {
            converted = expandBreaks(piece.toByteArray(), breakChar);
            piece = converted;
        }
        if (!sink(piece, at + len))
            return false;
    }
    return true;
}

void releasePages(const char* data, qsizetype bytes) {
    const auto page = quintptr(sysconf(_SC_PAGESIZE));
    const quintptr begin = (quintptr(data) + page - 1) & ~(page - 1);
    const quintptr end = (quintptr(data) + quintptr(bytes)) & ~(page - 1);
    if (end > begin)
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
}

QByteArray encodeModel(const QByteArray& model, const TextFormat& format) {
    QByteArray text = model;
    if (format.lineBreak != LineBreak::CrLf)
        text = collapseBreaks(model, format.lineBreak == LineBreak::Lf ? '\n' : '\r');
    switch (format.encoding) {
    case Encoding::Utf8:
        return withoutLoneSurrogates(text);
    case Encoding::Utf8Bom:
        return QByteArray("\xEF\xBB\xBF") + withoutLoneSurrogates(text);
    case Encoding::Utf16LE:
    case Encoding::Utf16BE: {
        QStringEncoder enc(format.encoding == Encoding::Utf16LE ? QStringEncoder::Utf16LE
                                                                : QStringEncoder::Utf16BE,
                           QStringEncoder::Flag::WriteBom);
        return enc(fromModelUtf8(text));
    }
    case Encoding::Latin1: {
        // A character Latin-1 cannot hold would be lost: such a document is written as UTF-8.
        QByteArray latin1;
        if (utf8ToLatin1(text, latin1))
            return latin1;
        return withoutLoneSurrogates(text);
    }
    }
    return text;
}

} // namespace ed
