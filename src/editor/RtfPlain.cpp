#include "editor/RtfPlain.h"

#include "editor/RtfWriter.h"

#include <QHash>

namespace ed {

size_t qHash(const RtfCharFormat& f, size_t seed) noexcept {
    return qHashMulti(seed, f.family, f.pointSize, f.bold, f.italic, f.underline,
                      f.color ? qint64(*f.color) : qint64(-1));
}

RtfCharFormat rtfFormatOf(const FontSpec& font) {
    RtfCharFormat f;
    f.family = font.name;
    if (font.size > 0)
        f.pointSize = font.size;
    f.bold = font.bold;
    f.italic = font.italic;
    return f;
}

RtfText rtfTextOf(const RtfContent& content) {
    RtfText out;
    QHash<RtfCharFormat, int> indexOf;
    int last = -1; // the format of the text so far, which a line break takes
    auto append = [&](QByteArrayView bytes, int format) {
        out.text += bytes;
        if (!out.runs.isEmpty() && out.runs.last().format == format)
            out.runs.last().bytes += bytes.size();
        else
            out.runs.append(FormatRun{bytes.size(), format});
    };
    auto lineBreak = [&] { append("\r\n", last); };
    for (qsizetype p = 0; p < content.paragraphs.size(); ++p) {
        if (p > 0)
            lineBreak();
        for (const RtfRun& run : content.paragraphs[p].runs) {
            auto it = indexOf.constFind(run.format);
            if (it == indexOf.constEnd()) {
                it = indexOf.insert(run.format, int(out.formats.size()));
                out.formats.append(run.format);
            }
            last = *it;
            qsizetype from = 0;
            for (;;) {
                const qsizetype sep = run.text.indexOf(QChar::LineSeparator, from);
                const QStringView piece =
                    QStringView(run.text).sliced(from, (sep < 0 ? run.text.size() : sep) - from);
                if (!piece.isEmpty())
                    append(toModelUtf8(piece), last);
                if (sep < 0)
                    break;
                lineBreak();
                from = sep + 1;
            }
        }
    }
    return out;
}

QByteArray plainTextToRtf(QByteArrayView modelUtf8, const FontSpec& font) {
    std::array<RtfCharFormat, 256> formatOf;
    formatOf[0] = rtfFormatOf(font);
    return writeRtf(modelUtf8, {}, formatOf);
}

} // namespace ed
