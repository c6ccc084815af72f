#pragma once
// Web > Send Email: opens the send-mail form on the editor's text or its selection.

#include "app/Command.h"

namespace ed {

void mnuSendAsEmail_Click(CommandContext& ctx);

} // namespace ed
