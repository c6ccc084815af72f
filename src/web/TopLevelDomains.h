#pragma once
// Whether a domain label is a real top-level domain, by the public suffix list the browsers use
// (the system's copy when it is installed, else the one built into the library).

#include <QStringView>

namespace ed::web {

// "com", "uk", "museum", "рф" and "xn--p1ai" are; "example", "txt" and "local" are not. Case
// does not matter; a trailing dot is not allowed.
bool isTopLevelDomain(QStringView label);

} // namespace ed::web
