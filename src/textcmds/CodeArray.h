#pragma once
// Code Array Of Word List: turns a list of words, one per line, into source lines that declare,
// size and fill a string array.

#include "app/Command.h"

#include <QByteArray>
#include <QByteArrayView>

namespace ed {

void mnuCreateCodeArrayOfWordList_Click(CommandContext& ctx);

// The generated code (model bytes) for the array `name` over the lines of `text`. Empty lines
// are skipped and use no index; the words go in as they stand (quotes are not doubled). The
// header's constant is the last index used (-1 when there is none), and the header lines come in
// the order constant, ReDim, declaration.
QByteArray codeArray(QByteArrayView name, QByteArrayView text);

} // namespace ed
