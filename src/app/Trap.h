#pragma once
// The error trap every procedure arms. A procedure wraps its body in `trapped(...)`: any
// run-time error inside it is handed to the logger with the procedure's module and label, and the
// procedure returns its fallback result. Nothing is raised to a caller.

#include "app/Ports.h"

#include <stdexcept>
#include <type_traits>
#include <utility>

namespace ed {

// A run-time error of the program (overflow, type mismatch, bad file name, ...).
class RuntimeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Returned by the traps so callers can tell a logged failure apart from a normal return.
QString describe(const std::exception& e);

template <class F>
bool trapped(Logger& log, const char* module, const QString& label, F&& body) {
    try {
        std::forward<F>(body)();
        return true;
    } catch (const std::exception& e) {
        log.logError(QString::fromLatin1(module), label, describe(e));
        return false;
    }
}

template <class R, class F>
R trappedValue(Logger& log, const char* module, const QString& label, R fallback, F&& body) {
    try {
        return std::forward<F>(body)();
    } catch (const std::exception& e) {
        log.logError(QString::fromLatin1(module), label, describe(e));
        return fallback;
    }
}

} // namespace ed
