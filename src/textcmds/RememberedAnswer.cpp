#include "textcmds/RememberedAnswer.h"

namespace ed {

namespace {
const QString kSection = QStringLiteral("frmEdit");
}

std::optional<QString> askRemembered(CommandContext& ctx, const QString& prompt,
                                     const QString& title, const QString& key,
                                     const QString& fallback) {
    const QString answer =
        ctx.dialogs.inputBox(prompt, title, ctx.settings.get(kSection, key, fallback));
    if (answer.isEmpty())
        return std::nullopt;
    return answer;
}

void rememberAnswer(CommandContext& ctx, const QString& key, const QString& answer) {
    ctx.settings.save(kSection, key, answer);
}

std::optional<qint64> wholeNumber(const QString& text, qint64 min, qint64 max) {
    const QString t = text.trimmed();
    // Digits with an optional sign, nothing else (no "1e3", no "0x10", no "1.0").
    qsizetype i = t.startsWith(u'-') || t.startsWith(u'+') ? 1 : 0;
    if (i == t.size() || t.size() - i > 18)
        return std::nullopt;
    for (qsizetype k = i; k < t.size(); ++k)
        if (t[k] < u'0' || t[k] > u'9')
            return std::nullopt;
    const qint64 v = t.toLongLong();
    if (v < min || v > max)
        return std::nullopt;
    return v;
}

} // namespace ed
