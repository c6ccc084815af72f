#include "textcmds/Utf8Commands.h"

#include "textcmds/Case.h"
#include "textcmds/PrefixSuffix.h"
#include "textcmds/Whitespace.h"

#include <utility>

namespace ed {

const Utf8Command* findUtf8Command(Handler handler) {
    static const std::pair<Handler, Utf8Command> kVersions[] = {
        {mnuConvertToUpperCase_Click, {mnuConvertToUpperCase_Utf8, false}},
        {mnuConvertToLowerCase_Click, {mnuConvertToLowerCase_Utf8, false}},
        {mnuRemoveAllSpaces_Click, {mnuRemoveAllSpaces_Utf8, false}},
        {mnuTrimLeadingAndTrailingSpaces_Click, {mnuTrimLeadingAndTrailingSpaces_Utf8, true}},
        {mnuAddPrefix_Click, {mnuAddPrefix_Utf8, true}},
        {mnuAddSuffix_Click, {mnuAddSuffix_Utf8, true}},
    };
    if (!handler)
        return nullptr;
    for (const auto& [model, bytes] : kVersions)
        if (model == handler)
            return &bytes;
    return nullptr;
}

} // namespace ed
