#pragma once
// What may be handed to another program as a target: an address with one of the protocols the
// program knows, or a local file or folder turned into a file address. A target never begins
// with "-", so no text from a document, a prompt, a setting or a page can arrive as a switch.

#include <QString>
#include <QUrl>

#include <array>

namespace ed {

// "http://", "https://", "ftp://", "file:///", "mailto:" at indices 0 to 4.
const std::array<QString, 5>& protocolPrefixes();

// True when `text` begins with one of the protocol prefixes (in any case).
bool isProtocolAddress(const QString& text);

// The address the desktop is handed for `target`: the target itself when it is a protocol
// address, else an existing local file or folder as a file address; an invalid QUrl (refused)
// for anything else.
QUrl desktopAddress(const QString& target);

} // namespace ed
