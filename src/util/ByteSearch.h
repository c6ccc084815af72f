#pragma once
// Finding a run of bytes in a longer one, linear in both whatever they hold: sixteen places are
// tested at once for three bytes of the pattern and only the places that pass are compared in
// full; when those comparisons cost more than the scan itself (repetitive text, a repetitive
// pattern), the search goes on with Knuth-Morris-Pratt, which looks at every byte a bounded
// number of times.

#include <QByteArray>
#include <QByteArrayView>

#include <cstring>
#include <vector>

namespace ed {

class ByteSearch {
public:
    explicit ByteSearch(QByteArrayView pattern);

    QByteArrayView pattern() const { return pattern_; }

    // The first place at or after `from` where the pattern starts in `text`, or -1. An empty
    // pattern is found at `from` (when `from` lies within the text).
    qsizetype find(QByteArrayView text, qsizetype from = 0) const;

    // The place where the n-th occurrence (n >= 1) starts, occurrences overlapping the one
    // before them counted too, or -1 when the text holds fewer than n. The pattern must not be
    // empty.
    qsizetype nth(QByteArrayView text, qint64 n) const;

private:
    qsizetype findFromKmp(QByteArrayView text, qsizetype from) const;
    const std::vector<qsizetype>& borders() const;

    QByteArray pattern_;
    // Longest proper border of each prefix of the pattern, worked out on first use.
    mutable std::vector<qsizetype> border_;
};

// For a one-off search: glibc's memmem is a two-way search, linear in both.
// The first place of `needle` (not empty) in `hay` at or after `from`, or -1.
inline qsizetype indexOfBytes(QByteArrayView hay, QByteArrayView needle, qsizetype from) {
    if (from < 0 || from > hay.size() - needle.size())
        return -1;
    const size_t left = size_t(hay.size() - from);
    const void* hit = needle.size() == 1
                          ? std::memchr(hay.data() + from, needle[0], left)
                          : memmem(hay.data() + from, left, needle.data(), size_t(needle.size()));
    return hit ? static_cast<const char*>(hit) - hay.data() : -1;
}

} // namespace ed
