// Add Prefix and Add Suffix: trimmed answers, trimmed lines, and the remembered answer.
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(AffixCommands, TransformEveryLine) {
    const struct {
        const char* item;
        const char* text;
        const char* answer;
        const char* expected;
    } cases[] = {
        {"mnuAddPrefix", "a  \r\n\tb", "-", "-a\r\n-\tb\r\n"},
        {"mnuAddSuffix", "  a\r\n", ";", "a;\r\n;\r\n"},
        {"mnuAddSuffix", "a\nb", "!", "a\nb!\r\n"},
        {"mnuAddPrefix", "  abcdefghijklmnopqrstuvwxyz  \r\n😀", "é ",
         "é   abcdefghijklmnopqrstuvwxyz\r\né 😀\r\n"},
        {"mnuAddSuffix", " \r\n  x", " ;  ", ";\r\nx ;\r\n"},
    };
    for (const auto& c : cases) {
        const auto h = runOn(c.item, QString::fromUtf8(c.text), {QString::fromUtf8(c.answer)});
        EXPECT_EQ(h->edit.text(), QString::fromUtf8(c.expected)) << c.item << " " << c.text;
    }
}

TEST(AffixCommands, OfferTheTrimmedSelectionThenTheRememberedAnswer) {
    Harness h(QStringLiteral("  sel  rest"));
    h.setSetting("frmEdit", "Previous Prefix", "old");
    h.select(0, 7);
    h.dialogs.answers.push_back(" typed ");
    h.run("mnuAddPrefix");
    EXPECT_EQ(h.dialogs.prompts.at(0).defaultAnswer, "sel");
    EXPECT_EQ(h.setting("frmEdit", "Previous Prefix"), " typed "); // saved as typed

    Harness blank(QStringLiteral("   x"));
    blank.setSetting("frmEdit", "Previous Suffix", "old");
    blank.select(0, 3);
    blank.run("mnuAddSuffix"); // cancelled
    EXPECT_EQ(blank.dialogs.prompts.at(0).defaultAnswer, "old");
    EXPECT_EQ(blank.edit.assignments(), 0);
    EXPECT_EQ(blank.settings.writes, 0);
}

} // namespace
