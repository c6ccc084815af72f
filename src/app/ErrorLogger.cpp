#include "app/ErrorLogger.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace ed {

QString localeShortDate(const QDate& date) {
    return QLocale::system().toString(date, QLocale::ShortFormat);
}

QString localeTime(const QTime& time) {
    // The long time form carries seconds; drop its time-zone part.
    QString format = QLocale::system().timeFormat(QLocale::LongFormat);
    format.remove(QLatin1Char('t'));
    return QLocale::system().toString(time, format.trimmed());
}

namespace {
// Appends `bytes` to the log, never through a symbolic link (one planted at the log's name would
// make the program write wherever it points) and creating the log readable by its owner only.
// A link is reported on standard error, where someone running the program can see it.
bool appendToLog(const QString& path, const QByteArray& bytes) {
    const int fd = ::open(QFile::encodeName(path).constData(),
                          O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) {
        if (errno == ELOOP)
            std::fprintf(stderr,
                         "Editor: the error log %s is a symbolic link; nothing was "
                         "written to it\n",
                         QFile::encodeName(path).constData());
        return false;
    }
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + written, size_t(bytes.size() - written));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        written += n;
    }
    return ::close(fd) == 0 && written == bytes.size();
}
} // namespace

ErrorLogger::ErrorLogger(const Clock& clock, Launcher& launcher, const bool& startUpComplete,
                         QString appName)
    : clock_(clock), launcher_(launcher), startUpComplete_(startUpComplete),
      appName_(std::move(appName)) {}

QString ErrorLogger::logFilePath() {
    QString folder = QString::fromLocal8Bit(qgetenv("LOGFILES"));
    if (!folder.isEmpty() && !folder.endsWith(u'/'))
        folder += u'/';
    return folder + QStringLiteral("ErrorLog.txt");
}

QString ErrorLogger::record(const QString& appName, const QDateTime& when, const QString& module,
                            const QString& location) {
    return QStringList{QStringLiteral("Application=") + appName,
                       localeShortDate(when.date()),
                       localeTime(when.time()),
                       QStringLiteral("Module=") + module,
                       QStringLiteral("ErrLoc=") + location,
                       QStringLiteral("ErrDesc="),
                       QStringLiteral("Err#=")}
        .join(QStringLiteral(": "));
}

void ErrorLogger::logError(const QString& module, const QString& location, const QString& detail) {
    if (hooks_.observer)
        hooks_.observer(module, location, detail);
    const QString tail = QStringLiteral("\r\nError was logged in ErrorLog.txt\r\nOpen Error LOG?");
    const QDateTime now = clock_.now();
    const QString path = logFilePath();
    const QString line = record(appName_, now, module, location);
    if (!appendToLog(path, (line + QStringLiteral("\r\n")).toUtf8())) {
        // The logger's own trap: leave no window disabled, show nothing, write nothing more.
        if (hooks_.enableAllFormControls)
            hooks_.enableAllFormControls();
        return;
    }
    if (startUpComplete_ || !dialogs_)
        return;
    const Answer a = dialogs_->messageBox(line + tail, QStringLiteral("An error occurred!"),
                                          Buttons::YesNoCancel, Icon::Critical);
    if (a == Answer::Yes) {
        if (!launcher_.open(QFileInfo(path).absoluteFilePath()) && hooks_.enableAllFormControls)
            hooks_.enableAllFormControls();
    } else if (a == Answer::Cancel) {
        if (hooks_.terminate)
            hooks_.terminate();
        else
            std::_Exit(1);
    }
}

} // namespace ed
