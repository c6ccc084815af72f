#pragma once
// Tools > ReOrder: the content of one kind of tag, front and rear of each line switched at a
// marker, a code array renumbered, and lines joined into one stream or a stream cut into lines.

#include "app/Command.h"

#include <QByteArray>
#include <QByteArrayView>

namespace ed {

void mnuGetHtmlTags_Click(CommandContext& ctx);
void mnuSwitchRearToFront_Click(CommandContext& ctx);
void mnuReNumberArrayElements_Click(CommandContext& ctx);
void mnuTurnToStream_Click(CommandContext& ctx);
void mnuDelimitRunningText_Click(CommandContext& ctx);

// The lines of `text` (split at CR LF, a last empty piece dropped) joined with `delimiter`.
QByteArray joinLines(QByteArrayView text, QByteArrayView delimiter);
// The pieces of `text` between the occurrences of `delimiter` (not empty), each followed by CR LF.
QByteArray splitAt(QByteArrayView text, QByteArrayView delimiter);
// The code array of Code Array Of Word List renumbered from `first`.
QByteArray renumberArray(QByteArrayView text, qint64 first);

} // namespace ed
