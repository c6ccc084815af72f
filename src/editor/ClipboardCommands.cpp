#include "editor/ClipboardCommands.h"

#include "app/Trap.h"

#include <limits>

namespace ed {

namespace {

const char* const kModule = "frmEdit";
const QString kCrLf = QStringLiteral("\r\n");

// Sums and differences of positions are 32-bit as the control's are; a result that does not fit
// is a run-time error before anything is changed.
qint32 add32(qint64 a, qint64 b) {
    const qint64 r = a + b;
    if (r > std::numeric_limits<qint32>::max() || r < std::numeric_limits<qint32>::min())
        throw RuntimeError("Overflow");
    return qint32(r);
}

// The first `n` characters; a negative count is an invalid call.
QStringView leftOf(QStringView s, qint32 n) {
    if (n < 0)
        throw RuntimeError("Invalid procedure call or argument");
    return s.left(n);
}

// The last `n` characters; a negative count is an invalid call.
QStringView rightOf(QStringView s, qint32 n) {
    if (n < 0)
        throw RuntimeError("Invalid procedure call or argument");
    return n >= s.size() ? s : s.right(n);
}

// The document with the `length` characters at `start` replaced by `middle`.
QString spliced(const QString& doc, qint32 start, qint32 length, QStringView middle) {
    const qint32 tail = add32(doc.size(), -qint64(add32(start, length)));
    const QStringView head = leftOf(doc, start);
    const QStringView rest = rightOf(doc, tail);
    QString out;
    out.reserve(head.size() + middle.size() + rest.size());
    out.append(head).append(middle).append(rest);
    return out;
}

void putOnClipboard(CommandContext& ctx, const QString& text) {
    ctx.clipboard.clear();
    ctx.clipboard.setText(text);
}

} // namespace

void mnuCopy_Click(CommandContext& ctx) {
    putOnClipboard(ctx, ctx.edit.selText());
}

void mnuCut_Click(CommandContext& ctx) {
    const qint32 start = ctx.edit.selStart();
    const qint32 length = ctx.edit.selLength();
    const QString doc = ctx.edit.text();
    if (start < 0 || length < 0)
        throw RuntimeError("Invalid procedure call or argument");
    putOnClipboard(ctx, QStringView(doc).mid(start, length).toString());
    ctx.edit.setText(spliced(doc, start, length, {}));
    ctx.edit.setSelStart(start);
    ctx.edit.setSelLength(0);
}

void mnuPaste_Click(CommandContext& ctx) {
    const QString doc = ctx.edit.text();
    const qint32 start = ctx.edit.selStart();
    const qint32 length = ctx.edit.selLength();
    QString clip = ctx.clipboard.text();
    // One character is compared with the two of a line break, so this never drops anything and
    // a trailing line break is pasted with the rest. Kept as the command has always behaved.
    if (QStringView(clip).right(1) == QStringView(kCrLf))
        clip.chop(1);
    ctx.edit.setText(spliced(doc, start, length, clip));
    ctx.edit.setSelStart(start); // before the pasted text
    ctx.edit.setSelLength(0);
}

void mnuSelectAll_Click(CommandContext& ctx) {
    ctx.edit.setSelStart(0);
    ctx.edit.setSelLength(ctx.edit.textLength());
}

void mnuLoadClipBoardText_Click(CommandContext& ctx) {
    ctx.edit.setText(ctx.clipboard.text());
}

void InsertText(CommandContext& ctx, const QString& text) {
    trapped(ctx.log, kModule, QStringLiteral("Sub InsertText"), [&] {
        UndoInsert(ctx, ctx.edit.text());
        const qint32 caret = ctx.edit.selStart();
        const QString doc = ctx.edit.text();
        QString result;
        if (caret >= 1) {
            result = spliced(doc, caret, 0, text);
        } else {
            result.reserve(text.size() + 2 + doc.size());
            result.append(text).append(kCrLf).append(doc);
        }
        ctx.edit.setText(result);
    });
}

void UndoInsert(CommandContext& ctx, const QString& text) {
    trapped(ctx.log, kModule, QStringLiteral("Sub UndoInsert"), [&] {
        if (!text.isEmpty())
            ctx.form.UndoText = text;
        else
            ctx.edit.setText(ctx.form.UndoText);
    });
}

} // namespace ed
