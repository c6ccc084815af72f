#pragma once
// Tools > Convert: the text as the hexadecimal digits of its UTF-8 bytes and back, and a box
// that names the code points of the selected characters.

#include "app/Command.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace ed {

void mnuAsciiToHex_Click(CommandContext& ctx);
void mnuHexToAscii_Click(CommandContext& ctx);
void mnuShowASCII_Click(CommandContext& ctx);

// "48 69" for "Hi": two upper-case digits a byte, one space between bytes.
QByteArray bytesToHex(QByteArrayView bytes);
// The bytes of hex digit pairs (spaces, tabs, CR and LF anywhere, "0x" or "0X" before a pair);
// nothing when the text holds anything else, an odd digit, or bytes that are not UTF-8.
std::optional<QByteArray> hexToBytes(QByteArrayView hex);

} // namespace ed
