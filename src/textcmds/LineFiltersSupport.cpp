#include "textcmds/LineFiltersSupport.h"

#include "app/Trap.h"

#include <limits>

namespace ed {

namespace {

// The number is written in ASCII alone, so it reads the same from UTF-16 and from UTF-8.
inline int unitOf(QChar c) {
    return c.unicode();
}
inline int unitOf(char c) {
    return uchar(c);
}

template <class View> std::optional<qint32> roundedInt32Of(View s) {
    auto at = [&](qsizetype k) { return unitOf(s[k]); };
    auto isSpace = [](int c) { return c == ' ' || c == '\t'; };
    qsizetype b = 0, e = s.size();
    while (b < e && isSpace(at(b)))
        ++b;
    while (e > b && isSpace(at(e - 1)))
        --e;
    bool negative = false;
    if (b < e && (at(b) == '+' || at(b) == '-')) {
        negative = at(b) == '-';
        ++b;
    }
    // Whole part, saturated well above the 32-bit range so that a long run of digits cannot wrap.
    constexpr quint64 kSaturated = quint64(1) << 40;
    quint64 magnitude = 0;
    qsizetype digits = 0;
    while (b < e && at(b) >= '0' && at(b) <= '9') {
        magnitude = qMin(kSaturated, magnitude * 10 + quint64(at(b) - '0'));
        ++digits;
        ++b;
    }
    int firstFraction = 0;    // the first digit after the point
    bool restNonZero = false; // any later fraction digit other than 0
    if (b < e && at(b) == '.') {
        ++b;
        for (qsizetype k = 0; b < e && at(b) >= '0' && at(b) <= '9'; ++k, ++b, ++digits) {
            const int d = at(b) - '0';
            if (k == 0)
                firstFraction = d;
            else if (d != 0)
                restNonZero = true;
        }
    }
    if (b != e || digits == 0)
        return std::nullopt;

    const bool up = firstFraction > 5 || (firstFraction == 5 && (restNonZero || magnitude % 2));
    if (up)
        ++magnitude;
    const qint64 value = negative ? -qint64(magnitude) : qint64(magnitude);
    if (value < std::numeric_limits<qint32>::min() || value > std::numeric_limits<qint32>::max())
        throw RuntimeError("Overflow");
    return qint32(value);
}

} // namespace

std::optional<qint32> roundedInt32(QStringView s) {
    return roundedInt32Of(s);
}

std::optional<qint32> roundedInt32(QByteArrayView s) {
    return roundedInt32Of(s);
}

bool LowerCaser::lowersDifferently(char16_t c) {
    if (!checked_[c]) {
        checked_[c] = true;
        const QString full = QString(QChar(c)).toLower();
        different_[c] = full.size() != 1 || full[0].unicode() != QChar::toLower(char32_t(c));
    }
    return different_[c];
}

bool LowerCaser::lowerInto(QStringView s, char16_t* d) {
    const qsizetype n = s.size();
    const char16_t* p = s.utf16();
    // One character outside ASCII: right unless it is half of a pair or lowers into more than one.
    auto one = [&](qsizetype i) {
        const char16_t c = p[i];
        if (c < 0x80) {
            d[i] = char16_t(c - u'A') < 26 ? char16_t(c + 32) : c;
            return true;
        }
        if (QChar::isSurrogate(c) || lowersDifferently(c))
            return false;
        d[i] = char16_t(QChar::toLower(char32_t(c)));
        return true;
    };
    qsizetype i = 0;
#ifdef __SSE2__
    // Eight ASCII characters at a time: 'A'..'Z' get 0x20 added. A group with anything else in
    // it goes one character at a time.
    const __m128i nonAscii = _mm_set1_epi16(short(0xFF80));
    const __m128i beforeA = _mm_set1_epi16(u'A' - 1);
    const __m128i afterZ = _mm_set1_epi16(u'Z' + 1);
    const __m128i caseBit = _mm_set1_epi16(0x20);
    for (; i + 8 <= n; i += 8) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(v, nonAscii), _mm_setzero_si128())) !=
            0xFFFF) {
            for (qsizetype k = i; k < i + 8; ++k)
                if (!one(k))
                    return false;
            continue;
        }
        const __m128i upper =
            _mm_and_si128(_mm_cmpgt_epi16(v, beforeA), _mm_cmplt_epi16(v, afterZ));
        v = _mm_add_epi16(v, _mm_and_si128(upper, caseBit));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), v);
    }
