#include "app/ErrorLogger.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <cstdlib>

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
    return QStringList{QStringLiteral("Application=") + appName, localeShortDate(when.date()),
                       localeTime(when.time()), QStringLiteral("Module=") + module,
                       QStringLiteral("ErrLoc=") + location, QStringLiteral("ErrDesc="),
                       QStringLiteral("Err#=")}
        .join(QStringLiteral(": "));
}

void ErrorLogger::logError(const QString& module, const QString& location,
                           const QString& detail) {
    if (hooks_.observer)
        hooks_.observer(module, location, detail);
    const QString tail = QStringLiteral("\r\nError was logged in ErrorLog.txt\r\nOpen Error LOG?");
    const QDateTime now = clock_.now();
    const QString path = logFilePath();
    const QString line = record(appName_, now, module, location);
    QFile f(path);
    bool ok = f.open(QIODevice::WriteOnly | QIODevice::Append);
    if (ok) {
        const QByteArray bytes = (line + QStringLiteral("\r\n")).toUtf8();
        ok = f.write(bytes) == bytes.size();
        f.close();
        ok = ok && f.error() == QFileDevice::NoError;
    }
    if (!ok) {
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
