#include "textcmds/LineHits.h"

#include <cstring>

namespace ed {

namespace {

// Lower-cased blocks are about this long (whole lines, so a longer line makes a longer block).
constexpr qsizetype kBlock = 64 * 1024;

// The CR of the first CR LF of `v` whose CR stands at or after `from`; v.size() when none.
qsizetype breakFrom(QByteArrayView v, qsizetype from) {
    const char* p = v.data();
    const qsizetype n = v.size();
    for (qsizetype i = from + 1; i < n;) {
        const void* lf = std::memchr(p + i, '\n', size_t(n - i));
        if (!lf)
            break;
        i = static_cast<const char*>(lf) - p;
        if (p[i - 1] == '\r')
            return i - 1;
        ++i;
    }
    return n;
}

// The start of the line of `v` that holds `at`, looking back no further than `floor` (a line
// start).
qsizetype lineStartOf(QByteArrayView v, qsizetype at, qsizetype floor) {
    for (qsizetype i = at - 1; i > floor; --i)
        if (v[i] == '\n' && v[i - 1] == '\r')
            return i + 1;
    return floor;
}

// The byte length of the UTF-8 sequence that starts with `lead`.
qsizetype sequenceLength(char lead) {
    const auto c = uchar(lead);
    return c < 0xC0 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
}

} // namespace

LineHits::LineHits(QByteArrayView text, const ByteSearch& search, Utf8Lowering* lowering)
    : text_(text), search_(search), lowering_(lowering) {
    none_ = search.pattern().contains(QByteArrayView("\r\n"));
}

bool LineHits::loadBlock() {
    const qsizetype n = text_.size();
    if (blockEnd_ >= n)
        return false;
    blockStart_ = blockEnd_ < 0 ? 0 : blockEnd_ + 2;
    // Without lowering the text is searched as it stands, all in one.
    blockEnd_ = lowering_ ? breakFrom(text_, qMin(n, blockStart_ + kBlock)) : n;
    const QByteArrayView block = text_.sliced(blockStart_, blockEnd_ - blockStart_);
    if (lowering_) {
        low_ = (*lowering_)(block);
        sameOffsets_ = lowering_->keptLengths();
    } else {
        low_ = block;
        sameOffsets_ = true;
    }
    from_ = floor_ = lowLine_ = blockLine_ = 0;
    return true;
}

LineHit LineHits::mapBack(qsizetype lineStart, qsizetype lineEnd, qsizetype at) {
    if (sameOffsets_)
        return {blockStart_ + lineStart, blockStart_ + lineEnd, blockStart_ + at};
    // The lines between the last line mapped and this one are counted in the lower case and
    // skipped as many in the block.
    const QByteArrayView block = text_.sliced(blockStart_, blockEnd_ - blockStart_);
    while (lowLine_ < lineStart) {
        lowLine_ = breakFrom(low_, lowLine_) + 2;
        blockLine_ = breakFrom(block, blockLine_) + 2;
    }
    // The pattern starts after as many characters in the block's line as in the lower case.
    qsizetype chars = 0;
    for (qsizetype k = lineStart; k < at; ++k)
        chars += (uchar(low_[k]) & 0xC0) != 0x80;
    qsizetype place = blockLine_;
    for (; chars > 0; --chars)
        place += sequenceLength(block[place]);
    const qsizetype blockLineEnd = breakFrom(block, blockLine_);
    const LineHit hit{blockStart_ + blockLine_, blockStart_ + blockLineEnd, blockStart_ + place};
    if (lineEnd < low_.size()) {
        lowLine_ = lineEnd + 2;
        blockLine_ = blockLineEnd + 2;
    }
    return hit;
}

bool LineHits::next(LineHit& hit) {
    if (none_)
        return false;
    const QByteArrayView pattern = search_.pattern();
    const qsizetype m = pattern.size();
    const bool startsWithLf = m > 0 && pattern.front() == '\n';
    const bool endsWithCr = m > 0 && pattern.back() == '\r';
    while (true) {
        if (blockEnd_ < 0 && !loadBlock())
            return false;
        const qsizetype at = search_.find(low_, from_);
        if (at < 0) {
            if (!loadBlock())
                return false;
            continue;
        }
        // A find that takes in half of a line break is in no line.
        if ((startsWithLf && at > 0 && low_[at - 1] == '\r') ||
            (endsWithCr && at + m < low_.size() && low_[at + m] == '\n')) {
            from_ = at + 1;
            continue;
        }
        const qsizetype lineStart = lineStartOf(low_, at, floor_);
        const qsizetype lineEnd = breakFrom(low_, at + m);
        hit = mapBack(lineStart, lineEnd, at);
        from_ = floor_ = lineEnd + 2;
        return true;
    }
}

} // namespace ed
