// The linear substring search against the plain search, on texts where a faulty shift or a
// wrong period would skip a match: small alphabets, periodic patterns, matches at both ends.
#include "util/SubstringFinder.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;

namespace {

TEST(SubstringFinder, AgreesWithThePlainSearch) {
    struct Case {
        QByteArray text, pattern;
        qsizetype from;
    } fixed[] = {
        {"", "", 0},
        {"abc", "", 3},
        {"abc", "", 4},
        {"abc", "c", 0},
        {"abc", "abcd", 0},
        {"aaaaab", "aab", 0},
        {"abababac", "abac", 0},
        {"xabcabc", "abc", 2},
        {"aaa", "aa", 1},
        {"banana", "ana", 2},
        {"zzzzzzzzza", "zza", 5},
        {"abcabcabd", "abcabd", 0},
        // Every place a candidate for long: the search changes method on the way.
        {QByteArray(20000, 'a') + "ba" + QByteArray(10, 'a'), QByteArray(50, 'a') + "ba", 7},
        {QByteArray(20000, 'a'), QByteArray(50, 'a') + "ba", 0},
    };
    for (const Case& c : fixed)
        EXPECT_EQ(SubstringFinder(c.pattern).indexIn(c.text, c.from),
                  QByteArrayView(c.text).indexOf(c.pattern, c.from))
            << c.text.constData() << " / " << c.pattern.constData();

    // Random texts over two or three letters, patterns cut from them or made periodic.
    std::mt19937 rng(11);
    auto word = [&](int maxLen, int letters) {
        QByteArray s;
        const int n = int(rng() % unsigned(maxLen + 1));
        for (int i = 0; i < n; ++i)
            s += char('a' + rng() % unsigned(letters));
        return s;
    };
    for (int round = 0; round < 20000; ++round) {
        const int letters = 2 + round % 2;
        const QByteArray text = word(60, letters);
        QByteArray pattern;
        switch (round % 3) {
        case 0:
            pattern = word(8, letters);
            break;
        case 1: { // a piece of the text, so it is found
            const qsizetype at = text.isEmpty() ? 0 : qsizetype(rng() % unsigned(text.size()));
            pattern = text.mid(at, 1 + qsizetype(rng() % 12));
            break;
        }
        default: // a short word repeated, with its last letter sometimes changed
            pattern = word(3, letters).repeated(1 + int(rng() % 5));
            if (!pattern.isEmpty() && rng() % 2)
                pattern.back() = char('a' + rng() % unsigned(letters));
        }
        const qsizetype from = qsizetype(rng() % 8);
        ASSERT_EQ(SubstringFinder(pattern).indexIn(text, from),
                  QByteArrayView(text).indexOf(pattern, from))
            << text.constData() << " / " << pattern.constData() << " from " << from;
    }
}

} // namespace
