#pragma once
// Commands that can also run on the bytes of a whole UTF-8 document instead of the decoded model.
// Such a version asks the same questions as the command (through the same context), and gives
// exactly the bytes that decoding, the command and encoding give; it is only used on a document
// without a selection.

#include "app/Command.h"
#include "util/Utf8Document.h"

namespace ed {

using Utf8Handler = void (*)(CommandContext& ctx, Utf8Document& doc);

struct Utf8Command {
    Utf8Handler run;
    bool usesLines; // works line by line (the document's line break is wanted up front)
};

// The bytes version of the command whose handler is `handler`; nullptr when it has none.
const Utf8Command* findUtf8Command(Handler handler);

} // namespace ed
