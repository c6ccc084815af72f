#include "app/Trap.h"

#include <new>

namespace ed {

QString describe(const std::exception& e) {
    if (dynamic_cast<const std::bad_alloc*>(&e))
        return QStringLiteral("Out of memory");
    return QString::fromUtf8(e.what());
}

} // namespace ed
