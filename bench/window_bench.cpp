// The window's own path on large documents and long lines, through the real window (offscreen or
// on a display). It opens a 1 MB and a 5 MB line without a space and a large document of lines,
// and in the large document types 100 keystrokes, opens the Edit menu, runs Add > Prefix over the
// whole text and undoes and redoes it. Every step prints the time it took until it was on screen
// and the longest time the window's thread did not get to its event loop (a timer ticks every
// 5 ms; the longest gap between its ticks is what a user feels as a frozen window).
//   QT_QPA_PLATFORM=offscreen bench_window [--no-lines] [MEGABYTES...]     (default 100)
// Each file is opened by this program started again in a process of its own, so that a window
// stuck on one file cannot hold up the next; a step that is not done after BENCH_TIMEOUT seconds
// (default 60) ends that process with "not done after N s".

#include "app/HugePageMalloc.h"
#include "app/StartUp.h"
#include "editor/DocumentCommands.h"
#include "editor/EditorWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QStyleHints>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <sys/resource.h>
#include <vector>

using namespace ed;

namespace {

int stepTimeoutSeconds() {
    const int s = qEnvironmentVariableIntValue("BENCH_TIMEOUT");
    return s > 0 ? s : 60;
}

qint64 nowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Processor time of the whole process (the window's thread and its workers) so far.
double processorMs() {
    rusage use{};
    getrusage(RUSAGE_SELF, &use);
    return double(use.ru_utime.tv_sec + use.ru_stime.tv_sec) * 1e3 +
           double(use.ru_utime.tv_usec + use.ru_stime.tv_usec) / 1e3;
}

void printRow(const std::string& step, const std::string& file, const std::string& time,
              const std::string& processor, const std::string& freeze) {
    std::printf("| %-34s | %-20s | %22s | %12s | %14s |\n", step.c_str(), file.c_str(),
                time.c_str(), processor.c_str(), freeze.c_str());
    std::fflush(stdout);
}

std::string ms(double value) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.0f ms", value);
    return buf;
}

// Deterministic lines of words and numbers with CR LF breaks, UTF-8, about `bytes` bytes.
QByteArray makeDocument(qsizetype bytes) {
    static const char* const words[] = {"apple", "Banana", "cherry", "delta", "ECHO",  "foxtrot",
                                        "golf",  "hotel",  "café",   "Ärger", "12345", "naïve"};
    QByteArray doc;
    doc.reserve(bytes + 100);
    quint32 s = 12345;
    while (doc.size() < bytes) {
        s = s * 1103515245u + 12345u;
        const int n = 1 + int((s >> 8) % 9);
        for (int i = 0; i < n; ++i) {
            s = s * 1103515245u + 12345u;
            if (i > 0)
                doc += ' ';
            doc += words[(s >> 16) % 12];
        }
        doc += "\r\n";
    }
    return doc;
}

// One line of letters and digits without a space or a line break.
QByteArray makeLine(qsizetype bytes) {
    static const char alphabet[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    QByteArray line(bytes, Qt::Uninitialized);
    quint32 s = 4711;
    for (char& c : line) {
        s = s * 1103515245u + 12345u;
        c = alphabet[(s >> 16) % 62];
    }
    return line;
}

// The window thread's heartbeat: a 5 ms timer whose longest gap since start() is the longest
// freeze. Read from the watchdog's thread too.
class Ticker {
public:
    Ticker() {
        timer_.setInterval(5);
        QObject::connect(&timer_, &QTimer::timeout, [this] { beat(); });
    }
    void start() {
        longest_ = 0;
        last_ = nowNs();
        timer_.start();
    }
    // Ends the measurement; the gap up to now counts.
    double stopMs() {
        beat();
        timer_.stop();
        return double(longest_) / 1e6;
    }
    // The longest gap so far, counting the one still open (for a step stopped half-way).
    double longestSoFarMs() const {
        return double(std::max<qint64>(longest_, nowNs() - last_)) / 1e6;
    }

private:
    void beat() {
        const qint64 now = nowNs();
        longest_ = std::max<qint64>(longest_, now - last_);
        last_ = now;
    }
    QTimer timer_;
    std::atomic<qint64> last_{0};
    std::atomic<qint64> longest_{0};
};

// Ends the process with a row saying so when a step takes longer than the time allowed.
class Watchdog {
public:
    explicit Watchdog(const Ticker& ticker) : ticker_(ticker), thread_([this] { watch(); }) {}
    ~Watchdog() {
        {
            std::lock_guard lock(mutex_);
            quit_ = true;
        }
        wake_.notify_one();
        thread_.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    void arm(const std::string& step, const std::string& file) {
        std::lock_guard lock(mutex_);
        step_ = step;
        file_ = file;
        deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(stepTimeoutSeconds());
        wake_.notify_one();
    }
    void disarm() {
        std::lock_guard lock(mutex_);
        deadline_.reset();
    }

private:
    void watch() {
        std::unique_lock lock(mutex_);
        while (!quit_) {
            if (!deadline_) {
                wake_.wait(lock);
                continue;
            }
            if (wake_.wait_until(lock, *deadline_) == std::cv_status::timeout && deadline_ &&
                std::chrono::steady_clock::now() >= *deadline_) {
                printRow(step_, file_,
                         "not done after " + std::to_string(stepTimeoutSeconds()) + " s", "-",
                         ">= " + ms(ticker_.longestSoFarMs()));
                std::_Exit(3);
            }
        }
    }

    const Ticker& ticker_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool quit_ = false;
    std::optional<std::chrono::steady_clock::time_point> deadline_;
    std::string step_, file_;
    std::thread thread_; // last: starts once everything it reads is set up
};

// Counts the paint events of a widget and its children (the text view and its viewport).
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* widget) {
        widget->installEventFilter(this);
        for (QWidget* child : widget->findChildren<QWidget*>())
            child->installEventFilter(this);
    }
    int count() const { return count_; }
    // Runs the event loop until a paint after `before` has been handled, at most `maxMs`.
    bool waitPast(int before, int maxMs) const {
        QElapsedTimer t;
        t.start();
        QTimer guard; // wakes the loop when nothing else does
        guard.start(5);
        while (count_ == before && t.elapsed() < maxMs)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return count_ != before;
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            ++count_;
        return false;
    }

private:
    int count_ = 0;
};

void spin(int msecs) {
    QEventLoop loop;
    QTimer::singleShot(msecs, &loop, &QEventLoop::quit);
    loop.exec();
}

// The text view (the edit control's widget, named rtbEdit; else the window's central widget, which
// the edit control fills). Only QWidget is used, so any widget type behind the view will do.
QWidget* textView(EditorWindow& window) {
    if (auto* named = window.findChild<QWidget*>(QStringLiteral("rtbEdit")))
        return named;
    return window.centralWidget();
}

// The answer to every prompt: the prefix.
class PrefixDialogs : public Dialogs {
public:
    QString inputBox(const QString&, const QString&, const QString&) override {
        return QStringLiteral("> ");
    }
    Answer messageBox(const QString&, const QString&, Buttons, Icon) override { return Answer::Ok; }
};

// One file in this process: opened, and with `edit` typed in, a menu, a command, undo and redo.
int runCase(const QString& path, const std::string& label, bool edit) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "bench_window: cannot read %s\n", qPrintable(path));
        return 2;
    }
    const QByteArray original = file.readAll();
    file.close();

    StartUpState startUp;
    runStartUp(startUp, QFileInfo(path).absolutePath() + QStringLiteral("/Editor"), {});
    startUp.CommandLine = path;
    EditorWindow window(startUp);
    PrefixDialogs dialogs;
    window.setDialogs(&dialogs);
    window.resize(900, 700);
    window.show();
    window.activateWindow();
    spin(50);
    CommandContext& ctx = window.context();
    QWidget* view = textView(window);
    view->setFocus();
    PaintCounter paints(view);
    Ticker ticker;
    Watchdog watchdog(ticker);

    bool ok = true;
    const auto check = [&](const char* after, const QByteArray& expected) {
        const QByteArray got = ctx.edit.utf8();
        if (got == expected)
            return;
        qsizetype at = 0;
        while (at < got.size() && at < expected.size() && got[at] == expected[at])
            ++at;
        std::printf("  RESULT WRONG after %s at byte %lld: [%s] instead of [%s]\n", after,
                    (long long)at, got.mid(at, 20).constData(), expected.mid(at, 20).constData());
        ok = false;
    };
    // Times `step` until its result is painted (or, when the view painted it before the step
    // returned and no paint follows, until it returned).
    const auto timed = [&](const std::string& name, const std::function<void()>& step) {
        watchdog.arm(name, label);
        ticker.start();
        const double cpu = processorMs();
        QElapsedTimer t;
        t.start();
        step();
        double done = double(t.nsecsElapsed()) / 1e6;
        if (paints.waitPast(paints.count(), 1000))
            done = double(t.nsecsElapsed()) / 1e6;
        const double freeze = ticker.stopMs();
        watchdog.disarm();
        printRow(name, label, ms(done), ms(processorMs() - cpu), ms(freeze));
    };

    timed("open (until shown)", [&] {
        window.load();
        // A loader that returns before the text is in: wait for it.
        while (ctx.edit.textLength() == 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    });
    check("open", original);
    if (!edit)
        return ok ? 0 : 1;

    // Keystrokes at the start of the document, each from the key event until its paint is done.
    spin(200);
    ctx.edit.setSelStart(0);
    spin(50);
    const std::string keysName = "keystroke painted (median / max)";
    watchdog.arm(keysName, label);
    ticker.start();
    std::vector<double> keyMs;
    double keyCpu = 0;
    QByteArray typed;
    for (int i = 0; i < 100; ++i) {
        spin(20);
        const char c = char('a' + i % 26);
        const int before = paints.count();
        const double cpu = processorMs();
        QElapsedTimer t;
        t.start();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A + i % 26, Qt::NoModifier, QString(QChar(c)));
        QApplication::sendEvent(view, &press);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_A + i % 26, Qt::NoModifier,
                          QString(QChar(c)));
        QApplication::sendEvent(view, &release);
        if (!paints.waitPast(before, stepTimeoutSeconds() * 1000)) {
            std::printf("  keystroke %d: no paint\n", i + 1);
            ok = false;
        }
        keyMs.push_back(double(t.nsecsElapsed()) / 1e6);
        keyCpu += processorMs() - cpu;
        typed += c;
    }
    const double typingFreeze = ticker.stopMs();
    watchdog.disarm();
    std::vector<double> sorted = keyMs;
    std::sort(sorted.begin(), sorted.end());
    printRow(keysName, label, ms(sorted[sorted.size() / 2]) + " / " + ms(sorted.back()),
             ms(keyCpu / double(keyMs.size())) + " avg", ms(typingFreeze));
    const QByteArray afterTyping = typed + original;
    check("typing", afterTyping);

    // The Edit menu opened from the menu bar, as a click does: until the menu is painted.
    auto* editMenu = window.findChild<QMenu*>(QStringLiteral("mnuEdit"));
    if (!editMenu) {
        std::printf("  the window has no Edit menu (mnuEdit)\n");
        return 1;
    }
    PaintCounter menuPaints(editMenu);
    const auto openMenu = [&](const std::string& name) {
        watchdog.arm(name, label);
        ticker.start();
        const double cpu = processorMs();
        QElapsedTimer t;
        t.start();
        const int before = menuPaints.count();
        window.menuBar()->setActiveAction(editMenu->menuAction());
        const bool shown = menuPaints.waitPast(before, stepTimeoutSeconds() * 1000);
        const double took = double(t.nsecsElapsed()) / 1e6;
        const double freeze = ticker.stopMs();
        watchdog.disarm();
        printRow(name, label, shown ? ms(took) : std::string("not shown"), ms(processorMs() - cpu),
                 ms(freeze));
        ok = ok && shown;
        editMenu->hide();
        window.menuBar()->setActiveAction(nullptr);
        spin(100);
    };
    openMenu("first Edit menu after typing");
    openMenu("Edit menu again");

    timed("Add > Prefix (whole text)", [&] { window.trigger(QStringLiteral("mnuAddPrefix")); });
    const QByteArray after = ctx.edit.utf8();
    if (!after.startsWith("> ") || after.size() <= afterTyping.size()) {
        std::printf("  RESULT WRONG after the command\n");
        ok = false;
    }
    if (!window.menuState().isEnabled(QStringLiteral("mnuUndo"))) {
        std::printf("  undo: the step is over the history's limit, not kept\n");
        return 1;
    }
    timed("undo", [&] { window.trigger(QStringLiteral("mnuUndo")); });
    check("undo", afterTyping);
    timed("redo", [&] { window.trigger(QStringLiteral("mnuRedo")); });
    check("redo", after);
    std::printf("  %s: results %s\n", label.c_str(), ok ? "checked: ok" : "WRONG");
    return ok ? 0 : 1;
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    if (f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size() && f.flush())
        return true;
    std::fprintf(stderr, "bench_window: cannot write %s\n", qPrintable(path));
    return false;
}

