#include "textcmds/CaseMapping.h"

namespace ed {

QStringView CaseMapping::work(char32_t cp) {
    const char32_t simple = upper_ ? QChar::toUpper(cp) : QChar::toLower(cp);
    const QChar::Category cat = QChar::category(cp);
    const bool mayExpand =
        (simple == cp && cat == (upper_ ? QChar::Letter_Lowercase : QChar::Letter_Uppercase)) ||
        cat == QChar::Letter_Titlecase;
    if (mayExpand) {
        auto found = expanded_.constFind(cp);
        if (found == expanded_.cend()) {
            const QString one = QString::fromUcs4(&cp, 1);
            found = expanded_.insert(cp, upper_ ? one.toUpper() : one.toLower());
        }
        return *found;
    }
    if (QChar::requiresSurrogates(simple)) {
        simple_[0] = QChar::highSurrogate(simple);
        simple_[1] = QChar::lowSurrogate(simple);
        return QStringView(simple_, 2);
    }
    simple_[0] = char16_t(simple);
    return QStringView(simple_, 1);
}

} // namespace ed
