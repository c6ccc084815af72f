#pragma once
// What the browser session hands around: the browser window (a page target of the endpoint)
// and a document in it (the page's own or one of its frames).

#include <QString>

namespace ed::web {

// A page target of the endpoint: an open browser tab or window. Empty when there is none.
struct BrowserHandle {
    QString targetId;
    QString title;
    QString url;
    QString webSocketUrl;
    bool isEmpty() const { return targetId.isEmpty(); }
};

// The document of one frame of the attached page; the top document is the main frame's.
// Empty means "the browser's current document" wherever a document is taken.
struct DocumentRef {
    QString frameId;
    bool isEmpty() const { return frameId.isEmpty(); }
    bool operator==(const DocumentRef&) const = default;
};

} // namespace ed::web
