#include "textcmds/Framework.h"

namespace ed {

std::optional<QString> promptRemembered(CommandContext& ctx, const QString& prompt,
                                        const QString& title, const QString& key,
                                        const QString& section) {
    // The selection without the spaces at its ends (only U+0020).
    const QString sel = ctx.edit.selText();
    qsizetype b = 0, e = sel.size();
    while (b < e && sel[b] == u' ')
        ++b;
    while (e > b && sel[e - 1] == u' ')
        --e;
    QString def = sel.mid(b, e - b);
    if (def.isEmpty())
        def = ctx.settings.get(section, key, QString());
    const QString answer = ctx.dialogs.inputBox(prompt, title, def);
    if (answer.isEmpty())
        return std::nullopt;
    ctx.settings.save(section, key, answer);
    return answer;
}

ByteSpan selectionBytes(const EditControl& edit, QByteArrayView text) {
    const qsizetype start = byteOffsetOf(text, edit.selStart());
    const qsizetype rest = text.sliced(start).size();
    const qsizetype length = qMin(rest, byteOffsetOf(text.sliced(start), edit.selLength()));
    return {start, length};
}

QByteArrayView trimSpaces(QByteArrayView s) {
    qsizetype b = 0, e = s.size();
    while (b < e && s[b] == ' ')
        ++b;
    while (e > b && s[e - 1] == ' ')
        --e;
    return s.sliced(b, e - b);
}

bool isBlank(QByteArrayView s) {
    return trimSpaces(s).isEmpty();
}

} // namespace ed
