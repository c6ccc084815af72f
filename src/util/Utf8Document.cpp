#include "util/Utf8Document.h"

#include "util/LineBreakScan.h"
#include "util/Utf8.h"


namespace ed {


std::optional<Utf8Document> Utf8Document::fromFile(const QByteArray& bytes, bool findLineBreak) {
    const char* p = bytes.constData();
    qsizetype n = bytes.size();
    const bool bom = n >= 3 && uchar(p[0]) == 0xEF && uchar(p[1]) == 0xBB && uchar(p[2]) == 0xBF;
    if (bom) {
        p += 3;
        n -= 3;
    }
    // Checked and scanned for line breaks a piece at a time, each piece once while it is in the
    // cache. A piece ends before an ASCII byte, so no sequence spans two.
    constexpr qsizetype kPiece = 64 * 1024;
    LineBreakScan breaks;
    for (qsizetype from = 0; from < n;) {
        qsizetype to = qMin(n, from + kPiece);
        while (to < n && uchar(p[to]) >= 0x80)
            ++to;
        if (!isValidUtf8(p + from, to - from))
            return std::nullopt;
        if (findLineBreak)
            breaks.add(p, from, to);
        from = to;
    }
    return Utf8Document(QByteArray::fromRawData(p, n), bom,
                        findLineBreak ? std::optional(breaks.result()) : std::nullopt);
}

LineBreak Utf8Document::lineBreak() const {
    if (!lineBreak_) {
        LineBreakScan breaks;
        breaks.add(text_.constData(), 0, text_.size());
        lineBreak_ = breaks.result();
    }
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
