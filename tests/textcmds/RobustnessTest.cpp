// Every command of the case, positional, whitespace, code array and count families on awkward
// text: a 5 MB line, characters outside the Basic Multilingual Plane, lone surrogates, markers
// longer than the line. Each must finish with a result and no error.
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct Command {
    const char* item;
    const char* answer; // nullptr: asks nothing
};

const Command kCommands[] = {
    {"mnuConvertToLowerCase", nullptr},
    {"mnuConvertToUpperCase", nullptr},
    {"mnuConvertToProperCase", nullptr},
    {"mnuCapitalizeEachWord", nullptr},
    {"mnuConvertToCrippledText", nullptr},
    {"mnuInsertCRAt", "😀"},
    {"mnuInsertCRAt", "b😀/1000000/a"},
    {"mnuInsertCRAt", "/"},
    {"mnuInsertTextAt", "/7/x/a"},
    {"mnuInsertTextAt", "a/2147483647/x/b"},
    {"mnuRemoveLeftSide", " 😀 "},
    {"mnuRemoveRightSide", "zzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzz"},
    {"mnuRemoveAllSpaces", nullptr},
    {"mnuTrimLeadingAndTrailingSpaces", nullptr},
    {"mnuCnvDblSpcToSingle", nullptr},
    {"mnuReplaceDoubleBlankLineWithSingle", nullptr},
    {"mnuTrimSpaces", nullptr},
    {"mnuRemoveCRLF", nullptr},
    {"mnuInsertBlankLines", nullptr},
    {"mnuCreateCodeArrayOfWordList", "A"},
    {"mnuGetCharCount", nullptr},
    {"mnuShowLineCount", nullptr},
    {"mnuInsertDateTime", nullptr},
};

QString awkwardText() {
    const QString piece = QStringLiteral("Ab 😀 ÄB  ^ ");
    QString text = piece.repeated(5 * 1024 * 1024 / piece.size());
    text += QStringLiteral("\r\n\r\n") + QChar(0xDC00) + QStringLiteral("x") + QChar(0xD800);
    text += QStringLiteral("\r\nb😀\r\n");
    return text;
}

TEST(Robustness, EveryCommandFinishesOnAwkwardText) {
    const QString text = awkwardText();
    for (const Command& c : kCommands) {
        SCOPED_TRACE(std::string(c.item) + " " + (c.answer ? c.answer : ""));
        Harness h(text);
        h.select(3, 7);
        if (c.answer)
            h.dialogs.answers.push_back(QString::fromUtf8(c.answer));
        h.run(QString::fromLatin1(c.item));
        EXPECT_TRUE(h.log.errors.empty());
        // A surrogate pair that was whole stays whole: no new lone halves.
        const QString out = h.edit.text();
        EXPECT_TRUE(h.edit.assignments() > 0 || out != text || !h.dialogs.messages.empty());
        qsizetype lone = 0;
        for (qsizetype i = 0; i < out.size(); ++i) {
            if (out[i].isHighSurrogate() && i + 1 < out.size() && out[i + 1].isLowSurrogate())
                ++i;
            else if (out[i].isSurrogate())
                ++lone;
        }
        EXPECT_LE(lone, 2);
    }
}

} // namespace
