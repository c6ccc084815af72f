#include "textcmds/Utf8Commands.h"

#include "textcmds/Case.h"
#include "textcmds/LineFilters.h"
#include "textcmds/PrefixSuffix.h"
#include "textcmds/Whitespace.h"

#include <utility>

namespace ed {

Utf8Handler findUtf8Handler(Handler handler) {
    static const std::pair<Handler, Utf8Handler> kVersions[] = {
        {mnuConvertToUpperCase_Click, mnuConvertToUpperCase_Utf8},
        {mnuConvertToLowerCase_Click, mnuConvertToLowerCase_Utf8},
        {mnuRemoveAllSpaces_Click, mnuRemoveAllSpaces_Utf8},
        {mnuAddPrefix_Click, mnuAddPrefix_Utf8},
        {mnuAddSuffix_Click, mnuAddSuffix_Utf8},
        {mnuRemoveLinesContainingText_Click, mnuRemoveLinesContainingText_Utf8},
        {mnuRemoveLinesNotContainingText_Click, mnuRemoveLinesNotContainingText_Utf8},
    };
    if (!handler)
        return nullptr;
    for (const auto& [model, bytes] : kVersions)
        if (model == handler)
            return bytes;
    return nullptr;
}

} // namespace ed
