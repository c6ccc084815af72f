#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed::test;

namespace {

// Upper and lower case map each character by a table worked out as characters are met, with runs
// of ASCII done eight at a time: over every character (each twice, so the second meets the
// table), mixed with ASCII letters at every offset of a block, the commands must give what Qt
// gives for the whole text.
TEST(CaseMapping, UpperAndLowerCaseMatchQtForEveryCharacter) {
    QString text;
    for (char32_t c = 0x20; c < 0x30000; ++c) {
        if (QChar::isSurrogate(c) || (c >= 0x3400 && c < 0x1D000 && c % 7))
            continue; // every character of the scripts with case, a sample of the rest
        for (int twice = 0; twice < 2; ++twice) {
            text += QString::fromUcs4(&c, 1);
            text += QStringLiteral("aBcDeFgHiJ").left(int(c % 11));
        }
    }
    for (const bool upper : {true, false}) {
        Harness h(text);
        h.run(upper ? "mnuConvertToUpperCase" : "mnuConvertToLowerCase");
        const QString expected = upper ? text.toUpper() : text.toLower();
        const QString got = h.edit.text();
        if (got == expected)
            continue;
        qsizetype i = 0;
        while (i < got.size() && i < expected.size() && got[i] == expected[i])
            ++i;
        ADD_FAILURE() << (upper ? "upper" : "lower") << " case differs at output position " << i
                      << ", U+" << QString::number(got[i].unicode(), 16).toStdString();
    }
}

} // namespace
