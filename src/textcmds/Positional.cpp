#include "textcmds/Positional.h"

#include "app/Trap.h"
#include "textcmds/Framework.h"
#include "textcmds/LineHits.h"
#include "util/Utility.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ed {

namespace {

const QString kKey = QStringLiteral("Previous Switch At Text");
const QString kSlash = QStringLiteral("/");
constexpr QByteArrayView kBreak("\r\n");

// The byte length of the UTF-8 sequence that starts with `lead`.
qsizetype sequenceLength(char lead) {
    const auto c = uchar(lead);
    return c < 0xC0 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
}

// The byte offset of `chars` characters into `s` from `at`.
qsizetype skipChars(QByteArrayView s, qsizetype at, qsizetype chars) {
    for (; chars > 0 && at < s.size(); --chars)
        at += sequenceLength(s[at]);
    return at;
}

qsizetype countChars(QByteArrayView s) {
    return std::count_if(s.begin(), s.end(), [](char c) { return (uchar(c) & 0xC0) != 0x80; });
}

// The byte offset where the UTF-16 position `units` falls in `line`, a position inside a
// character of two units taken to its end; -1 when the line is shorter.
qsizetype offsetOfUnits(QByteArrayView line, qint64 units) {
    qsizetype at = 0;
    for (qint64 u = 0; u < units;) {
        if (at >= line.size())
            return -1;
        const qsizetype len = sequenceLength(line[at]);
        u += len == 4 ? 2 : 1;
        at += len;
    }
    return at;
}

// The marker of a positional edit, found in lines or whole texts.
class Marker {
public:
    explicit Marker(QStringView marker) : lowering_(Utf8Lowering::Mapping::Simple) {
        const QByteArray bytes = toModelUtf8(marker);
        const QByteArray lower = lowering_(bytes).toByteArray();
        search_.emplace(lower);
        chars_ = countChars(lower);
        // Only letters have a lower case other than themselves: a marker of ASCII characters
        // other than letters is looked for in the lines as they stand.
        lowerLines_ = std::any_of(lower.begin(), lower.end(), [](char c) {
            return uchar(c) >= 0x80 || (c >= 'a' && c <= 'z');
        });
    }

    // Calls f(start, end, at) for every line [start, end) of `text` that holds an n-th
    // occurrence of the marker (n >= 1), in order, with `at` where that occurrence starts; all
    // offsets into the text.
    template <class F> void forEachHit(QByteArrayView text, qint64 n, F&& f) {
        if (n == 1 && chars_ > 0) {
            // The first occurrence: whole blocks searched at once.
            LineHits hits(text, *search_, lowerLines_ ? &lowering_ : nullptr);
            LineHit hit;
            while (hits.next(hit))
                f(hit.start, hit.end, hit.at);
            return;
        }
        forEachModelLine(text, [&](QByteArrayView line) {
            const qsizetype at = nth(line, n);
            if (at >= 0) {
                const qsizetype start = line.data() - text.data();
                f(start, start + line.size(), start + at);
            }
        });
    }

    // Where `line` is cut for its occurrence at `at`: before it, or after its first character.
    qsizetype cut(QByteArrayView line, qsizetype at, qint64 n, bool after) const {
        if (chars_ == 0) // the n-th character, whole
            return offsetOfUnits(line, after ? n : n - 1);
        return after ? at + sequenceLength(line[at]) : at;
    }

    // The bytes the occurrence at `at` in `line` takes: as many characters as the marker has.
    qsizetype lengthAt(QByteArrayView line, qsizetype at) const {
        return skipChars(line, at, chars_) - at;
    }

private:
    // The offset in `line` of the marker's n-th occurrence, or -1.
    qsizetype nth(QByteArrayView line, qint64 n) {
        if (chars_ == 0)
            return offsetOfUnits(line, n) >= 0 ? offsetOfUnits(line, n - 1) : -1;
        const QByteArrayView low = lowerLines_ ? lowering_(line) : line;
        const qsizetype at = search_->nth(low, n);
        if (at < 0 || !lowerLines_ || lowering_.keptLengths())
            return at;
        return skipChars(line, 0, countChars(low.first(at)));
    }

    Utf8Lowering lowering_;
    std::optional<ByteSearch> search_;
    qsizetype chars_ = 0;
    bool lowerLines_ = true;
};

} // namespace

QByteArray switchAtMarker(QByteArrayView text, const QString& marker) {
    Marker m(marker);
    ByteWriter out(text.size() + kBreak.size());
    qsizetype done = 0; // the text before this is written
    m.forEachHit(text, 1, [&](qsizetype start, qsizetype end, qsizetype at) {
        out.append(text.sliced(done, start - done));
        const QByteArrayView line = text.sliced(start, end - start);
        const qsizetype from = at - start;
        const qsizetype length = m.lengthAt(line, from);
        out.append(line.sliced(from + length));
        out.append(line.sliced(from, length));
        out.append(line.first(from));
        done = end;
    });
    out.append(text.sliced(done));
    out.append(kBreak);
    return std::move(out).finish();
}

