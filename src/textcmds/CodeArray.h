#pragma once
// Code Array Of Word List: turns a list of words, one per line, into source lines that declare,
// size and fill a string array.

#include "app/Command.h"

#include <QString>
#include <QStringView>

namespace ed {

void mnuCreateCodeArrayOfWordList_Click(CommandContext& ctx);

// The generated code for the array `name` over the lines of `text`. Empty lines are skipped and
// use no index; the words go in as they stand (quotes are not doubled). The header's constant is
// the last index used (-1 when there is none), and the header lines come in the order constant,
// ReDim, declaration.
QString codeArray(const QString& name, QStringView text);

} // namespace ed
