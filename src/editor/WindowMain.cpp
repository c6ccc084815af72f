#include "editor/WindowMain.h"

#include "app/StartUp.h"
#include "app/SystemPorts.h"
#include "editor/EditorWindow.h"

#include <QApplication>
#include <QDesktopServices>

#include <cstdio>

namespace ed {

int runWindowApp(int argc, char** argv, const QString& program, const QStringList& args) {
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        std::fprintf(stderr,
                     "Editor: no display to open the window on; run a command without one, e.g. "
                     "Editor --apply AddPrefix --answer '> ' FILE (Editor --list shows all)\n");
        return 2;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Editor"));
    QApplication::setApplicationVersion(QStringLiteral(EDITOR_VERSION));
    ProcessLauncher::setDesktopOpener(
        [](const QUrl& address) { return QDesktopServices::openUrl(address); });
    static StartUpState startUp;
    runStartUp(startUp, program, args);
    EditorWindow window(startUp);
    window.load();
    return app.exec();
}

} // namespace ed
