#pragma once
// Commands that drop whole lines: lines containing or not containing a text, numeric lines that
// fail a comparison, and repeated lines.

#include "app/Command.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace ed {

void mnuRemoveLinesContainingText_Click(CommandContext& ctx);
void mnuRemoveLinesNotContainingText_Click(CommandContext& ctx);
void mnuByNumericValue_Click(CommandContext& ctx);
void mnuRemoveRepeats_Click(CommandContext& ctx);

// The value of a number written as optional spaces, an optional sign, digits with an optional
// decimal fraction (".5" and "5." count) and optional spaces, rounded to the nearest 32-bit
// integer with a half going to the even neighbour. Nothing when `s` is not such a number;
// throws RuntimeError("Overflow") when the rounded value does not fit.
std::optional<qint32> roundedInt32(QStringView s);

// Lower-cases text exactly as QString::toLower does, into one buffer reused from call to call.
// The view returned stays valid until the next call.
class LowerCaser {
public:
    QStringView operator()(QStringView s);

private:
    QString buffer_;
};

} // namespace ed
