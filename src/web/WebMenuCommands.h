#pragma once
// The Web menu's Navigate to, Search Google and Save web page: the browser at the configured
// endpoint is sent somewhere (started first when none answers) or its page is saved to a file.

#include "app/Command.h"

#include <QString>

namespace ed {

void mnuNaviagetTo_Click(CommandContext& ctx);
void mnuSearchGoogle_Click(CommandContext& ctx);
void mnuSaveWebPage_Click(CommandContext& ctx);

// The search address: `pattern` with every "%s" replaced by `query` percent-encoded as UTF-8.
QString webSearchAddress(const QString& pattern, const QString& query);

// The setting that holds the search address (section "frmEdit") and its default.
inline QString webSearchUrlKey() {
    return QStringLiteral("Web Search Url");
}
inline QString defaultWebSearchUrl() {
    return QStringLiteral("https://www.google.com/search?q=%s");
}

} // namespace ed
