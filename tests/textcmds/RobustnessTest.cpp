// Every command of the case, positional, whitespace, code array and count families on awkward
// text: a 5 MB line, characters outside the Basic Multilingual Plane, lone surrogates, markers
// longer than the line. Each must finish with a result and no error.
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

// The menu item, and after "|" the answer to its prompt.
const char* const kCommands[] = {
    "mnuConvertToLowerCase",
    "mnuConvertToUpperCase",
    "mnuConvertToProperCase",
    "mnuCapitalizeEachWord",
    "mnuConvertToCrippledText",
    "mnuInsertCRAt|😀",
    "mnuInsertCRAt|b😀/1000000/a",
    "mnuInsertCRAt|/",
    "mnuInsertTextAt|/7/x/a",
    "mnuInsertTextAt|a/2147483647/x/b",
    "mnuRemoveLeftSide| 😀 ",
    "mnuRemoveRightSide|zzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzz",
    "mnuRemoveAllSpaces",
    "mnuTrimLeadingAndTrailingSpaces",
    "mnuCnvDblSpcToSingle",
    "mnuReplaceDoubleBlankLineWithSingle",
    "mnuTrimSpaces",
    "mnuRemoveCRLF",
    "mnuInsertBlankLines",
    "mnuCreateCodeArrayOfWordList|A",
    "mnuGetCharCount",
    "mnuShowLineCount",
    "mnuInsertDateTime"};

TEST(Robustness, EveryCommandFinishesOnAwkwardText) {
    const QString piece = QStringLiteral("Ab 😀 ÄB  ^ ");
    const QString text = piece.repeated(5 * 1024 * 1024 / piece.size()) + "\r\n\r\n" +
                         QChar(0xDC00) + "x" + QChar(0xD800) + "\r\nb😀\r\n";
    for (const char* command : kCommands) {
        SCOPED_TRACE(command);
        const QStringList parts = QString::fromUtf8(command).split(u'|');
        Harness h(text);
        h.select(3, 7);
        if (parts.size() > 1)
            h.dialogs.answers.push_back(parts[1]);
        h.run(parts[0]);
        EXPECT_TRUE(h.log.errors.empty());
        const QString out = h.edit.text();
        EXPECT_TRUE(h.edit.assignments() > 0 || out != text || !h.dialogs.messages.empty());
        // A surrogate pair that was whole stays whole: no new lone halves.
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
