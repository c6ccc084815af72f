#include "textcmds/Framework.h"

namespace ed {

std::optional<QString> promptRemembered(CommandContext& ctx, const QString& prompt,
                                        const QString& title, const QString& key,
                                        const QString& section) {
    QString def = trimSpaces(ctx.edit.selText()).toString();
    if (def.isEmpty())
        def = ctx.settings.get(section, key, QString());
    const QString answer = ctx.dialogs.inputBox(prompt, title, def);
    if (answer.isEmpty())
        return std::nullopt;
    ctx.settings.save(section, key, answer);
    return answer;
}

qsizetype countLines(QStringView text) {
    qsizetype n = 1;
    qsizetype from = 0;
    while (true) {
        const qsizetype lf = text.indexOf(u'\n', from);
        if (lf < 0)
            break;
        if (lf > 0 && text[lf - 1] == u'\r')
            ++n;
        from = lf + 1;
    }
    return n;
}

QStringView trimSpaces(QStringView s) {
    qsizetype b = 0, e = s.size();
    while (b < e && s[b] == u' ')
        ++b;
    while (e > b && s[e - 1] == u' ')
        --e;
    return s.mid(b, e - b);
}

bool isBlank(QStringView s) {
    return trimSpaces(s).isEmpty();
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
