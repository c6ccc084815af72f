// Editor-full: the window of Editor, and the commands of the batch runner that need the browser
// or mail. Editor starts it in its own place with the same arguments and its own path as the
// program's name (argv[0]), which names the installation's settings as Editor's would.

#include "app/BatchRunner.h"
#include "app/Command.h"
#include "app/HugePageMalloc.h"
#include "app/SendMailBatch.h"
#include "app/StartUp.h"
#include "editor/WindowMain.h"
#include "mail/CurlTransport.h"
#include "web/BrowserPort.h"

#include <QCoreApplication>
#include <QDir>
#include <QStringList>

#include <cstdio>

int main(int argc, char** argv) {
    ed::forgetHugePageMalloc();
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    const QString program = QString::fromLocal8Bit(argv[0]);
    if (!QDir::isAbsolutePath(program)) {
        std::fprintf(stderr, "Editor-full: start Editor, not Editor-full\n");
        return 2;
    }
    if (!args.contains(QStringLiteral("--apply")))
        return ed::runWindowApp(argc, argv, program, args);

    QCoreApplication app(argc, argv);
    ed::StartUpState startUp;
    ed::runStartUp(startUp, program, {});
    if (ed::isSendMailBatch(args)) {
        ed::mail::CurlTransport transport;
        return ed::runSendMailBatch(args, transport, stderr);
    }
    ed::BatchOptions options;
    QString error;
    if (!ed::parseBatchArguments(args, options, error)) {
        std::fprintf(stderr, "Editor: %s\n", error.toLocal8Bit().constData());
        return 2;
    }
    // The browser at the endpoint of the settings, for the Load From IE and Web commands.
    const auto withBrowser = [](ed::CommandContext& ctx, const std::function<void()>& steps) {
        ed::web::DevToolsBrowserPort browser(ctx.settings, ctx.log, ctx.clipboard, ctx.launcher);
        ctx.browser = &browser;
        steps();
        ctx.browser = nullptr;
    };
    return ed::runBatch(options, startUp, stdout, stderr, withBrowser);
}
