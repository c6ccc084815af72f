#pragma once
// The building block of By Numeric Value: reading a line as a number.

#include <QByteArrayView>

#include <optional>

namespace ed {

// The value of a number written as optional spaces, an optional sign, digits with an optional
// decimal fraction (".5" and "5." count) and optional spaces, rounded to the nearest 32-bit
// integer with a half going to the even neighbour. Nothing when `s` (UTF-8) is not such a number;
// throws RuntimeError("Overflow") when the rounded value does not fit.
std::optional<qint32> roundedInt32(QByteArrayView s);

} // namespace ed
