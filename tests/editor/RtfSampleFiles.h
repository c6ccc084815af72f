#pragma once
// Helpers of the RTF tests: the samples beside them (files written by a common word processor,
// each with the text that word processor reads from it), the words of a text, and a character
// format as one comparable text.

#include "editor/RtfContent.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

namespace ed::test {

inline QByteArray readSample(const QString& name) {
    const QString path =
        QFileInfo(QString::fromUtf8(__FILE__)).dir().filePath(QStringLiteral("RtfSamples/") + name);
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << path.toStdString();
    return f.readAll();
}

// The words of a text in order, without the byte-order mark: list bullets and table cells are
// laid out with tabs here and with spaces and line breaks in the reference.
inline QStringList words(QString text) {
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    static const QRegularExpression space(QStringLiteral("[\\s\\x{00A0}]+"));
    return text.split(space, Qt::SkipEmptyParts);
}

// "family size [b][i][u][#rrggbb]"
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
