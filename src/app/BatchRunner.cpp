#include "app/BatchRunner.h"

#include "app/BatchPorts.h"
#include "app/ErrorLogger.h"
#include "app/InputReader.h"
#include "app/StartUp.h"
#include "app/SystemPorts.h"
#include "app/TextBuffer.h"
#include "app/Trap.h"
#include "editor/DocumentIO.h"
#include "editor/MenuTable.h"
#include "util/Utility.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <optional>
#include <unistd.h>

namespace ed {

bool parseBatchArguments(const QStringList& args, BatchOptions& o, QString& error) {
    auto need = [&](qsizetype i, const QString& opt) {
        if (i + 1 >= args.size()) {
            error = QStringLiteral("%1 needs a value").arg(opt);
            return false;
        }
        return true;
    };
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == u"--apply") {
            if (!need(i, a))
                return false;
            BatchStep step;
            step.item = args[++i];
            if (!findByBatchName(step.item)) {
                error = QStringLiteral("unknown command \"%1\" (Editor --list shows them)")
                            .arg(step.item);
                return false;
            }
            if (!availableInBatch(*findByBatchName(step.item))) {
                error = QStringLiteral("command \"%1\" needs the window and cannot run from the "
                                       "command line (Editor --list shows those that can)")
                            .arg(step.item);
                return false;
            }
            o.steps.push_back(step);
        } else if (a == u"--answer" || a == u"--select" || a == u"--clipboard") {
            if (!need(i, a))
                return false;
            if (o.steps.empty()) {
                error = QStringLiteral("%1 must follow --apply ITEM").arg(a);
                return false;
            }
            BatchStep& step = o.steps.back();
            const QString v = args[++i];
            if (a == u"--answer") {
                step.answers << v;
            } else if (a == u"--clipboard") {
                step.hasClipboard = true;
                step.clipboard = v;
            } else {
                const QStringList parts = v.split(u',');
                bool ok1 = false, ok2 = false;
                if (parts.size() == 2) {
                    step.selStart = parts[0].trimmed().toInt(&ok1);
                    step.selLength = parts[1].trimmed().toInt(&ok2);
                }
                if (!ok1 || !ok2 || step.selStart < 0 || step.selLength < 0) {
                    error = QStringLiteral("--select wants START,LENGTH as two whole numbers of "
                                           "0 or more, not \"%1\"")
                                .arg(v);
                    return false;
                }
                step.hasSelect = true;
            }
        } else if (a == u"--report") {
            o.report = true;
        } else if (a == u"--out") {
            if (!need(i, a))
                return false;
            o.outFile = args[++i];
        } else if (a.startsWith(u"--")) {
            error = QStringLiteral("unknown option %1").arg(a);
            return false;
        } else {
            if (!o.inFile.isEmpty()) {
                error = QStringLiteral("only one FILE may be given (\"%1\" and \"%2\")")
                            .arg(o.inFile, a);
                return false;
            }
            o.inFile = a;
        }
    }
    if (o.steps.empty()) {
        error = QStringLiteral("no --apply ITEM given");
        return false;
    }
    return true;
}

bool isSendMailBatch(const QStringList& args) {
    const qsizetype i = args.indexOf(QStringLiteral("--apply"));
    return i >= 0 && i + 1 < args.size() && args[i + 1] == u"SendAsEmail";
}

bool needsFullProgram(const BatchOptions& options) {
    return std::any_of(options.steps.begin(), options.steps.end(), [](const BatchStep& step) {
        return runsInFullProgram(*findByBatchName(step.item));
    });
}

void printCommandList(FILE* out) {
    for (const MenuItemDecl& d : menuItems()) {
        if (!availableInBatch(d))
            continue;
        std::fprintf(out, "%-36s %s\n", batchName(d).toUtf8().constData(), d.caption);
    }
}