// Runs one file in a process of its own; false when it failed or was stopped.
bool runChild(const QString& path, const QString& label, bool edit) {
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.start(QCoreApplication::applicationFilePath(),
                {QString::fromLatin1(edit ? "--edit" : "--open"), path, label});
    child.waitForFinished(-1);
    return child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 4 && (std::strcmp(argv[1], "--open") == 0 || std::strcmp(argv[1], "--edit") == 0)) {
        // The offscreen platform's notes on what it cannot do (raise, grab, size hints) would
        // only interleave with the table.
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& msg) {
            if (type != QtDebugMsg && type != QtInfoMsg &&
                !msg.startsWith(QLatin1String("This plugin does not support")) &&
                !msg.startsWith(QLatin1String("QStandardPaths:")))
                std::fprintf(stderr, "%s\n", qPrintable(msg));
        });
        QApplication app(argc, argv);
        // A blinking caret would paint on its own; every paint counted here is a step's result.
        QGuiApplication::styleHints()->setCursorFlashTime(0);
        return runCase(QString::fromLocal8Bit(argv[2]), argv[3],
                       std::strcmp(argv[1], "--edit") == 0);
    }

    // The window runs with the allocator settings Editor gives Editor-full.
    ed::askHugePageMalloc();
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    qputenv("XDG_CONFIG_HOME", dir.path().toLocal8Bit());
    qputenv("LOGFILES", dir.path().toLocal8Bit());
    // The recovery copies of the windows (left behind, since they are not closed) go there too.
    qputenv("XDG_STATE_HOME", dir.path().toLocal8Bit());
    std::vector<double> sizes;
    bool lines = true;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--no-lines") == 0)
            lines = false;
        else
            sizes.push_back(std::atof(argv[i]));
    }
    if (sizes.empty())
        sizes.push_back(100);

    QFile loadavg(QStringLiteral("/proc/loadavg"));
    const QByteArray load = loadavg.open(QIODevice::ReadOnly)
                                ? loadavg.readLine().split(' ').mid(0, 3).join(' ')
                                : QByteArray("?");
    std::printf("window: %s platform; a step not done after %d s is stopped; load average %s\n"
                "processor: the process's user and system time during the step (every thread)\n\n",
                qgetenv("QT_QPA_PLATFORM").isEmpty() ? "default"
                                                     : qgetenv("QT_QPA_PLATFORM").constData(),
                stepTimeoutSeconds(), load.constData());
    printRow("step", "file", "until on screen", "processor", "longest freeze");
    std::printf("|%s|%s|%s|%s|%s|\n", std::string(36, '-').c_str(), std::string(22, '-').c_str(),
                std::string(24, '-').c_str(), std::string(14, '-').c_str(),
                std::string(16, '-').c_str());
    std::fflush(stdout);

    bool ok = true;
    for (const int mb : {1, 5}) {
        if (!lines)
            break;
        const QString path = dir.path() + QStringLiteral("/line-%1mb.txt").arg(mb);
        ok = writeFile(path, makeLine(qsizetype(mb) * 1000 * 1000)) && ok;
        ok = runChild(path, QStringLiteral("one %1 MB line").arg(mb), false) && ok;
        QFile::remove(path);
    }
    for (const double mb : sizes) {
        const QString path = dir.path() + QStringLiteral("/doc.txt");
        const QByteArray doc = makeDocument(qsizetype(mb * 1000 * 1000));
        const QString label = QStringLiteral("%1 MB, %2 K lines")
                                  .arg(mb, 0, 'f', 0)
                                  .arg(double(doc.count("\r\n")) / 1000, 0, 'f', 0);
        ok = writeFile(path, doc) && ok;
        ok = runChild(path, label, true) && ok;
        QFile::remove(path);
    }
    return ok ? 0 : 1;
}
