#pragma once
// The endpoint's HTTP side: /json/version tells whether a DevTools browser answers there,
// /json/list names its targets. Every request has a time limit.

#include "web/BrowserTypes.h"
#include "web/Endpoint.h"

#include <QJsonDocument>

#include <optional>
#include <vector>

namespace ed::web {

// GET of a JSON document from a loopback endpoint. Returns nothing when no program listens
// there; throws RuntimeError for anything else that goes wrong (time limit, HTTP error, not
// JSON).
std::optional<QJsonDocument> getJson(const Endpoint& endpoint, const QString& path, int timeoutMs);

// The page targets of the endpoint in the endpoint's order; nothing when no browser answers.
// Targets whose WebSocket address is not on this computer are refused (RuntimeError).
std::optional<std::vector<BrowserHandle>> listPages(const Endpoint& endpoint, int timeoutMs);

// True when a DevTools browser answers at the endpoint.
bool endpointAnswers(const Endpoint& endpoint, int timeoutMs);

} // namespace ed::web
