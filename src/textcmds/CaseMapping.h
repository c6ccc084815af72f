#pragma once
// The full upper- or lower-case mapping of one character, exactly as QString::toUpper or toLower
// converts that character: almost every character maps to one character by the simple mapping;
// the few whose full mapping is longer (German sharp s to "SS", dotted capital I to "i" and a
// combining dot, ligatures, ...) are looked up once each.

#include <QHash>
#include <QString>
#include <QStringView>

namespace ed {

class CaseMapping {
public:
    explicit CaseMapping(bool upper) : upper_(upper) {}

    // The mapping of `cp`. The view stays valid until the next call.
    QStringView map(char32_t cp);

private:
    bool upper_;
    char16_t simple_[2] = {};
    QHash<char32_t, QString> expanded_;
};

} // namespace ed
