#include "util/ByteSearch.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;

namespace {

qsizetype naiveFind(const QByteArray& text, const QByteArray& pattern, qsizetype from) {
    for (qsizetype i = from; i + pattern.size() <= text.size(); ++i)
        if (QByteArrayView(text).sliced(i, pattern.size()) == pattern)
            return i;
    return -1;
}

qsizetype naiveNth(const QByteArray& text, const QByteArray& pattern, qint64 n) {
    qsizetype at = -1;
    for (qint64 found = 0; found < n; ++found)
        if ((at = naiveFind(text, pattern, at + 1)) < 0)
            return -1;
    return at;
}

// Texts and patterns of two letters, so that near misses, overlaps and matches at every place
// (the first sixteen bytes, the last few, across the sixteen-byte groups) are all frequent.
TEST(ByteSearch, FindsWhatTheNaiveSearchFinds) {
    std::mt19937 rng(3);
    auto randomBytes = [&](int size) {
        QByteArray s;
        for (int k = 0; k < size; ++k)
            s += "ab"[rng() % 2];
        return s;
    };
    for (int round = 0; round < 3000; ++round) {
        const QByteArray text = randomBytes(int(rng() % 80));
        const QByteArray pattern = randomBytes(1 + int(rng() % 6));
        const ByteSearch search(pattern);
        SCOPED_TRACE(text.toStdString() + " / " + pattern.toStdString());
        for (qsizetype from = 0; from <= text.size(); from += 7)
            ASSERT_EQ(search.find(text, from), naiveFind(text, pattern, from)) << from;
        for (qint64 n : {1, 2, 3, 7})
            ASSERT_EQ(search.nth(text, n), naiveNth(text, pattern, n)) << n;
    }
}

// Repetitive text and patterns that almost match everywhere: the search falls back to its
// linear method part way and must still give the first place.
TEST(ByteSearch, RepetitiveTextAndPatterns) {
    struct Case {
        QByteArray text, pattern;
    };
    const QByteArray as(20000, 'a');
    const Case cases[] = {
        {as, QByteArray(3000, 'a') + 'b'},
        {as + 'b', QByteArray(3000, 'a') + 'b'},
        {as + "ab" + as, QByteArray(500, 'a') + "b" + QByteArray(500, 'a')},
        {QByteArray("ab").repeated(9000) + "abb", QByteArray("ab").repeated(200) + "b"},
        {as, QByteArray(20001, 'a')},
    };
    for (const Case& c : cases) {
        const ByteSearch search(c.pattern);
        EXPECT_EQ(search.find(c.text), c.text.indexOf(c.pattern));
        EXPECT_EQ(search.find(c.text, 100), c.text.indexOf(c.pattern, 100));
    }
    EXPECT_EQ(ByteSearch("aa").nth(as, 19999), 19998);
    EXPECT_EQ(ByteSearch("aa").nth(as, 20000), -1);
    EXPECT_EQ(ByteSearch("").find("abc", 3), 3);
    EXPECT_EQ(ByteSearch("").nth("abc", 1), -1);
}

} // namespace
