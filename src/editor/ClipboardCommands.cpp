#include "editor/ClipboardCommands.h"

#include "app/Trap.h"
#include "util/ModelText.h"

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

// The `length` characters (UTF-16 units) at `start` of the document's bytes, as byte offsets.
// Both counts must lie within the text, as the first and last characters of a splice must:
// anything else is an invalid call.
struct Cut {
    qsizetype from = 0;
    qsizetype to = 0;
};
Cut unitsToBytes(QByteArrayView doc, qint32 start, qint32 length) {
    const qint32 tail = add32(utf16Length(doc), -qint64(add32(start, length)));
    if (start < 0 || length < 0 || tail < 0)
        throw RuntimeError("Invalid procedure call or argument");
    Cut c;
    c.from = byteOffsetOf(doc, start);
    c.to = c.from + byteOffsetOf(doc.sliced(c.from), length);
    return c;
}

// The document with the bytes of `cut` replaced by `middle`.
QByteArray spliced(QByteArrayView doc, Cut cut, QByteArrayView middle) {
    QByteArray out;
    out.reserve(doc.size() - (cut.to - cut.from) + middle.size());
    out.append(doc.first(cut.from)).append(middle).append(doc.sliced(cut.to));
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
    const QByteArray doc = ctx.edit.utf8();
    const Cut cut = unitsToBytes(doc, start, length);
    putOnClipboard(ctx, fromModelUtf8(QByteArrayView(doc).sliced(cut.from, cut.to - cut.from)));
    ctx.edit.setUtf8(spliced(doc, cut, {}));
    ctx.edit.setSelStart(start);
    ctx.edit.setSelLength(0);
}

void mnuPaste_Click(CommandContext& ctx) {
    const QByteArray doc = ctx.edit.utf8();
    const qint32 start = ctx.edit.selStart();
    const qint32 length = ctx.edit.selLength();
    QString clip = ctx.clipboard.text();
    // One character is compared with the two of a line break, so this never drops anything and
    // a trailing line break is pasted with the rest. Kept as the command has always behaved.
    if (QStringView(clip).right(1) == QStringView(kCrLf))
        clip.chop(1);
    ctx.edit.setUtf8(spliced(doc, unitsToBytes(doc, start, length), toModelUtf8(clip)));
    ctx.edit.setSelStart(start); // before the pasted text
    ctx.edit.setSelLength(0);
}

void mnuSelectAll_Click(CommandContext& ctx) {
    ctx.edit.setSelStart(0);
    ctx.edit.setSelLength(ctx.edit.textLength());
}

void mnuLoadClipBoardText_Click(CommandContext& ctx) {
    ctx.edit.setUtf8(toModelUtf8(ctx.clipboard.text()));
}

void InsertText(CommandContext& ctx, const QString& text) {
    trapped(ctx.log, kModule, QStringLiteral("Sub InsertText"), [&] {
        UndoInsert(ctx, ctx.edit.utf8());
        const qint32 caret = ctx.edit.selStart();
        const QByteArray doc = ctx.edit.utf8();
        const QByteArray insert = toModelUtf8(text);
        QByteArray result;
        if (caret >= 1) {
            result = spliced(doc, unitsToBytes(doc, caret, 0), insert);
        } else {
            result.reserve(insert.size() + 2 + doc.size());
            result.append(insert).append("\r\n").append(doc);
        }
        ctx.edit.setUtf8(result);
    });
}

void UndoInsert(CommandContext& ctx, const QByteArray& text) {
    trapped(ctx.log, kModule, QStringLiteral("Sub UndoInsert"), [&] {
        if (!text.isEmpty())
            ctx.form.UndoText = text;
        else
            ctx.edit.setUtf8(ctx.form.UndoText);
    });
}

} // namespace ed
