#pragma once
// The three patterns the text commands share:
//  1. promptRemembered: ask with the trimmed selection (else the remembered answer) as default,
//     end silently on an empty answer, remember a non-empty one as typed;
//  2. mapModelLines: the whole text split at CR LF, each line handled in order, every produced
//     line followed by CR LF, the result assigned in one step;
//  3. selectionOrWholeUtf8: transform the selection in place, or the whole text when there is
//     none.
// All of them work on the document's bytes (UTF-8, CR LF), as every text command does.

#include "app/Command.h"
#include "util/ByteWriter.h"
#include "util/ModelText.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace ed {

// Pattern 1. Returns the answer, or nothing when the command should end silently.
std::optional<QString> promptRemembered(CommandContext& ctx, const QString& prompt,
                                        const QString& title, const QString& key,
                                        const QString& section = QStringLiteral("frmEdit"));

// A range of bytes of the text.
struct ByteSpan {
    qsizetype start = 0;
    qsizetype length = 0;
};
// The edit control's selection as bytes of `text` (its utf8()).
ByteSpan selectionBytes(const EditControl& edit, QByteArrayView text);

// Pattern 2 on bytes: `perLine(line, out)` writes what it produces for each line (each produced
// line followed by CR LF) into `out`, which starts with room for `capacity` bytes.
template <class F> QByteArray mapModelLines(QByteArrayView text, F&& perLine, qsizetype capacity) {
    ByteWriter out(capacity);
    forEachModelLine(text, [&](QByteArrayView line) { perLine(line, out); });
    return std::move(out).finish();
}

// Pattern 3 on bytes: `convert(QByteArrayView) -> QByteArray`.
template <class F>
void selectionOrWholeUtf8(CommandContext& ctx, bool present, F&& convert,
                          bool restoreCaret = true) {
    const QByteArray t = ctx.edit.utf8();
    if (present) {
        const int caret = ctx.edit.selStart();
        const ByteSpan sel = selectionBytes(ctx.edit, t);
        const QByteArray converted = convert(QByteArrayView(t).sliced(sel.start, sel.length));
        QByteArray result;
        result.reserve(t.size() - sel.length + converted.size());
        result.append(QByteArrayView(t).first(sel.start))
            .append(converted)
            .append(QByteArrayView(t).sliced(sel.start + sel.length));
        ctx.edit.setUtf8(result);
        if (restoreCaret) {
            ctx.edit.setSelStart(caret);
            ctx.edit.setSelLength(0);
        }
    } else {
        ctx.edit.setUtf8(convert(QByteArrayView(t)));
    }
}

// Leading and trailing spaces (only 0x20) removed.
QByteArrayView trimSpaces(QByteArrayView s);
bool isBlank(QByteArrayView s);

} // namespace ed
