#pragma once
// Time limits of a DevTools session.

namespace ed::web {

struct CdpOptions {
    int callTimeoutMs = 10000;     // every protocol call
    int discoveryTimeoutMs = 3000; // every HTTP request to the endpoint
    int frameAttachWaitMs = 2000;  // a frame of another site whose session is not attached yet
};

} // namespace ed::web
