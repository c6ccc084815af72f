// The view maps model positions (UTF-16 units, a CR LF counting two) to its bytes by counting from
// the start until that has cost enough, and through its line index after: both must give the same
// answers, on text with line breaks of every kind and characters of every UTF-8 length.

#include "editor/ScintillaEditControl.h"

#include <Qsci/qsciscintillabase.h>
#include <gtest/gtest.h>

#include <vector>

using namespace ed;

namespace {

TEST(ViewPositions, CountedAndIndexedAgree) {
    QsciScintillaBase view;
    ScintillaEditControl edit(&view);
    // 1, 2, 3 and 4 bytes a character (the last a surrogate pair), CR LF, lone CR and LF.
    const QByteArray piece = QByteArray("ab\r\nc\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\rx\ny");
    QByteArray text;
    while (text.size() < (1 << 20))
        text += piece;
    edit.setUtf8(text);
    ASSERT_FALSE(edit.hasIndex());

    const qsizetype units = edit.textLength();
    std::vector<qsizetype> positions;
    for (qsizetype p = 0; p <= units; p += units / 997)
        positions.push_back(p);
    positions.push_back(units);
    // Near the start every piece boundary, inside the pair included.
    for (qsizetype p = 0; p < 40; ++p)
        positions.push_back(p);
    std::vector<qsizetype> counted, back;
    for (qsizetype p : positions) {
        counted.push_back(edit.byteOffset(p));
        back.push_back(edit.modelPosition(counted.back()));
    }
    // The first pieces by hand: "ab\r\n" 4 units, "c" 1, "é" 1 (2 bytes), "€" 1 (3 bytes).
    EXPECT_EQ(edit.byteOffset(5), 5);
    EXPECT_EQ(edit.byteOffset(6), 7);
    EXPECT_EQ(edit.byteOffset(7), 10);
    EXPECT_EQ(edit.byteOffset(9), 14); // after the pair
    EXPECT_EQ(edit.modelPosition(14), 9);

    // Counting costs its length each time: enough of it and the index is built.
    for (int i = 0; i < 600 && !edit.hasIndex(); ++i)
        edit.modelPosition(edit.byteLength() - 1);
    ASSERT_TRUE(edit.hasIndex());
    for (size_t i = 0; i < positions.size(); ++i) {
        SCOPED_TRACE(positions[i]);
        EXPECT_EQ(edit.byteOffset(positions[i]), counted[i]);
        EXPECT_EQ(edit.modelPosition(counted[i]), back[i]);
    }
    EXPECT_EQ(edit.textLength(), units);
}

} // namespace
