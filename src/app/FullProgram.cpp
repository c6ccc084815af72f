#include "app/FullProgram.h"

#include "app/HugePageMalloc.h"

#include <QByteArray>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace ed {

int startFullProgram(const char* programPath, char* const* argv) {
    // EDITOR_FULL_PROGRAM is Editor-full's path relative to Editor's folder.
    const QByteArray full =
        QFileInfo(QString::fromLocal8Bit(programPath)).absolutePath().toLocal8Bit() + '/' +
        EDITOR_FULL_PROGRAM;
    std::vector<char*> args{const_cast<char*>(programPath)};
    for (char* const* a = argv + 1; *a; ++a)
        args.push_back(*a);
    args.push_back(nullptr);
    std::fflush(nullptr);
    askHugePageMalloc();
    ::execv(full.constData(), args.data());
    std::fprintf(stderr,
                 "Editor: cannot start %s (the window, browser and mail part of Editor): %s\n",
                 full.constData(), std::strerror(errno));
    return 2;
}

} // namespace ed
