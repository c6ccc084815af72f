#pragma once
// How a web command reaches the browser: a fresh session attached to the active browser window,
// never starting one, and the status-bar line that says why nothing came when none answers.

#include "app/Command.h"
#include "web/BrowserPort.h"
#include "web/cIEObject.h"

#include <memory>

namespace ed {

inline QString noConnectionMessage() {
    return QStringLiteral("no browser found: this window has no browser connection");
}

// Tells the user why nothing came from the browser.
inline void reportNoBrowser(CommandContext& ctx) {
    ctx.window.showStatus(ctx.browser ? noBrowserMessage(*ctx.browser) : noConnectionMessage());
}

// Null when there is no browser connection at all; not initialized when no browser answers.
// Either way the user is told, and every operation of the session then gives its empty result.
inline std::unique_ptr<web::cIEObject> openSession(CommandContext& ctx) {
    if (!ctx.browser) {
        reportNoBrowser(ctx);
        return nullptr;
    }
    std::unique_ptr<web::cIEObject> ie = ctx.browser->createSession();
    ie->InitializeObject(ie->GetActiveBrowser(false));
    if (!ie->Initialized())
        reportNoBrowser(ctx);
    return ie;
}

} // namespace ed
