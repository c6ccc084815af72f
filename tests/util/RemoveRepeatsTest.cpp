#include "support/Fakes.h"
#include "util/LineHashSet.h"
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

TEST(RemoveRepeats, KeepsFirstOccurrencesAndDropsEmptyLines) {
    struct Case {
        QStringList in, out;
    };
    const std::vector<Case> cases = {
        {{"b", "a", "b", "A", "", "a"}, {"b", "a", "A"}},
        {{"", "", ""}, {""}},
        {{}, {""}},
        {{"x"}, {"x"}},
        {{"a", "a "}, {"a", "a "}},
        {{" ", "", " ", "\t"}, {" ", "\t"}},
        {{"é", "e\u0301", "é"}, {"é", "e\u0301"}}, // no normalisation
    };
    RecordingLogger log;
    Utility util(log);
    for (const Case& c : cases)
        EXPECT_EQ(util.RemoveRepeatsFromArray(c.in), c.out) << c.in.join(u'|').toStdString();
    EXPECT_TRUE(log.errors.empty());
}

TEST(RemoveRepeats, MatchesTheQuadraticProcedureOnRandomInput) {
    // Few distinct short lines from a small alphabet, so that repeats, empty lines and lines
    // that share a prefix or differ in one character are all frequent.
    std::mt19937 rng(7);
    RecordingLogger log;
    Utility util(log);
    for (int round = 0; round < 200; ++round) {
        QStringList lines;
        const int n = int(rng() % 300);
        for (int i = 0; i < n; ++i) {
            QString line;
            const int len = int(rng() % 12);
            for (int k = 0; k < len; ++k)
                line += QChar(u"abAB \u00e9\U0001F600"[rng() % 7]);
            lines << line;
        }
        const QStringList expected = quadraticReference(lines);
        ASSERT_EQ(util.RemoveRepeatsFromArray(lines), expected) << "round " << round;

        // The view form over one text gives the same lines.
        const QString text = lines.join(QStringLiteral("\r\n"));
        std::vector<QStringView> views;
        qsizetype pos = 0;
        for (const QString& l : lines) {
            views.emplace_back(QStringView(text).mid(pos, l.size()));
            pos += l.size() + 2;
        }
        QStringList fromViews;
        for (QStringView v : util.RemoveRepeatsFromViews(views))
            fromViews << v.toString();
        ASSERT_EQ(fromViews, expected) << "round " << round;
    }
    EXPECT_TRUE(log.errors.empty());
}

TEST(LineHashSet, GrowsPastItsExpectedSizeWithoutLosingLines) {
    QStringList lines;
    for (int i = 0; i < 5000; ++i)
        lines << QString::number(i * 7919);
    LineHashSet set(4); // far too small: grows many times
    for (const QString& l : lines)
        EXPECT_TRUE(set.insert(l));
    for (const QString& l : lines)
        EXPECT_FALSE(set.insert(QString(l.constData(), l.size()))) << l.toStdString(); // a copy
    EXPECT_TRUE(set.insert(QStringLiteral("-1")));
}

} // namespace
