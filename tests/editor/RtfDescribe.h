#pragma once
// A character format as one comparable text: "family size [b][i][u][#rrggbb]".

#include "editor/RtfContent.h"

namespace ed::test {

inline QString describe(const RtfCharFormat& f) {
    QString out = f.family + ' ' + QString::number(f.pointSize);
    if (f.bold)
        out += " b";
    if (f.italic)
        out += " i";
    if (f.underline)
        out += " u";
    if (f.color)
        out += QStringLiteral(" #%1").arg(*f.color, 6, 16, QLatin1Char('0'));
    return out;
}

} // namespace ed::test
