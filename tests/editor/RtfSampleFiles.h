#pragma once
// The RTF samples beside the editor tests (files written by a common word processor, each with
// the text that word processor reads from it), and the words of a text for comparing them.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

namespace ed::test {

inline QString samplePath(const QString& name) {
    return QFileInfo(QString::fromUtf8(__FILE__))
        .dir()
        .filePath(QStringLiteral("RtfSamples/") + name);
}

inline QByteArray readSample(const QString& name) {
    QFile f(samplePath(name));
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << samplePath(name).toStdString();
    return f.readAll();
}

// The words of a text in order. Normalised away: the byte-order mark, and every run of white
// space (spaces, tabs, no-break spaces, line breaks), since list bullets and table cells are
// laid out with tabs by this reader and with spaces and line breaks in the reference.
inline QStringList words(QString text) {
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    static const QRegularExpression space(QStringLiteral("[\\s\\x{00A0}]+"));
    return text.split(space, Qt::SkipEmptyParts);
}

} // namespace ed::test
