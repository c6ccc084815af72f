#include "web/TopLevelDomains.h"

#include <QString>

#include <libpsl.h>

#include <memory>

namespace ed::web {

namespace {

const psl_ctx_t* suffixList() {
    // The newer of the system's list and the built-in one, loaded once.
    static const std::unique_ptr<psl_ctx_t, decltype(&psl_free)> latest(psl_latest(nullptr),
                                                                        &psl_free);
    return latest ? latest.get() : psl_builtin();
}

} // namespace

bool isTopLevelDomain(QStringView label) {
    if (label.isEmpty() || label.contains(u'.'))
        return false;
    const psl_ctx_t* list = suffixList();
    if (!list)
        return false;
    const QByteArray utf8 = label.toString().toLower().toUtf8();
    // Without the "*" rule an unknown label is not a suffix at all.
    return psl_is_public_suffix2(list, utf8.constData(), PSL_TYPE_ANY | PSL_TYPE_NO_STAR_RULE) != 0;
}

} // namespace ed::web
