#pragma once
// Prompts of the commands whose default is always the remembered answer, never the selection:
// the answer comes back unsaved, so a command that checks it first saves only a good one.

#include "app/Command.h"

#include <QString>

#include <optional>

namespace ed {

// Asks with the remembered answer of `key` in section "frmEdit" (else `fallback`) as default.
// Nothing when the answer is "" (which Cancel gives too).
std::optional<QString> askRemembered(CommandContext& ctx, const QString& prompt,
                                     const QString& title, const QString& key,
                                     const QString& fallback);

// Remembers `answer` under `key` in section "frmEdit", exactly as typed.
void rememberAnswer(CommandContext& ctx, const QString& key, const QString& answer);

// The whole number `text` holds, spaces around it allowed; nothing when it holds anything else
// or lies outside [min, max].
std::optional<qint64> wholeNumber(const QString& text, qint64 min, qint64 max);

} // namespace ed
