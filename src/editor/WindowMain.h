#pragma once
#include <QStringList>

namespace ed {
// Starts the program with its window: start-up, the window's load, the event loop.
int runWindowApp(int argc, char** argv, const QStringList& args);
} // namespace ed
