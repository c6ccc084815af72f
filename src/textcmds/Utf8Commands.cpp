#include "textcmds/Utf8Commands.h"

#include "textcmds/LineFilters.h"

#include <utility>

namespace ed {

const Utf8Command* findUtf8Command(Handler handler) {
    static const std::pair<Handler, Utf8Command> kVersions[] = {
        {mnuByNumericValue_Click, {mnuByNumericValue_Utf8, true}},
        {mnuRemoveLinesContainingText_Click, {mnuRemoveLinesContainingText_Utf8, true}},
        {mnuRemoveLinesNotContainingText_Click, {mnuRemoveLinesNotContainingText_Utf8, true}},
    };
    if (!handler)
        return nullptr;
    for (const auto& [model, bytes] : kVersions)
        if (model == handler)
            return &bytes;
    return nullptr;
}

} // namespace ed
