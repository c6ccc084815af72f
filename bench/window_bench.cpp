// The window's own path on large documents, through the real window (offscreen): opening a file,
// a whole-text command (Add > Prefix), and undo and redo of it. For each step it prints the time
// until the result is on screen and the longest time the window's thread did not get to its
// event loop (what a user feels as a frozen window; the busy indicator with Cancel shows while
// the rest runs on a worker).
//   QT_QPA_PLATFORM=offscreen bench_window [MEGABYTES...]   (default 20 100)

#include "app/StartUp.h"
#include "editor/EditorWindow.h"
#include "editor/ScintillaEditControl.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <functional>

using namespace ed;

namespace {

// Deterministic lines of words and numbers with CR LF breaks, about `chars` characters.
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
            if (i > 0)
                doc += u' ';
            doc += QStringView(words[(s >> 16) % 12]);
        }
        doc += u"\r\n";
    }
    return doc;
}

// The answer to every prompt: the prefix.
class PrefixDialogs : public Dialogs {
public:
    QString inputBox(const QString&, const QString&, const QString&) override {
        return QStringLiteral("> ");
    }
    Answer messageBox(const QString&, const QString&, Buttons, Icon) override { return Answer::Ok; }
};

// Runs `step` and measures it and the longest gap between ticks of a 5 ms timer meanwhile.
void timed(const char* what, const std::function<void()>& step) {
    QElapsedTimer sinceTick, total;
    qint64 longest = 0;
    QTimer tick;
    tick.setInterval(5);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        longest = qMax(longest, sinceTick.nsecsElapsed());
        sinceTick.restart();
    });
    tick.start();
    QApplication::processEvents();
    sinceTick.start();
    total.start();
    step();
    QApplication::processEvents();
    longest = qMax(longest, sinceTick.nsecsElapsed());
    std::printf("  %-28s %9.0f ms   longest freeze %7.0f ms\n", what,
                double(total.nsecsElapsed()) / 1e6, double(longest) / 1e6);
    std::fflush(stdout);
}

bool benchSize(double mb) {
    QTemporaryDir dir;
    const QString original = makeDocument(qsizetype(mb * 1000 * 1000));
    const QString path = dir.path() + QStringLiteral("/big.txt");
    {
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(original.toUtf8()) < 0) {
            std::fprintf(stderr, "bench_window: cannot write %s\n", qPrintable(path));
            return false;
        }
    }
    std::printf("document: %.0f MB, %lld characters, %lld lines\n", mb, (long long)original.size(),
                (long long)original.count(QStringLiteral("\r\n")));
    StartUpState startUp;
    runStartUp(startUp, dir.path() + QStringLiteral("/Editor"), {});
    startUp.CommandLine = path;
    EditorWindow window(startUp);
    PrefixDialogs dialogs;
    window.setDialogs(&dialogs);
    window.resize(900, 700);
    window.show();
    QApplication::processEvents();

    bool ok = true;
    const auto check = [&](const char* what, const QString& expected) {
        const QString got = window.editControl().text();
        if (got != expected) {
            qsizetype at = 0;
            while (at < got.size() && at < expected.size() && got[at] == expected[at])
                ++at;
            std::printf("  RESULT WRONG after %s at %lld: [%s] instead of [%s]\n", what,
                        (long long)at, qPrintable(got.mid(at, 20)),
                        qPrintable(expected.mid(at, 20)));
            ok = false;
        }
    };
    timed("open the file", [&] { window.load(); });
    check("open", original);
    timed("Add > Prefix (whole text)", [&] { window.trigger(QStringLiteral("mnuAddPrefix")); });
    const QString after = window.editControl().text();
    if (after == original || !after.startsWith(QStringLiteral("> "))) {
        std::printf("  RESULT WRONG after the command\n");
        ok = false;
    }
    if (!window.menuState().isEnabled(QStringLiteral("mnuUndo"))) {
        std::printf("  undo: the step is over the history's limit, not kept\n");
        return false;
    }
    timed("undo", [&] { window.trigger(QStringLiteral("mnuUndo")); });
    check("undo", original);
    timed("redo", [&] { window.trigger(QStringLiteral("mnuRedo")); });
    check("redo", after);
    std::printf("  %s\n", ok ? "results checked: ok" : "RESULTS WRONG");
    return ok;
}

} // namespace

int main(int argc, char** argv) {
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    qputenv("LOGFILES", config.path().toLocal8Bit());
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
