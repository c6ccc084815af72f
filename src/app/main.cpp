// Editor: a text workbench. With --apply it runs menu commands on a file without a window;
// otherwise it opens the editor window on the file named on the command line.
// This program runs the text commands itself and needs Qt Core only; the window, and the
// commands that need the browser or mail, are Editor-full's, which it starts in its place.

#include "app/BatchRunner.h"
#include "app/FullProgram.h"
#include "app/SettingsStore.h"
#include "app/StartUp.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>
#include <vector>

namespace {

const char* kUsage =
    "Usage:\n"
    "  Editor [FILE[~SEARCH]]        open the editor window on FILE, optionally searching\n"
    "  Editor --apply ITEM [--answer TEXT]... [--select START,LENGTH] [--clipboard TEXT]\n"
    "         [--apply ITEM ...] [--report] [--out FILE] [FILE]\n"
    "                                run menu commands on FILE (or standard input) without a\n"
    "                                window and print the resulting document\n"
    "  Editor --apply SendAsEmail --field NAME=VALUE... [--report] [FILE]\n"
    "                                send FILE as the body of one e-mail per address; fields:\n"
    "                                to (a file of addresses or a,b,c), subject, from, server\n"
    "                                (host:port), security (starttls, tls, none), user,\n"
    "                                attachment, timeout (seconds); the password comes from\n"
    "                                EDITOR_SMTP_PASSWORD. Exit status 1 when any address failed\n"
    "  Editor --list                 the commands --apply accepts, with their captions\n"
    "  Editor --settings-path        the file that holds this installation's settings\n"
    "  Editor --version | --help\n";

bool hasOption(const QStringList& args, const char* opt) {
    return args.contains(QString::fromLatin1(opt));
}

} // namespace

int main(int argc, char** argv) {
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);

    const bool batch = hasOption(args, "--apply");
    if (!batch) {
        if (hasOption(args, "--help") || hasOption(args, "-h")) {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (hasOption(args, "--version")) {
            std::printf("Editor %s\n", EDITOR_VERSION);
            return 0;
        }
        if (hasOption(args, "--list")) {
            ed::printCommandList(stdout);
            return 0;
        }
    }

    const bool window = !batch && !hasOption(args, "--settings-path");
    if (window) {
        for (const QString& a : args) {
            if (a.startsWith(u"--")) {
                std::fprintf(stderr, "Editor: unknown option %s\n%s", a.toLocal8Bit().constData(),
                             kUsage);
                return 2;
            }
        }
    }

    // Editor-full gets the arguments as they came, before the application takes its own.
    const std::vector<char*> given(argv, argv + argc + 1);
    QCoreApplication app(argc, argv);
    const QByteArray program = QCoreApplication::applicationFilePath().toLocal8Bit();
    if (window || ed::isSendMailBatch(args))
        return ed::startFullProgram(program.constData(), given.data());

    ed::StartUpState startUp;
    ed::runStartUp(startUp, QCoreApplication::applicationFilePath(), {});
    if (!batch) {
        std::printf("%s\n",
                    ed::SettingsStore().filePath(startUp.RegKeyAppName).toLocal8Bit().constData());
        return 0;
    }
    ed::BatchOptions options;
    QString error;
    if (!ed::parseBatchArguments(args, options, error)) {
        std::fprintf(stderr, "Editor: %s\n", error.toLocal8Bit().constData());
        return 2;
    }
    if (ed::needsFullProgram(options))
        return ed::startFullProgram(program.constData(), given.data());
    return ed::runBatch(options, startUp, stdout, stderr);
}
