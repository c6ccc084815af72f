#include "editor/LowerCaseSearch.h"

#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace ed {

namespace {

// Lower case of every UTF-16 unit outside surrogate pairs, and the way back: which units lower
// to a given one. Built once.
class LowerCaseTable {
public:
    static const LowerCaseTable& instance() {
        static const LowerCaseTable table;
        return table;
    }

    char16_t lower(char16_t u) const { return map_[u]; }

    // The units whose lower case is `lowered`: how many (at most four), 0 when there are more
    // or when `lowered` is half of a pair.
    int unitsLoweringTo(char16_t lowered, std::array<char16_t, 4>& out) const {
        if (QChar::isSurrogate(lowered))
            return 0;
        int count = 0;
        if (map_[lowered] == lowered)
            out[count++] = lowered;
        const auto range = std::equal_range(raised_.begin(), raised_.end(),
                                            std::pair<char16_t, char16_t>(lowered, 0), byLower);
        for (auto it = range.first; it != range.second; ++it) {
            if (count == 4)
                return 0;
            out[size_t(count++)] = it->second;
        }
        return count;
    }

private:
    LowerCaseTable() : map_(std::make_unique<char16_t[]>(0x10000)) {
        for (char32_t u = 0; u < 0x10000; ++u) {
            const char32_t l = QChar::isSurrogate(u) ? u : QChar::toLower(u);
            map_[u] = char16_t(QChar::requiresSurrogates(l) ? u : l);
        }
        // Capital I with dot is the one letter whose full lower case is two characters (i and a
        // combining dot), so the per-character mapping leaves it alone; its simple lower case is
        // a plain i.
        map_[0x130] = u'i';
        for (char32_t u = 0; u < 0x10000; ++u)
            if (map_[u] != u)
                raised_.emplace_back(map_[u], char16_t(u));
        std::sort(raised_.begin(), raised_.end());
    }

    static bool byLower(const std::pair<char16_t, char16_t>& a,
                        const std::pair<char16_t, char16_t>& b) {
        return a.first < b.first;
    }

    std::unique_ptr<char16_t[]> map_;
    std::vector<std::pair<char16_t, char16_t>> raised_; // (lower case, unit), sorted
};

char32_t lowerCodePoint(char32_t c) {
    const char32_t l = QChar::toLower(c);
    return QChar::requiresSurrogates(l) ? l : c; // a pair always lowers to a pair
}

// Unit i of the lower case of s (a pair is lowered as one character, a lone surrogate stays).
char16_t loweredUnit(const char16_t* s, qsizetype n, qsizetype i, const LowerCaseTable& table) {
    const char16_t u = s[i];
    if (!QChar::isSurrogate(u))
        return table.lower(u);
    if (QChar::isHighSurrogate(u) && i + 1 < n && QChar::isLowSurrogate(s[i + 1]))
        return QChar::highSurrogate(lowerCodePoint(QChar::surrogateToUcs4(u, s[i + 1])));
    if (QChar::isLowSurrogate(u) && i > 0 && QChar::isHighSurrogate(s[i - 1]))
        return QChar::lowSurrogate(lowerCodePoint(QChar::surrogateToUcs4(s[i - 1], u)));
    return u;
}

// One place of the needle whose units are looked for directly with the fast exact character
// search; chosen as the rarest in a sample of the text.
struct Anchor {
    qsizetype offset = -1; // in the needle; -1: none usable
    int kinds = 0;
    std::array<char16_t, 4> units{};
};

Anchor chooseAnchor(QStringView text, const QString& lowNeedle, qsizetype from,
                    const LowerCaseTable& table) {
    constexpr qsizetype kSample = 1 << 16;
    constexpr qsizetype kPlaces = 16;
    const QStringView sample = text.mid(from, std::min(kSample, text.size() - from));
    Anchor best;
    qsizetype bestCount = std::numeric_limits<qsizetype>::max();
    for (qsizetype p = 0; p < std::min(kPlaces, lowNeedle.size()); ++p) {
        Anchor a;
        a.offset = p;
        a.kinds = table.unitsLoweringTo(lowNeedle[p].unicode(), a.units);
        if (a.kinds == 0)
            continue;
        qsizetype count = 0;
        for (int j = 0; j < a.kinds; ++j)
            count += sample.count(QChar(a.units[size_t(j)]));
        if (count < bestCount) {
            best = a;
            bestCount = count;
            if (count == 0)
                break;
        }
    }
    return best;
}

} // namespace

QString lowerSameLength(QStringView text) {
    const LowerCaseTable& table = LowerCaseTable::instance();
    const auto* s = reinterpret_cast<const char16_t*>(text.data());
    QString out(text.size(), Qt::Uninitialized);
    auto* o = reinterpret_cast<char16_t*>(out.data());
    for (qsizetype i = 0; i < text.size(); ++i)
        o[i] = loweredUnit(s, text.size(), i, table);
    return out;
}

qsizetype indexOfIgnoringCase(QStringView text, QStringView needle, qsizetype from) {
    const qsizetype n = text.size();
    const qsizetype m = needle.size();
    from = std::max<qsizetype>(from, 0);
    if (m == 0)
        return from <= n ? from : -1;
    const qsizetype last = n - m; // the last place a match can start
    if (from > last)
        return -1;
    const LowerCaseTable& table = LowerCaseTable::instance();
    const QString lowNeedle = lowerSameLength(needle);
    const auto* nl = reinterpret_cast<const char16_t*>(lowNeedle.constData());
    const auto* s = reinterpret_cast<const char16_t*>(text.data());
    auto matchesAt = [&](qsizetype i) {
        for (qsizetype k = 0; k < m; ++k)
            if (loweredUnit(s, n, i + k, table) != nl[k])
                return false;
        return true;
    };

    const Anchor anchor = chooseAnchor(text, lowNeedle, from, table);
    if (anchor.offset < 0) {
        // Only surrogates or very common lower cases in the needle: compare at every place.
        for (qsizetype i = from; i <= last; ++i)
            if (matchesAt(i))
                return i;
        return -1;
    }

    // Jump from one anchor unit to the next, keeping the next place of each kind of unit.
    const qsizetype lo = from + anchor.offset;
    const qsizetype hi = last + anchor.offset;
    std::array<qsizetype, 4> next{};
    auto seek = [&](int j, qsizetype pos) {
        const qsizetype at = pos <= hi ? text.indexOf(QChar(anchor.units[size_t(j)]), pos) : -1;
        next[size_t(j)] = at < 0 || at > hi ? n : at;
    };
    for (int j = 0; j < anchor.kinds; ++j)
        seek(j, lo);
    while (true) {
        const qsizetype a = *std::min_element(next.begin(), next.begin() + anchor.kinds);
        if (a >= n)
            return -1;
        if (matchesAt(a - anchor.offset))
            return a - anchor.offset;
        for (int j = 0; j < anchor.kinds; ++j)
            if (next[size_t(j)] == a)
                seek(j, a + 1);
    }
}

} // namespace ed