qint32 occurrenceNumber(const QString& field) {
    const QString s = field.trimmed();
    bool ok = false;
    double v = QLocale::c().toDouble(s, &ok);
    if (!ok || std::isnan(v))
        throw RuntimeError(QStringLiteral("Type mismatch: the occurrence \"%1\" is not a number")
                               .arg(field)
                               .toStdString());
    v = std::nearbyint(v);
    if (!(v >= std::numeric_limits<qint32>::min() && v <= std::numeric_limits<qint32>::max()))
        throw RuntimeError(QStringLiteral("Overflow: the occurrence \"%1\" is out of range")
                               .arg(field)
                               .toStdString());
    return qint32(v);
}

namespace {

// The lines of `text` that hold an n-th occurrence of `marker`, each cut there in two with
// `between` put in: part, between, rest. Lines without one are left out.
QByteArray splitLines(QByteArrayView text, QStringView marker, qint64 n, QByteArrayView between,
                      bool after) {
    Marker search(marker);
    // Room for a line break more in every line; an insert makes it grow as lines are found.
    ByteWriter out(between == kBreak ? text.size() + 2 * countModelLines(text) + 2
                                     : text.size() + kBreak.size());
    search.forEachHit(text, n, [&](qsizetype start, qsizetype end, qsizetype at) {
        const QByteArrayView line = text.sliced(start, end - start);
        const qsizetype cut = search.cut(line, at - start, n, after);
        out.append(line.first(cut));
        out.append(between);
        out.append(line.sliced(cut));
        out.append(kBreak);
    });
    return std::move(out).finish();
}

} // namespace

void mnuInsertCRAt_Click(CommandContext& ctx) {
    const auto answer = promptRemembered(
        ctx,
        QStringLiteral("Insert CR at what character? enter InsertAtChar/Occurance as #/a or b "
                       "(after or before InSertAtChar)"),
        QStringLiteral("Enter character"), kKey);
    if (!answer)
        return;
    // "marker/n/side" with exactly two slashes; anything else is a marker alone (up to the
    // first slash), broken after its first occurrence.
    QString marker;
    qint32 n = 0;
    bool after = true;
    if (ctx.util.CountChar(*answer, kSlash, true) == 2) {
        const QStringList fields = answer->split(u'/');
        marker = fields[0];
        n = occurrenceNumber(fields[1]);
        after = fields[2] == u"a";
    } else {
        marker = answer->section(u'/', 0, 0);
    }
    // Lines without the marker (or with fewer than n occurrences) are left out.
    ctx.edit.setUtf8(splitLines(ctx.edit.utf8(), marker, n < 1 ? 1 : n, kBreak, after));
}

void mnuInsertTextAt_Click(CommandContext& ctx) {
    const auto answer = promptRemembered(
        ctx,
        QStringLiteral("Insert text at what character? \r\nChar/Occurance #/InsertText/a or b "
                       "(after or before)"),
        QStringLiteral("Enter character"), kKey);
    if (!answer)
        return;
    if (ctx.util.CountChar(*answer, kSlash, true) != 3) {
        ctx.dialogs.messageBox(QStringLiteral("Parameters must be exact"), QStringLiteral("ERROR"),
                               Buttons::Ok, Icon::Critical);
        return;
    }
    const QStringList fields = answer->split(u'/');
    const qint32 n = occurrenceNumber(fields[1]);
    const bool after = fields[3] == u"a";
    // No line holds a 0th occurrence, so n < 1 leaves nothing.
    if (n < 1) {
        ctx.edit.setUtf8(QByteArray(""));
        return;
    }
    ctx.edit.setUtf8(splitLines(ctx.edit.utf8(), fields[0], n, toModelUtf8(fields[2]), after));
}

namespace {

enum class Keep { Right, Left };

// Each line holding the answer keeps what stands on one side of its first occurrence, trimmed
// of spaces; a line without it stays as it is.
void truncateLines(CommandContext& ctx, const QString& prompt, Keep keep) {
    const auto answer =
        promptRemembered(ctx, prompt, QStringLiteral("Enter character to truncate at"), kKey);
    if (!answer)
        return;
    Marker search(*answer);
    const QByteArray text = ctx.edit.utf8();
    const QByteArrayView all(text);
    ByteWriter out(text.size() + kBreak.size());
    qsizetype runStart = 0; // the lines not written yet that stay as they are
    search.forEachHit(all, 1, [&](qsizetype start, qsizetype end, qsizetype at) {
        out.append(all.sliced(runStart, start - runStart));
        const QByteArrayView line = all.sliced(start, end - start);
        const qsizetype p = at - start;
        out.append(trimSpaces(keep == Keep::Right ? line.sliced(p + search.lengthAt(line, p))
                                                  : line.first(p)));
        out.append(kBreak);
        runStart = end + kBreak.size();
    });
    // The lines after the last one cut; the last piece of the text gets a break too.
    if (runStart <= all.size()) {
        out.append(all.sliced(runStart));
        out.append(kBreak);
    }
    ctx.edit.setUtf8(std::move(out).finish());
}

} // namespace

void mnuRemoveLeftSide_Click(CommandContext& ctx) {
    truncateLines(ctx, QStringLiteral("Truncate left side at?"), Keep::Right);
}

void mnuRemoveRightSide_Click(CommandContext& ctx) {
    truncateLines(ctx, QStringLiteral("Truncate right side at?"), Keep::Left);
}

} // namespace ed
