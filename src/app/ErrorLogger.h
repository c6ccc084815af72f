#pragma once
// The error log: one record per error appended to "ErrorLog.txt" in the folder named by the
// environment variable LOGFILES. While the program is still starting, the user is also asked
// whether to open the log (Yes), carry on (No) or end the program at once (Cancel).

#include "app/Ports.h"

#include <functional>

namespace ed {

class ErrorLogger : public Logger {
public:
    struct Hooks {
        // Ends the program at once, no handlers run. Default: std::_Exit.
        std::function<void()> terminate;
        // Switches every control of every window back on. Default: nothing.
        std::function<void()> enableAllFormControls;
        // Sees every error with its detail (the batch runner prints it). Default: nothing.
        std::function<void(const QString& module, const QString& location, const QString& detail)>
            observer;
    };

    ErrorLogger(const Clock& clock, Launcher& launcher, const bool& startUpComplete,
                QString appName = QStringLiteral("Editor"));

    void setDialogs(Dialogs* dialogs) { dialogs_ = dialogs; }
    Hooks& hooks() { return hooks_; }

    void logError(const QString& module, const QString& location,
                  const QString& detail = QString()) override;

    // The log file as LOGFILES names it now ("ErrorLog.txt" alone when unset).
    static QString logFilePath();
    // The seven-field record for an error at `when`.
    static QString record(const QString& appName, const QDateTime& when, const QString& module,
                          const QString& location);

private:
    const Clock& clock_;
    Launcher& launcher_;
    const bool& startUpComplete_;
    QString appName_;
    Dialogs* dialogs_ = nullptr;
    Hooks hooks_;
};

// Date and time as the system locale writes them in short form (time with seconds).
QString localeShortDate(const QDate& date);
QString localeTime(const QTime& time);

} // namespace ed
