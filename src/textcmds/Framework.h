#pragma once
// The three patterns the text commands share:
//  1. promptRemembered: ask with the trimmed selection (else the remembered answer) as default,
//     end silently on an empty answer, remember a non-empty one as typed;
//  2. mapLines: the whole text split at CR LF, each line handled in order, every produced line
//     followed by CR LF, the result assigned in one step;
//  3. selectionOrWhole: transform the selection in place, or the whole text when there is none.

#include "app/Command.h"
#include "textcmds/LineFiltersSupport.h"
#include "util/ByteWriter.h"
#include "util/ModelText.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace ed {

inline const QString kCrLf = QStringLiteral("\r\n");

// Pattern 1. Returns the answer, or nothing when the command should end silently.
std::optional<QString> promptRemembered(CommandContext& ctx, const QString& prompt,
                                        const QString& title, const QString& key,
                                        const QString& section = QStringLiteral("frmEdit"));

// Calls f(line) for every piece of `text` split at CR LF, the last (possibly empty) one included.
template <class F> void forEachLine(QStringView text, F&& f) {
    // A CR LF ends a line; a lone LF or CR is an ordinary character of the line.
    forEachCrLfLine(text, std::forward<F>(f));
}

// Number of pieces `forEachLine` yields.
qsizetype countLines(QStringView text);

// Pattern 2: builds the output of `perLine(line, out)` over all lines. `perLine` appends what it
// produces (each line followed by CR LF) to `out`.
template <class F> QString mapLines(QStringView text, F&& perLine, qsizetype reserveExtra = 0) {
    QString out;
    out.reserve(text.size() + reserveExtra + 2);
    forEachLine(text, [&](QStringView line) { perLine(line, out); });
    return out;
}

// Pattern 3. `present` is the command's own selection test; the caret goes back to the old
// selection start with nothing selected when `restoreCaret` is set.
template <class F>
void selectionOrWhole(CommandContext& ctx, bool present, F&& convert, bool restoreCaret = true) {
    if (present) {
        const QString t = ctx.edit.text();
        const qsizetype s = qBound(qsizetype(0), qsizetype(ctx.edit.selStart()), t.size());
        const qsizetype l = qBound(qsizetype(0), qsizetype(ctx.edit.selLength()), t.size() - s);
        const QString converted = convert(QStringView(t).mid(s, l));
        QString result;
        result.reserve(t.size() - l + converted.size());
        result.append(QStringView(t).left(s)).append(converted).append(QStringView(t).mid(s + l));
        ctx.edit.setText(result);
        if (restoreCaret) {
            ctx.edit.setSelStart(int(s));
            ctx.edit.setSelLength(0);
        }
    } else {
        ctx.edit.setText(convert(QStringView(ctx.edit.text())));
    }
}

// --- The same patterns on the model's bytes (UTF-8, CR LF): what every command is moving to. ---

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

// Leading and trailing space characters (only U+0020) removed.
QStringView trimSpaces(QStringView s);
bool isBlank(QStringView s);

} // namespace ed
