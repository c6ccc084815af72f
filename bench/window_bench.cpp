// The window's own path on large documents: loading the text into the edit control (a shown
// QPlainTextEdit behind PlainTextEditControl), a whole-text command round trip (text(), every
// line upper-cased and prefixed, setText) and undo and redo of that command through UndoHistory.
//   QT_QPA_PLATFORM=offscreen bench_window [MEGABYTES...]   (default 20 100)

#include "editor/PlainTextEditControl.h"
#include "editor/UndoHistory.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QString>

#include <cstdio>
#include <cstdlib>

using namespace ed;

namespace {

// Deterministic lines of words and numbers with CR LF breaks, about `chars` UTF-16 units.
QString makeDocument(qsizetype chars) {
    static const char16_t* const words[] = {u"apple", u"Banana",  u"cherry", u"delta",
                                            u"ECHO",  u"foxtrot", u"golf",   u"hotel",
                                            u"café",  u"Ärger",   u"12345",  u"naïve"};
    QString doc;
    doc.reserve(chars + 100);
    quint32 s = 12345;
    while (doc.size() < chars) {
        s = s * 1103515245u + 12345u;
        const int n = 1 + int((s >> 8) % 9);
        for (int i = 0; i < n; ++i) {
            s = s * 1103515245u + 12345u;
            doc += QStringView(words[(s >> 16) % 12]);
            doc += u' ';
        }
        doc += u"\r\n";
    }
    return doc;
}

// The command of the round trip: every line upper-cased and prefixed with "> ".
QString transform(const QString& doc) {
    const QStringView text(doc);
    QString out;
    out.reserve(doc.size() + doc.size() / 8);
    qsizetype start = 0;
    while (true) {
        const qsizetype br = text.indexOf(u"\r\n", start);
        const QStringView line = text.mid(start, br < 0 ? text.size() - start : br + 2 - start);
        out.append(u"> ").append(line.toString().toUpper());
        if (br < 0)
            return out;
        start = br + 2;
    }
}

double ms(QElapsedTimer& t) {
    return double(t.nsecsElapsed()) / 1e6;
}

void row(const char* what, double millis) {
    std::printf("  %-40s %10.1f ms\n", what, millis);
    std::fflush(stdout);
}

bool benchSize(double mb) {
    const QString original = makeDocument(qsizetype(mb * 1000 * 1000));
    std::printf("document: %.0f MB of UTF-8-sized text, %lld characters\n", mb,
                (long long)original.size());
    QPlainTextEdit widget;
    widget.resize(800, 600);
    widget.show();
    QApplication::processEvents();
    PlainTextEditControl edit(&widget);
    QElapsedTimer t;

    t.start();
    edit.setText(original);
    QApplication::processEvents();
    row("load (setText + first layout)", ms(t));

    t.start();
    const QString before = edit.text();
    row("text() after load", ms(t));
    t.start();
    const QString after = transform(before);
    row("the command itself", ms(t));
    t.start();
    edit.setText(after);
    QApplication::processEvents();
    row("setText of the result", ms(t));

    UndoHistory history;
    t.start();
    history.record(before, after);
    row("record the undo step", ms(t));
    if (!history.canUndo()) {
        // A step over the history's limit is not kept: the command then cannot be undone.
        std::printf("  undo: the step (%.0f MB) is over the history's limit of %.0f MB, not kept\n",
                    double(2 * (before.size() + after.size())) / 1e6,
                    double(history.limitBytes()) / 1e6);
        return edit.text() == after;
    }
    t.start();
    const bool undone = history.undo(edit);
    QApplication::processEvents();
    row("undo", ms(t));
    t.start();
    const bool same = edit.text() == original;
    row("(text() compared with the original)", ms(t));
    t.start();
    const bool redone = history.redo(edit);
    QApplication::processEvents();
    row("redo", ms(t));
    const bool ok = undone && same && redone && edit.text() == after;
    std::printf("  %s\n", ok ? "results checked: ok" : "RESULTS WRONG");
    return ok;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    bool ok = true;
    if (argc > 1) {
        for (int i = 1; i < argc; ++i)
            ok = benchSize(std::atof(argv[i])) && ok;
    } else {
        ok = benchSize(20) && benchSize(100);
    }
    return ok ? 0 : 1;
}
