#pragma once
// Finding a byte string in a longer one in time linear in the longer one, whatever the two hold
// (the two-way method with a skip table): a pattern of many repeated bytes on a text of the same
// bytes costs no more than any other. The pattern's tables are worked out once and the finder is
// reused for every search.

#include <QByteArray>
#include <QByteArrayView>

#include <array>

namespace ed {

class SubstringFinder {
public:
    explicit SubstringFinder(QByteArrayView pattern);

    // Offset of the first occurrence at or after `from` in `text`; -1 when there is none. An
    // empty pattern is found at `from` (when `from` is within the text).
    qsizetype indexIn(QByteArrayView text, qsizetype from = 0) const;

    qsizetype size() const { return pattern_.size(); }

private:
    QByteArray pattern_;
    qsizetype split_ = 0;               // start of the right half (the critical factorisation)
    qsizetype period_ = 1;              // period of the pattern, or the shift after a full match
    bool periodic_ = false;             // the left half repeats within the right half
    std::array<qsizetype, 256> skip_{}; // distance from a byte's last place to the pattern's end
};

} // namespace ed
