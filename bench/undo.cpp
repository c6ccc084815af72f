// Undo history on a large document: a whole-text command (every line prefixed) and a small
// paste, each recorded, undone and redone on a TextBuffer; also Find Next across the document.
//   bench_undo [MEGABYTES]   (default 20)

#include "app/TextBuffer.h"
#include "editor/LowerCaseSearch.h"
#include "editor/SearchCommands.h"
#include "editor/UndoHistory.h"

#include <QElapsedTimer>
#include <QString>

#include <cstdio>
#include <cstdlib>

using namespace ed;

namespace {

// Deterministic lines of words and numbers, CR LF breaks, about `chars` characters.
QString makeDocument(qsizetype chars) {
    static const char* const words[] = {"apple", "Banana", "cherry", "delta", "ECHO",  "foxtrot",
                                        "golf",  "hotel",  "café",   "Ärger", "12345", "naïve"};
    QString doc;
    doc.reserve(chars + 100);
    quint32 s = 12345;
    while (doc.size() < chars) {
        const int n = 1 + int((s >> 8) % 9);
        for (int i = 0; i < n; ++i) {
            s = s * 1103515245u + 12345u;
            doc += QString::fromUtf8(words[(s >> 16) % 12]);
            doc += u' ';
        }
        doc += QStringLiteral("\r\n");
    }
    return doc;
}

QString prefixEveryLine(const QString& doc) {
    const QStringView text(doc);
    QString out;
    out.reserve(doc.size() + doc.size() / 8);
    qsizetype start = 0;
    while (true) {
        const qsizetype br = text.indexOf(u"\r\n", start);
        out.append(u"> ").append(text.mid(start, br < 0 ? text.size() - start : br + 2 - start));
        if (br < 0)
            return out;
        start = br + 2;
    }
}

double ms(QElapsedTimer& t) {
    return double(t.nsecsElapsed()) / 1e6;
}

void row(const char* what, double millis) {
    std::printf("  %-38s %9.1f ms\n", what, millis);
}

} // namespace

int main(int argc, char** argv) {
    const double mb = argc > 1 ? std::atof(argv[1]) : 20.0;
    const QString original = makeDocument(qsizetype(mb * 1024 * 1024));
    std::printf("document: %lld characters (%.1f MB of UTF-16)\n", (long long)original.size(),
                double(original.size()) * 2 / 1048576);
    QElapsedTimer t;

    std::printf("whole-text command (every line prefixed):\n");
    t.start();
    const QString prefixed = prefixEveryLine(original);
    row("command itself", ms(t));
    TextBuffer edit(original);
    edit.setText(prefixed);
    UndoHistory history;
    t.start();
    history.record(original, prefixed);
    row("record", ms(t));
    std::printf("  %-38s %9.1f MB\n", "history holds", double(history.storedBytes()) / 1048576);
    t.start();
    history.undo(edit);
    row("undo", ms(t));
    const bool undoneOk = edit.text() == original;
    t.start();
    history.redo(edit);
    row("redo", ms(t));
    const bool redoneOk = edit.text() == prefixed;

    std::printf("small paste in the middle:\n");
    QString pasted = prefixed;
    pasted.insert(pasted.size() / 2, QStringLiteral("pasted text\r\n"));
    const qsizetype held = history.storedBytes();
    t.start();
    history.record(prefixed, pasted);
    row("record", ms(t));
    std::printf("  %-38s %9lld bytes\n", "step holds", (long long)(history.storedBytes() - held));
    edit.setText(pasted);
    t.start();
    history.undo(edit);
    row("undo", ms(t));
    const bool pasteOk = edit.text() == prefixed;

    std::printf("Find Next (case ignored) from the start:\n");
    const QByteArray bytes = toModelUtf8(prefixed);
    const QByteArray needle = toModelUtf8(QStringLiteral("NOT THERE"));
    t.start();
    const qsizetype miss = indexOfIgnoringCase(bytes, needle, 0);
    row("through the whole text, no match", ms(t));
    t.start();
    const qsizetype last =
        indexOfIgnoringCase(bytes, toModelUtf8(QStringLiteral("NAÏVE")), prefixed.size() - 200);
    row("near the end", ms(t));
    t.start();
    const QByteArray lowered = lowerSameLength(bytes);
    row("(for comparison: lower-casing it all)", ms(t));

    const bool ok =
        undoneOk && redoneOk && pasteOk && miss < 0 && utf16Length(lowered) == prefixed.size();
    std::printf("%s (last match at %lld)\n", ok ? "results checked: ok" : "RESULTS WRONG",
                (long long)last);
    return ok ? 0 : 1;
}
