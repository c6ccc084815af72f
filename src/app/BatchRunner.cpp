#include "app/BatchRunner.h"

#include "app/BatchPorts.h"
#include "app/ErrorLogger.h"
#include "app/StartUp.h"
#include "app/SystemPorts.h"
#include "app/TextBuffer.h"
#include "editor/DocumentIO.h"
#include "editor/MenuTable.h"
#include "util/Utility.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace ed {

QString escapeReport(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (QChar c : text) {
        if (c == u'\\')
            out += QStringLiteral("\\\\");
        else if (c == u'\r')
            out += QStringLiteral("\\r");
        else if (c == u'\n')
            out += QStringLiteral("\\n");
        else
            out += c;
    }
    return out;
}

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

} // namespace

int runBatch(const BatchOptions& o, const StartUpState& startUp, FILE* out, FILE* err) {
    // Load the document the way the window does.
    LoadedDocument doc;
    QString loadError;
    if (o.inFile.isEmpty() || o.inFile == u"-") {
        QFile in;
        if (!in.open(stdin, QIODevice::ReadOnly)) {
            writeLine(err, QStringLiteral("Editor: cannot read standard input"));
            return 2;
        }
        doc = decodeDocument(in.readAll(), QString());
    } else if (!readDocumentFile(o.inFile, doc, loadError)) {
        writeLine(err, QStringLiteral("Editor: ") + loadError);
        return 2;
    }

    QStringList reportLines;
    const ReportFn report = [&](const QString& line) {
        if (o.report)
            reportLines << line;
    };
    QStringList errors;
    SystemClock clock;
    ProcessLauncher launcher;
    bool complete = true;
    ErrorLogger logger(clock, launcher, complete, startUp.exeName);
    logger.hooks().observer = [&](const QString& module, const QString& location,
                                  const QString& detail) {
        errors << QStringLiteral("Editor: error in %1 (%2)%3")
                      .arg(location, module, detail.isEmpty() ? QString() : ": " + detail);
    };
    SettingsStore store(&logger);
    TextBuffer edit(doc.text);
    ScriptedDialogs dialogs(report);
    MemoryClipboard clipboard;
    DeclaredMenuState menu;
    Utility util(logger);
    FormState form;
    form.FileName = o.inFile.isEmpty() || o.inFile == u"-"
                        ? QString()
                        : QFileInfo(o.inFile).absoluteFilePath();
    form.LastDir = form.FileName.isEmpty() ? QString() : QFileInfo(form.FileName).path() + u'/';
    form.caption = form.FileName;
    QuietWindow window(report);
    window.setCaption(form.FileName);

    CommandContext ctx(edit,   dialogs, clipboard, AppSettings(store, startUp.RegKeyAppName),
                       logger, clock,   launcher,  menu,
                       util,   form,    window,    startUp);
    ctx.run = [&](const QString& item) {
        if (const MenuItemDecl* d = findMenuItem(item))
            runMenuItem(*d, ctx);
    };

    for (const BatchStep& step : o.steps) {
        dialogs.setAnswers(step.answers);
        if (step.hasClipboard)
            clipboard.setText(step.clipboard);
        if (step.hasSelect) {
            edit.setSelStart(step.selStart);
            edit.setSelLength(step.selLength);
        }
        runMenuItem(*findByBatchName(step.item), ctx);
        if (!dialogs.error().isEmpty()) {
            writeLine(err, QStringLiteral("Editor: ") + dialogs.error());
            return 2;
        }
    }

    for (const QString& line : reportLines)
        writeLine(err, line);
    if (o.report) {
        writeLine(err, QStringLiteral("selection: %1,%2").arg(edit.selStart()).arg(edit.selLength()));
        writeLine(err, QStringLiteral("clipboard: ") + escapeReport(clipboard.text()));
    }
    for (const QString& e : errors)
        writeLine(err, e);

    const QByteArray bytes = encodeDocument(edit.text(), doc);
    if (o.outFile.isEmpty()) {
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), out);
        std::fflush(out);
    } else {
        QSaveFile f(o.outFile);
        if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size() || !f.commit()) {
            writeLine(err, QStringLiteral("Editor: cannot write %1: %2").arg(o.outFile, f.errorString()));
            return 1;
        }
    }
    return errors.isEmpty() ? 0 : 1;
}

} // namespace ed
