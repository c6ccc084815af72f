#include "support/Fakes.h"
#include "util/Utility.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;
using namespace ed::test;

namespace {

// The procedure as first written: a seen list that starts with the empty string, searched from
// the start for every line.
QStringList quadraticReference(const QStringList& lines) {
    QStringList seen{QString()};
    QStringList out;
    for (const QString& line : lines) {
        if (!seen.contains(line)) {
            seen << line;
            out << line;
        }
    }
    return out.isEmpty() ? QStringList{QString()} : out;
}

TEST(RemoveRepeats, LinesMatchTheQuadraticProcedure) {
    // Few distinct short lines from a small alphabet, so that repeats, empty lines and lines
    // that share a prefix or differ in one character are all frequent; lone CR and LF make
    // lines that end where another line's break begins.
    const QStringList kChars = {"a", "b", "A", "B", " ", "\u00e9", "\U0001F600", "\r", "\n"};
    std::mt19937 rng(7);
    RecordingLogger log;
    Utility util(log);
    for (int round = 0; round < 300; ++round) {
        QStringList lines;
        const int n = int(rng() % 300);
        for (int i = 0; i < n; ++i) {
            QString line;
            const int len = int(rng() % 12);
            for (int k = 0; k < len; ++k) {
                const QString c = kChars[int(rng() % kChars.size())];
                line += line.endsWith(u'\r') && c == u"\n" ? QStringLiteral("a")
                                                           : c; // no CR LF in a line
            }
            lines << line;
        }
        const QStringList expected = quadraticReference(lines);
        const QString text = lines.join(QStringLiteral("\r\n"));
        const std::optional<QByteArray> kept = util.RemoveRepeatsFromLines(toModelUtf8(text));
        ASSERT_TRUE(kept);
        ASSERT_EQ(fromModelUtf8(*kept), expected.join(QStringLiteral("\r\n")) + "\r\n")
            << "round " << round;
    }
    EXPECT_TRUE(log.errors.empty());
}

} // namespace
