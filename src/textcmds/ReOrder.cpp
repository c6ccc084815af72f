#include "textcmds/ReOrder.h"

#include "textcmds/Framework.h"
#include "textcmds/Positional.h"
#include "textcmds/RememberedAnswer.h"
#include "util/ByteSearch.h"
#include "util/TagContent.h"

#include <cstring>
#include <limits>
#include <optional>

namespace ed {

namespace {

const QByteArrayView kCrLfBytes("\r\n");

// The delimiter an answer stands for: "vbTab" and "vbCrLf" (any case) are a tab and a CR LF.
QByteArray delimiterOf(QString answer) {
    answer.replace(QLatin1String("vbCrLf"), QLatin1String("\r\n"), Qt::CaseInsensitive);
    answer.replace(QLatin1String("vbTab"), QLatin1String("\t"), Qt::CaseInsensitive);
    return toModelUtf8(answer);
}

// The delimiter prompt of the two stream commands; nothing when it was cancelled.
std::optional<QByteArray> askDelimiter(CommandContext& ctx, const QString& prompt) {
    const QString key = QStringLiteral("Text Stream Delimiter");
    const auto answer = askRemembered(ctx, prompt, QStringLiteral("Text Stream Delimiter"), key,
                                      QStringLiteral(","));
    if (!answer)
        return std::nullopt;
    rememberAnswer(ctx, key, *answer);
    return delimiterOf(*answer);
}

// An integer as the array lines write it: digits with an optional "-". Its length, or 0.
qsizetype integerAt(QByteArrayView s) {
    qsizetype i = !s.isEmpty() && s[0] == '-' ? 1 : 0;
    const qsizetype digits = i;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9')
        ++i;
    return i > digits ? i : 0;
}

bool startsWith(QByteArrayView s, qsizetype at, QByteArrayView what) {
    return s.size() - at >= what.size() &&
           std::memcmp(s.data() + at, what.data(), size_t(what.size())) == 0;
}

// An element line NAME(integer) = ...: the end of NAME (its "("), or -1.
qsizetype elementNameEnd(QByteArrayView line) {
    const qsizetype open = indexOfBytes(line, "(", 0);
    if (open <= 0)
        return -1;
    const qsizetype digits = integerAt(line.sliced(open + 1));
    return digits > 0 && startsWith(line, open + 1 + digits, ") = ") ? open : -1;
}

// The length of the integer that follows `head` and ends the line (with `tail` after it).
qsizetype headerInteger(QByteArrayView line, QByteArrayView head1, QByteArrayView name,
                        QByteArrayView head2, QByteArrayView tail) {
    if (!startsWith(line, 0, head1) || !startsWith(line, head1.size(), name) ||
        !startsWith(line, head1.size() + name.size(), head2))
        return 0;
    const qsizetype at = head1.size() + name.size() + head2.size();
    const qsizetype digits = integerAt(line.sliced(at));
    return digits > 0 && at + digits + tail.size() == line.size() &&
                   startsWith(line, at + digits, tail)
               ? digits
               : 0;
}

void appendNumber(ByteWriter& out, qint64 v) {
    char buf[24];
    const int n = std::snprintf(buf, sizeof buf, "%lld", static_cast<long long>(v));
    out.append(QByteArrayView(buf, n));
}

} // namespace

QByteArray joinLines(QByteArrayView text, QByteArrayView delimiter) {
    if (text.endsWith(kCrLfBytes))
        text.chop(2); // the last, empty, piece is dropped
    if (text.isEmpty())
        return QByteArray();
    qsizetype capacity = text.size();
    if (delimiter.size() > 2)
        capacity += countModelLines(text) * (delimiter.size() - 2);
    ByteWriter out(capacity);
    bool first = true;
    forEachModelLine(text, [&](QByteArrayView line) {
        if (!first)
            out.append(delimiter);
        first = false;
        out.append(line);
    });
    return std::move(out).finish();
}

QByteArray splitAt(QByteArrayView text, QByteArrayView delimiter) {
    ByteWriter out(text.size() + 2);
    qsizetype from = 0;
    for (qsizetype at = indexOfBytes(text, delimiter, 0); at >= 0;
         at = indexOfBytes(text, delimiter, from)) {
        out.append(text.sliced(from, at - from));
        out.append(kCrLfBytes);
        from = at + delimiter.size();
    }
    out.append(text.sliced(from));
    out.append(kCrLfBytes);
    return std::move(out).finish();
}

QByteArray renumberArray(QByteArrayView text, qint64 first) {
    // NAME comes from the first element line; the header lines take the last index, so the
    // elements are counted first.
    QByteArrayView name;
    qsizetype elements = 0;
    forEachModelLine(text, [&](QByteArrayView line) {
        if (name.isEmpty()) {
            const qsizetype end = elementNameEnd(line);
            if (end > 0)
                name = line.first(end);
        }
        if (!name.isEmpty() && elementNameEnd(line) == name.size() && line.startsWith(name))
            ++elements;
    });
    const qint64 last = first + elements - 1;
    ByteWriter out(text.size() + 2 + elements * 21 + 64);
    qint64 next = first;
    forEachModelLine(text, [&](QByteArrayView line) {
        qsizetype digits = 0;
        if (name.isEmpty()) {
            out.append(line);
        } else if (elementNameEnd(line) == name.size() && line.startsWith(name)) {
            out.append(line.first(name.size() + 1));
            appendNumber(out, next++);
            out.append(line.sliced(name.size() + 1 + integerAt(line.sliced(name.size() + 1))));
        } else if ((digits = headerInteger(line, "Private Const ", name, "Count As Long = ", "")) >
                   0) {
            out.append(line.chopped(digits));
            appendNumber(out, last);
        } else if ((digits = headerInteger(line, "ReDim ", name, "(", ")")) > 0) {
            out.append(line.chopped(digits + 1));
            appendNumber(out, last);
            out.append(")");
        } else {
            out.append(line);
        }
        out.append(kCrLfBytes);
    });
    return std::move(out).finish();
}

void mnuGetHtmlTags_Click(CommandContext& ctx) {
    const QString title = QStringLiteral("Get Html Tags");
    const QString startKey = QStringLiteral("GetHtmlTagsStart");
    const QString stopKey = QStringLiteral("GetHtmlTagsStop");
    const auto start = askRemembered(ctx, QStringLiteral("Enter the start tag."), title, startKey,
                                     QStringLiteral("<a>"));
    if (!start)
        return;
    rememberAnswer(ctx, startKey, *start);
    const auto stop = askRemembered(ctx, QStringLiteral("Enter the stop tag."), title, stopKey,
                                    QStringLiteral("</a>"));
    if (!stop)
        return;
    rememberAnswer(ctx, stopKey, *stop);
    const QByteArray text = ctx.edit.utf8();
    // The tag cutter the browser session uses too, on the document's text as it stands.
    const QList<QByteArrayView> entries =
        htmlTagContentUtf8(toModelUtf8(*start), toModelUtf8(*stop), text);
    qsizetype size = 0;
    for (QByteArrayView entry : entries)
        size += entry.size() + 2;
    ByteWriter out(size);
    for (QByteArrayView entry : entries) {
        out.append(entry);
        out.append(kCrLfBytes);
    }
    ctx.edit.setUtf8(std::move(out).finish());
}

void mnuSwitchRearToFront_Click(CommandContext& ctx) {
    const auto answer =
        promptRemembered(ctx, QStringLiteral("Switch front and rear of each line at what text?"),
                         QStringLiteral("Enter text"), QStringLiteral("Previous Switch At Text"));
    if (!answer)
        return;
    ctx.edit.setUtf8(switchAtMarker(ctx.edit.utf8(), *answer));
}

void mnuReNumberArrayElements_Click(CommandContext& ctx) {
    const QString title = QStringLiteral("Renumber Array elements");
    const QString key = QStringLiteral("Start number");
    const auto answer = askRemembered(ctx, QStringLiteral("Enter the first index."), title, key,
                                      QStringLiteral("0"));
    if (!answer)
        return;
    const auto first = wholeNumber(*answer, std::numeric_limits<qint32>::min(),
                                   std::numeric_limits<qint32>::max());
    if (!first) {
        ctx.dialogs.messageBox(QStringLiteral("The first index must be a whole number."), title,
                               Buttons::Ok, Icon::Exclamation);
        return;
    }
    rememberAnswer(ctx, key, *answer);
    ctx.edit.setUtf8(renumberArray(ctx.edit.utf8(), *first));
}

void mnuTurnToStream_Click(CommandContext& ctx) {
    const auto delimiter = askDelimiter(ctx, QStringLiteral("Join the lines with what delimiter?"));
    if (delimiter)
        ctx.edit.setUtf8(joinLines(ctx.edit.utf8(), *delimiter));
}

void mnuDelimitRunningText_Click(CommandContext& ctx) {
    const auto delimiter = askDelimiter(ctx, QStringLiteral("Split the text at what delimiter?"));
    if (delimiter)
        ctx.edit.setUtf8(splitAt(ctx.edit.utf8(), *delimiter));
}

} // namespace ed
