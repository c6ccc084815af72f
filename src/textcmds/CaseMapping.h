#pragma once
// The full upper- or lower-case mapping of one character, exactly as QString::toUpper or toLower
// converts that character: almost every character maps to one character by the simple mapping;
// the few whose full mapping is longer (German sharp s to "SS", dotted capital I to "i" and a
// combining dot, ligatures, ...) are looked up once each.

#include <QHash>
#include <QString>
#include <QStringView>

#include <algorithm>
#include <iterator>

namespace ed {

class CaseMapping {
public:
    explicit CaseMapping(bool upper) : upper_(upper) {
        for (Known& k : known_)
            k.size = 0;
    }

    // The mapping of `cp`. The view stays valid until the next call.
    QStringView map(char32_t cp) {
        if (cp < kKnown) {
            // The letters of most alphabets: worked out once each.
            Known& k = known_[cp];
            if (k.size == 0) {
                const QStringView m = work(cp);
                if (m.size() > qsizetype(std::size(k.units)))
                    return m;
                std::copy(m.utf16(), m.utf16() + m.size(), k.units);
                k.size = quint8(m.size());
            }
            return QStringView(k.units, k.size);
        }
        return work(cp);
    }

private:
    static constexpr char32_t kKnown = 0x800;
    struct Known {
        quint8 size; // 0 until worked out
        char16_t units[3];
    };

    QStringView work(char32_t cp);

    bool upper_;
    char16_t simple_[2] = {};
    QHash<char32_t, QString> expanded_;
    Known known_[kKnown];
};

} // namespace ed
