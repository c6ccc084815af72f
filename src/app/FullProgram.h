#pragma once
// Editor holds the text commands only; the window and the commands that need the browser or
// mail are Editor-full's. This hands the whole command line over to Editor-full.

namespace ed {

// Replaces this process with Editor-full, given the same arguments; argv[0] becomes this
// program's full path (`programPath`), which names the installation (its settings) and the
// program to the desktop. Returns only when Editor-full cannot be started, with the exit status
// after saying why on standard error.
int startFullProgram(const char* programPath, char* const* argv);

} // namespace ed
