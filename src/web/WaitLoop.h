#pragma once
// Waiting without freezing: the event loop keeps running (window, timers, browser messages)
// until a condition holds or a time cap passes. Waits nest: a handler that runs inside one wait
// may start another, and each ends on its own condition.

#include <functional>

namespace ed::web {

// Runs the event loop until `done()` is true (true) or `capMs` milliseconds passed (false).
// `done` is checked after every batch of events, and every `pollMs` when that is not 0 (for
// conditions that no event announces).
bool waitUntil(const std::function<bool()>& done, int capMs, int pollMs = 0);

} // namespace ed::web
