#pragma once
// Runs menu commands on a file without a window:
//   Editor --apply ITEM [--answer TEXT]... [--select START,LENGTH] [--clipboard TEXT]
//          [--report] [--out FILE] [FILE]
// Every prompt takes the next --answer; the result goes to stdout or --out in the input's own
// encoding and line-break style.

#include <QString>
#include <QStringList>

#include <cstdio>
#include <functional>

namespace ed {

struct CommandContext;
struct StartUpState;

struct BatchStep {
    QString item;
    QStringList answers;
    bool hasSelect = false;
    int selStart = 0;
    int selLength = 0;
    bool hasClipboard = false;
    QString clipboard;
};

struct BatchOptions {
    std::vector<BatchStep> steps;
    bool report = false;
    QString outFile;
    QString inFile; // "" or "-" = standard input
};

// Parses the arguments after the program name. On a usage error returns false with `error` set.
bool parseBatchArguments(const QStringList& args, BatchOptions& options, QString& error);

// Whether the arguments ask for Send Email's own form (--field ...) rather than menu commands.
bool isSendMailBatch(const QStringList& args);

// True when a step's command is one that Editor leaves to Editor-full (browser, mail).
bool needsFullProgram(const BatchOptions& options);

// "\r" and "\n" written as \r and \n, a backslash as \\.
QString escapeReport(const QString& text);

// Runs `steps` with the ports that only Editor-full has (the browser) set on `ctx`.
using WithFullPorts = std::function<void(CommandContext& ctx, const std::function<void()>& steps)>;

// Runs the steps. Returns the exit status: 0 ran, 1 a handler logged an error, 2 usage error.
int runBatch(const BatchOptions& options, const StartUpState& startUp, FILE* out, FILE* err,
             const WithFullPorts& withFullPorts = {});

// Prints every command the batch runner accepts with its caption.
void printCommandList(FILE* out);

} // namespace ed
