#pragma once
// Whole-document commands done on the UTF-8 bytes of a file. Each gives exactly the bytes that
// decoding the file into the model, running the command there and encoding the result give.

#include "util/ByteWriter.h"
#include "util/Utf8Document.h"

#include <QByteArray>
#include <QString>

namespace ed {

// The lines of the document for which keep(line) is true, each followed by the document's line
// break; runs of kept lines are copied in one piece.
template <class Keep> QByteArray keepLinesUtf8(const Utf8Document& doc, Keep&& keep) {
    const QByteArrayView text = doc.text();
    const QByteArrayView br = doc.lineBreakBytes();
    ByteWriter out(text.size() + br.size());
    qsizetype runStart = 0; // the first line not yet written or dropped
    forEachUtf8Line(text, doc.lineBreak(), [&](QByteArrayView line) {
        if (!keep(line)) {
            const qsizetype start = line.data() - text.data();
            out.append(text.sliced(runStart, start - runStart));
            runStart = start + line.size() + br.size();
        }
    });
    // The lines after the last one dropped; the last piece of the text gets a break too.
    if (runStart <= text.size()) {
        out.append(text.sliced(runStart));
        out.append(br);
    }
    return std::move(out).finish();
}

// The lines of the document whose lower-cased form contains the lower-cased `answer` (when
// `keepContaining`), or the others, each followed by the document's line break.
QByteArray filterLinesUtf8(const Utf8Document& doc, const QString& answer, bool keepContaining);

} // namespace ed