#endif
    for (; i < n; ++i)
        if (!one(i))
            return false;
    return true;
}

QStringView LowerCaser::operator()(QStringView s) {
    const qsizetype n = s.size();
    if (buffer_.size() < n)
        buffer_.resize(n);
    auto* d = reinterpret_cast<char16_t*>(buffer_.data());
    if (lowerInto(s, d))
        return QStringView(d, n);
    // The whole line goes through the full conversion, in place in the buffer.
    buffer_.resize(n);
    d = reinterpret_cast<char16_t*>(buffer_.data());
    std::memcpy(d, s.utf16(), size_t(n) * sizeof(char16_t));
    buffer_ = std::move(buffer_).toLower();
    return QStringView(buffer_);
}

std::vector<QStringView> splitCrLfLines(QStringView text) {
    std::vector<QStringView> lines;
    lines.reserve(size_t(text.size() / 16 + 1)); // address space only until it is written
    adviseHugePages(lines.data(), lines.capacity() * sizeof(QStringView));
    forEachCrLfLine(text, [&](QStringView line) { lines.push_back(line); });
    return lines;
}

void forEachLineRun(QStringView text, const QStringMatcher& matcher, LowerCaser& lower,
                    const std::function<void(QStringView, bool)>& f) {
    constexpr qsizetype kBlock = 32 * 1024;
    const char16_t* p = text.utf16();
    const qsizetype n = text.size();
    const qsizetype m = matcher.pattern().size();
    std::vector<char16_t> lowered;
    qsizetype runStart = 0; // the first line not yet handed to f
    // The line [start, end) contains the pattern: the lines before it go as one run.
    auto found = [&](qsizetype start, qsizetype end) {
        if (start > runStart)
            f(QStringView(p + runStart, start - 2 - runStart), false);
        f(QStringView(p + start, end - start), true);
        runStart = end + 2;
    };
    // The end of the line of `s` holding `from`: its CR LF, else the end of `s`.
    auto lineEnd = [](QStringView s, qsizetype from) {
        const qsizetype br = s.mid(from).indexOf(u"\r\n");
        return br < 0 ? s.size() : from + br;
    };
    qsizetype pos = 0; // the start of the next block, always a line start
    while (true) {
        // A block of whole lines: [pos, end) with end at a CR LF or the end of the text.
        const qsizetype end = pos + kBlock >= n ? n : lineEnd(text, pos + kBlock - 1);
        const QStringView block(p + pos, end - pos);
        lowered.resize(size_t(block.size()));
        if (lower.lowerInto(block, lowered.data())) {
            const QStringView low(lowered.data(), block.size());
            qsizetype from = 0;
            while (from <= low.size()) {
                const qsizetype hit = matcher.indexIn(low, from);
                if (hit < 0)
                    break;
                // The pattern holds no CR or LF: the hit lies inside one line.
                qsizetype start = hit;
                while (start > 0 &&
                       !(low[start - 1] == u'\n' && start >= 2 && low[start - 2] == u'\r'))
                    --start;
                const qsizetype stop = lineEnd(low, hit + m);
                found(pos + start, pos + stop);
                from = stop + 2;
            }
        } else {
            forEachCrLfLine(block, [&](QStringView line) {
                if (matcher.indexIn(lower(line)) >= 0) {
                    const qsizetype start = line.utf16() - p;
                    found(start, start + line.size());
                }
            });
        }
        if (end >= n)
            break;
        pos = end + 2;
    }
    if (runStart <= n)
        f(QStringView(p + runStart, n - runStart), false);
}

LineWriter::LineWriter(qsizetype capacity) : out_(capacity, Qt::Uninitialized) {
    adviseHugePages(out_.constData(), size_t(capacity) * sizeof(QChar));
    next_ = reinterpret_cast<char16_t*>(out_.data());
    end_ = next_ + capacity;
}

QString LineWriter::finish() && {
    out_.truncate(next_ - reinterpret_cast<const char16_t*>(out_.constData()));
    if (out_.size() < out_.capacity() / 2)
        out_.squeeze(); // a document that lost most of its lines should not keep the room
    return std::move(out_);
}

} // namespace ed