namespace {

void writeLine(FILE* f, const QString& line) {
    const QByteArray b = line.toUtf8();
    std::fwrite(b.constData(), 1, size_t(b.size()), f);
    std::fputc('\n', f);
}

// The bytes of FILE (or standard input), read into memory: a mapped file cut short while a
// command runs would end the run with a bus error.
bool readInput(const QString& path, QByteArray& bytes, QString& error) {
    const qint64 limit = inputByteLimit();
    if (path.isEmpty() || path == u"-")
        return readAllBounded(STDIN_FILENO, QStringLiteral("standard input"), limit, bytes, error);
    if (!checkFileToRead(path, error))
        return false;
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        error = QStringLiteral("cannot read %1: %2")
                    .arg(path, QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    const bool ok = readAllBounded(fd, path, limit, bytes, error);
    ::close(fd);
    return ok;
}

// The --out target must be able to become a file: checked before anything runs.
bool checkOutTarget(const QString& path, QString& error) {
    if (path.isEmpty())
        return true;
    const QFileInfo fi(path);
    if (fi.isDir()) {
        error = QStringLiteral("%1 is a folder, not a file").arg(path);
        return false;
    }
    if (!fi.absoluteDir().exists()) {
        error = QStringLiteral("cannot write %1: the folder %2 does not exist")
                    .arg(path, QDir::toNativeSeparators(fi.absolutePath()));
        return false;
    }
    return true;
}

bool writeOutput(const QString& path, const QByteArray& bytes, FILE* out, QString& error) {
    if (!path.isEmpty())
        return writeFileAtomically(path, bytes, error);
    if (std::fwrite(bytes.constData(), 1, size_t(bytes.size()), out) != size_t(bytes.size()) ||
        std::fflush(out) != 0) {
        error = QStringLiteral("cannot write the document to standard output");
        return false;
    }
    return true;
}

// What the error logger saw. Settings-store trouble is shown but is not a failure of the
// commands: the store reports it under the start-up module.
struct LoggedErrors {
    QStringList lines;
    int commandErrors = 0;

    void add(const QString& module, const QString& location, const QString& detail) {
        lines << QStringLiteral("Editor: error in %1 (%2)%3")
                     .arg(location, module, detail.isEmpty() ? QString() : ": " + detail);
        if (module != u"mStartUp")
            ++commandErrors;
    }
};

int runBatchSteps(const BatchOptions& o, const StartUpState& startUp, FILE* out, FILE* err,
                  const WithFullPorts& withFullPorts) {
    QByteArray input;
    QString usageError;
    if (!readInput(o.inFile, input, usageError) || !checkOutTarget(o.outFile, usageError)) {
        writeLine(err, QStringLiteral("Editor: ") + usageError);
        return 2;
    }
    // Decoded as the window decodes a file; a UTF-8 file with CR LF breaks is used as it is.
    TextFormat format;
    TextBuffer edit = TextBuffer::fromUtf8(decodeToModel(input, &format));
    input = QByteArray();

    QStringList reportLines;
    const ReportFn report = [&](const QString& line) {
        if (o.report)
            reportLines << line;
    };
    LoggedErrors errors;
    SystemClock clock;
    ProcessLauncher launcher;
    bool complete = true;
    ErrorLogger logger(clock, launcher, complete, startUp.exeName);
    logger.hooks().observer = [&](const QString& module, const QString& location,
                                  const QString& detail) { errors.add(module, location, detail); };
    SettingsStore store(&logger);
    ScriptedDialogs dialogs(report);
    ScriptedFileDialogs fileDialogs(dialogs, report);
    MemoryClipboard clipboard;
    DeclaredMenuState menu;
    Utility util(logger);
    FormState form;
    const bool fromStdin = o.inFile.isEmpty() || o.inFile == u"-";
    form.FileName = fromStdin ? QString() : QFileInfo(o.inFile).absoluteFilePath();
    form.LastDir = form.FileName.isEmpty() ? QString() : QFileInfo(form.FileName).path() + u'/';
    form.caption = form.FileName;
    QuietWindow window(report, o.report);
    window.setCaption(form.FileName);

    CommandContext ctx(edit, dialogs, clipboard, AppSettings(store, startUp.RegKeyAppName), logger,
                       clock, launcher, menu, util, form, window, startUp);
    ctx.fileDialogs = &fileDialogs;
    ctx.run = [&](const QString& item) {
        if (const MenuItemDecl* d = findMenuItem(item))
            runMenuItem(*d, ctx);
    };
    const auto runSteps = [&] {
        for (const BatchStep& step : o.steps) {
            dialogs.setAnswers(step.answers);
            if (step.hasClipboard)
                clipboard.setText(step.clipboard);
            if (step.hasSelect) {
                edit.setSelStart(step.selStart);
                edit.setSelLength(step.selLength);
            }
            runMenuItem(*findByBatchName(step.item), ctx);
            if (!dialogs.error().isEmpty())
                return;
        }
    };
    if (withFullPorts)
        withFullPorts(ctx, runSteps);
    else
        runSteps();
    if (!dialogs.error().isEmpty()) {
        writeLine(err, QStringLiteral("Editor: ") + dialogs.error());
        return 2;
    }

    for (const QString& line : reportLines)
        writeLine(err, line);
    if (o.report) {
        writeLine(err,
                  QStringLiteral("selection: %1,%2").arg(edit.selStart()).arg(edit.selLength()));
        writeLine(err, QStringLiteral("clipboard: ") + escapeReport(clipboard.text()));
    }
    for (const QString& e : errors.lines)
        writeLine(err, e);

    QString writeError;
    // A UTF-8 file with CR LF breaks is the model as read: unchanged, it is written back as it
    // is, without another pass over it.
    const bool asRead =
        !edit.changed() && format.encoding == Encoding::Utf8 && format.lineBreak == LineBreak::CrLf;
    const QByteArray result = asRead ? edit.utf8() : encodeModel(edit.utf8(), format);
    if (!writeOutput(o.outFile, result, out, writeError)) {
        writeLine(err, QStringLiteral("Editor: ") + writeError);
        return 1;
    }
    return errors.commandErrors || ctx.commandFailed ? 1 : 0;
}

} // namespace

int runBatch(const BatchOptions& o, const StartUpState& startUp, FILE* out, FILE* err,
             const WithFullPorts& withFullPorts) {
    // The output is written only once every step has run, so running out of memory on the way
    // leaves nothing behind.
    try {
        return runBatchSteps(o, startUp, out, err, withFullPorts);
    } catch (const std::bad_alloc&) {
        writeLine(err, QStringLiteral("Editor: out of memory: the document is too large for the "
                                      "memory of this machine; nothing was written"));
        return 2;
    }
}

} // namespace ed
