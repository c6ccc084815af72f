#include "util/TagContent.h"

#include "util/ByteSearch.h"

#include <vector>

namespace ed {

QList<QByteArrayView> htmlTagContentUtf8(QByteArrayView startTag, QByteArrayView stopTag,
                                         QByteArrayView html) {
    QList<QByteArrayView> result{QByteArrayView()};
    if (startTag.endsWith('>'))
        startTag.chop(1);
    if (startTag.isEmpty() || stopTag.isEmpty())
        return result;
    // Tags and text compared with the letters A to Z in lower case: every byte keeps its place.
    const auto lowerInto = [](const char* from, qsizetype n, char* to) {
        for (qsizetype i = 0; i < n; ++i)
            to[i] = char(unsigned(from[i] - 'A') < 26 ? from[i] | 0x20 : from[i]);
    };
    const auto lowered = [&](QByteArrayView s) {
        QByteArray out(s.size(), Qt::Uninitialized);
        lowerInto(s.data(), s.size(), out.data());
        return out;
    };
    const QByteArray start = lowered(startTag);
    const QByteArray stop = lowered(stopTag);
    // The text is lowered only as far as the searches have gone: the entries may run out long
    // before its end.
    QByteArray lower(html.size(), Qt::Uninitialized);
    char* const low = lower.data();
    qsizetype loweredTo = 0;
    const auto indexOf = [&](const QByteArray& needle, qsizetype from) -> qsizetype {
        qsizetype step = qsizetype(1) << 16;
        while (true) {
            const qsizetype end = qMin(html.size(), qMax(loweredTo, from + step));
            if (end > loweredTo) {
                lowerInto(html.data() + loweredTo, end - loweredTo, low + loweredTo);
                loweredTo = end;
            }
            const qsizetype hit = indexOfBytes(QByteArrayView(low, end), needle, from);
            if (hit >= 0 || end == html.size())
                return hit;
            // Searched up to `end`: go on from where a match could still begin.
            from = qMax(from, end - needle.size() + 1);
            step *= 2;
        }
    };
    constexpr int maxEntries = 10000;
    constexpr int maxPasses = 10000;

    // A pass depends only on where the search starts. Once a pass ends without finding the stop
    // tag the search starts over from the beginning, so the passes repeat from there on; they
    // are replayed from the record instead of being searched again.
    struct Pass {
        bool hasEntry;
        QByteArrayView entry;
    };
    std::vector<Pass> firstCycle;
    bool repeating = false;

    int entries = 0;
    qsizetype searchStart = 0; // the next search begins after this many bytes
    // The last search for the stop tag: where it began and what it found (-1: none from there
    // on). A later search from a place between the two finds the same, so it is not repeated:
    // many start tags before one stop tag would otherwise search the same stretch each time.
    qsizetype stopSearchedFrom = -1;
    qsizetype stopFound = -1;
    const auto findStop = [&](qsizetype from) {
        if (stopSearchedFrom < 0 || from < stopSearchedFrom ||
            (stopFound >= 0 && from > stopFound)) {
            stopSearchedFrom = from;
            stopFound = indexOf(stop, from);
        }
        return stopFound;
    };
    for (int pass = 0; pass < maxPasses; ++pass) {
        Pass current{false, QByteArrayView()};
        if (repeating) {
            current = firstCycle[size_t(pass) % firstCycle.size()];
        } else {
            const qsizetype at = indexOf(start, searchStart);
            if (at < 0)
                break;
            const qsizetype contentStart = at + start.size();
            const qsizetype nextStart = indexOf(start, at + 1);
            qsizetype end = findStop(contentStart);
            if (nextStart >= 0 && end >= 0 && nextStart < end)
                end = nextStart;
            if (end >= 0) {
                current = {true, html.sliced(contentStart, end - contentStart)};
                searchStart = end + 1;
            } else {
                searchStart = 0;
            }
            firstCycle.push_back(current);
            repeating = searchStart == 0;
        }
        if (current.hasEntry) {
            if (entries == 0)
                result.clear();
            result << current.entry;
            if (++entries == maxEntries)
                break;
        }
    }
    return result;
}

QStringList htmlTagContent(const QString& startTag, const QString& stopTag, const QString& html) {
    const QByteArray bytes = html.toUtf8();
    QStringList result;
    for (QByteArrayView entry : htmlTagContentUtf8(startTag.toUtf8(), stopTag.toUtf8(), bytes))
        result << QString::fromUtf8(entry);
    return result;
}

} // namespace ed
