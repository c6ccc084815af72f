#pragma once
#include <QStringList>

namespace ed {
// Starts the program with its window: start-up, the window's load, the event loop. `program` is
// the full path of Editor, which names the installation's settings.
int runWindowApp(int argc, char** argv, const QString& program, const QStringList& args);
} // namespace ed
