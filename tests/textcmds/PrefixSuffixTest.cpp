#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

struct AffixCase {
    const char* item;
    const char* text;
    const char* answer;
    const char* expected;
};

class AffixTest : public ::testing::TestWithParam<AffixCase> {};

TEST_P(AffixTest, TransformsEveryLine) {
    const AffixCase& c = GetParam();
    Harness h(QString::fromUtf8(c.text));
    h.dialogs.answers.push_back(QString::fromUtf8(c.answer));
    h.run(QString::fromLatin1(c.item));
    EXPECT_EQ(h.edit.text(), QString::fromUtf8(c.expected));
    EXPECT_EQ(h.edit.assignments(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AffixTest,
    ::testing::Values(AffixCase{"mnuAddPrefix", "a\r\nb", "x", "xa\r\nxb\r\n"},
                      AffixCase{"mnuAddPrefix", "a\r\nb\r\n", "x", "xa\r\nxb\r\nx\r\n"},
                      AffixCase{"mnuAddPrefix", "", "x", "x\r\n"},
                      AffixCase{"mnuAddPrefix", "a", "  >",
                                ">a"
                                "\r\n"},
                      AffixCase{"mnuAddPrefix", "a  \r\n\tb", "-", "-a\r\n-\tb\r\n"},
                      AffixCase{"mnuAddSuffix", "a  ", "x", "a  x\r\n"},
                      AffixCase{"mnuAddSuffix", "a", "  ", "a\r\n"},
                      AffixCase{"mnuAddSuffix", "  a\r\n", ";", "a;\r\n;\r\n"},
                      AffixCase{"mnuAddSuffix", "a\nb", "!", "a\nb!\r\n"},
                      AffixCase{"mnuAddPrefix", "  abcdefghijklmnopqrstuvwxyz  \r\n😀", "é ",
                                "é   abcdefghijklmnopqrstuvwxyz\r\né 😀\r\n"},
                      AffixCase{"mnuAddSuffix", " \r\n  x", " ;  ", ";\r\nx ;\r\n"}));

TEST(AffixPrompt, OffersTrimmedSelectionThenRemembered) {
    Harness h(QStringLiteral("  sel  rest"));
    h.setSetting("frmEdit", "Previous Prefix", "old");
    h.select(0, 7);
    h.dialogs.answers.push_back(" typed ");
    h.run("mnuAddPrefix");
    ASSERT_EQ(h.dialogs.prompts.size(), 1u);
    EXPECT_EQ(h.dialogs.prompts[0].prompt, "Enter text to add as Prefix.");
    EXPECT_EQ(h.dialogs.prompts[0].title, "Enter text");
    EXPECT_EQ(h.dialogs.prompts[0].defaultAnswer, "sel");
    EXPECT_EQ(h.setting("frmEdit", "Previous Prefix"), " typed "); // saved as typed

    Harness blank(QStringLiteral("   x"));
    blank.setSetting("frmEdit", "Previous Suffix", "old");
    blank.select(0, 3);
    blank.run("mnuAddSuffix"); // cancelled
    EXPECT_EQ(blank.dialogs.prompts[0].defaultAnswer, "old");
    EXPECT_EQ(blank.edit.text(), "   x");
    EXPECT_EQ(blank.edit.assignments(), 0);
    EXPECT_EQ(blank.setting("frmEdit", "Previous Suffix"), "old");
    EXPECT_EQ(blank.settings.writes, 0);
}

} // namespace
