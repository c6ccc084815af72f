#include "textcmds/LineFilters.h"
#include "textcmds/LineFiltersSupport.h"

#include "app/Trap.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

const char* const kNumericPrompt = "Operation sign and numeric value\r\n\r\nExample:\r\n\r\n"
                                   ">5000 means remove values greater than 5000";

struct FilterCase {
    const char* item;
    const char* text;
    const char* answer; // nullptr: the command asks nothing
    const char* expected;
};

void PrintTo(const FilterCase& c, std::ostream* os) {
    *os << c.item << " on \"" << c.text << "\" with " << (c.answer ? c.answer : "(no answer)");
}

class FilterTest : public ::testing::TestWithParam<FilterCase> {};

TEST_P(FilterTest, KeepsTheRightLines) {
    const FilterCase& c = GetParam();
    Harness h(QString::fromUtf8(c.text));
    if (c.answer)
        h.dialogs.answers.push_back(QString::fromUtf8(c.answer));
    h.run(QString::fromLatin1(c.item));
    EXPECT_EQ(h.edit.text(), QString::fromUtf8(c.expected));
    EXPECT_EQ(h.edit.assignments(), 1);
    EXPECT_TRUE(h.log.errors.empty());
    EXPECT_EQ(h.dialogs.prompts.size(), c.answer ? 1u : 0u);
}

constexpr const char* kContaining = "mnuRemoveLinesContainingText";
constexpr const char* kNotContaining = "mnuRemoveLinesNotContainingText";
constexpr const char* kNumeric = "mnuByNumericValue";
constexpr const char* kRepeats = "mnuRemoveRepeats";
constexpr const char* kNumbers = "100\r\n5000\r\n7000\r\nabc";

INSTANTIATE_TEST_SUITE_P(
    Text, FilterTest,
    ::testing::Values(
        FilterCase{kContaining, "Apple\r\nbanana\r\nAPPLESAUCE", "apple", "banana\r\n"},
        FilterCase{kNotContaining, "Apple\r\nbanana\r\nAPPLESAUCE", "apple",
                   "Apple\r\nAPPLESAUCE\r\n"},
        // The final empty line passes "containing" and grows the text by one line break.
        FilterCase{kContaining, "a\r\nb\r\n", "A", "b\r\n\r\n"},
        FilterCase{kContaining, "", "x", "\r\n"},
        // The answer is taken as typed: its spaces count, nothing is a wildcard.
        FilterCase{kContaining, "ba\r\n a\r\nx*y\r\nxzy", " a", "ba\r\nx*y\r\nxzy\r\n"},
        // A lone LF is part of a line.
        FilterCase{kContaining, "a\nb\r\nc", "b", "c\r\n"},
        // Lower-casing follows Unicode, not just ASCII.
        FilterCase{kContaining, "STRASSE\r\nStraße\r\nÄRGER", "ärger", "STRASSE\r\nStraße\r\n"},
        FilterCase{kNotContaining, "\u212A\u00C5\r\nkilo\r\nx", "\u212A\u212B", "\u212A\u00C5\r\n"},
        FilterCase{kContaining, "\u0130stanbul\r\nistanbul", "i\u0307s", "istanbul\r\n"},
        FilterCase{kNotContaining, "ΣΊΣΥΦΟΣ\r\nάλλο", "σίσυφοσ", "ΣΊΣΥΦΟΣ\r\n"},
        // Lines after characters whose lower case is shorter or longer in bytes.
        FilterCase{kNotContaining, "\u212Aelvin\r\nfoo\r\n\u023A\u0130 FOO\r\nbar\r\nx foo", "foo",
                   "foo\r\n\u023A\u0130 FOO\r\nx foo\r\n"},
        FilterCase{kContaining, "😀a\r\n\u212A\u212A\r\nb\r\nkk", "kk", "😀a\r\nb\r\n"},
        // A line break of the text is never part of a line: an answer with a CR or LF matches
        // only lone ones.
        FilterCase{kContaining, "xa\r\nb\r\nxa\r\r\nc", "a\r", "xa\r\nb\r\nc\r\n"},
        FilterCase{kNotContaining, "a\r\nb\r\na\nb", "\nb", "a\nb\r\n"},
        FilterCase{kNotContaining, "a\r\nb", "a\r\nb", ""}));

INSTANTIATE_TEST_SUITE_P(
    Numeric, FilterTest,
    ::testing::Values(FilterCase{kNumeric, kNumbers, "<5000", "7000\r\nabc\r\n"},
                      FilterCase{kNumeric, kNumbers, ">5000", "100\r\nabc\r\n"},
                      FilterCase{kNumeric, kNumbers, "=5000", "5000\r\nabc\r\n"},
                      FilterCase{kNumeric, kNumbers, "#5000", "abc\r\n"},
                      // No operator: '5' is the operator and '000' the number.
                      FilterCase{kNumeric, kNumbers, "5000", "abc\r\n"},
                      // Fractions round to the nearest, a half to the even neighbour.
                      FilterCase{kNumeric, "12.5\r\n13.5\r\n 42 \r\n11.5\r\n12.4999", "=12",
                                 "12.5\r\n11.5\r\n12.4999\r\n"},
                      FilterCase{kNumeric, "-2.5\r\n-3.5\r\n+3\r\n-3\r\n- 3", "= -3.0",
                                 "-3\r\n- 3\r\n"},
                      FilterCase{kNumeric, "1e3\r\n1,000\r\n$5\r\n.5\r\n5.", "<0",
                                 "1e3\r\n1,000\r\n$5\r\n5.\r\n"},
                      FilterCase{kNumeric, "", "=0", "\r\n"}));

INSTANTIATE_TEST_SUITE_P(
    Repeats, FilterTest,
    ::testing::Values(FilterCase{kRepeats, "b\r\na\r\nb\r\nA\r\n\r\na\r\n", nullptr,
                                 "b\r\na\r\nA\r\n"},
                      FilterCase{kRepeats, "", nullptr, "\r\n"},
                      // Only CR LF ends a line, also where the pair straddles a block of eight.
                      FilterCase{kRepeats, "0123456\r\n89\nabcdef\r\r\n0123456\n", nullptr,
                                 "0123456\r\n89\nabcdef\r\r\n0123456\n\r\n"},
                      FilterCase{kRepeats, "\n\r\r\n\n\r\r\n", nullptr, "\n\r\r\n"}));

struct PromptCase {
    const char* item;
    const char* prompt;
    const char* title;
    const char* section;
    const char* key;
    const char* fallback;
    bool selectionIsDefault;
};

class FilterPromptTest : public ::testing::TestWithParam<PromptCase> {};

TEST_P(FilterPromptTest, OffersDefaultAndRemembersAnswerAsTyped) {
    const PromptCase& c = GetParam();
    const QString text = QStringLiteral(" 7 \r\n12\r\n70");

    // Nothing remembered, nothing selected: the fallback.
    Harness fresh(text);
    fresh.run(c.item);
    ASSERT_EQ(fresh.dialogs.prompts.size(), 1u);
    EXPECT_EQ(fresh.dialogs.prompts[0].prompt, QString::fromUtf8(c.prompt));
    EXPECT_EQ(fresh.dialogs.prompts[0].title, QString::fromUtf8(c.title));
    EXPECT_EQ(fresh.dialogs.prompts[0].defaultAnswer, QString::fromUtf8(c.fallback));

    // A selection: its trimmed text for the text filters; ignored by the numeric one.
    Harness selected(text);
    selected.setSetting(c.section, c.key, "=12");
    selected.select(0, 3);
    selected.dialogs.answers.push_back("=7 ");
    selected.run(c.item);
    ASSERT_EQ(selected.dialogs.prompts.size(), 1u);
    EXPECT_EQ(selected.dialogs.prompts[0].defaultAnswer,
              c.selectionIsDefault ? QStringLiteral("7") : QStringLiteral("=12"));
    EXPECT_EQ(selected.setting(c.section, c.key), "=7 ");
    EXPECT_EQ(selected.settings.writes, 1);
    EXPECT_EQ(selected.edit.assignments(), 1);

    // A blank selection falls back to the remembered answer.
    Harness blank(text);
    blank.setSetting(c.section, c.key, "=12");
    blank.select(0, 1);
    blank.run(c.item);
    EXPECT_EQ(blank.dialogs.prompts[0].defaultAnswer, QStringLiteral("=12"));
}

TEST_P(FilterPromptTest, CancelIsSilent) {
    const PromptCase& c = GetParam();
    Harness h(QStringLiteral("a\r\n1"));
    h.setSetting(c.section, c.key, "=1");
    h.run(c.item);                   // no answer queued: cancelled
    h.dialogs.answers.push_back(""); // confirmed empty
    h.run(c.item);
    EXPECT_EQ(h.dialogs.prompts.size(), 2u);
    EXPECT_EQ(h.edit.text(), "a\r\n1");
    EXPECT_EQ(h.edit.assignments(), 0);
    EXPECT_EQ(h.settings.writes, 0);
    EXPECT_EQ(h.setting(c.section, c.key), "=1");
    EXPECT_TRUE(h.dialogs.messages.empty());
    EXPECT_TRUE(h.log.errors.empty());
}

INSTANTIATE_TEST_SUITE_P(Prompts, FilterPromptTest,
                         ::testing::Values(PromptCase{kContaining, "Remove lines Containing text.",
                                                      "Type text lines must contain", "frmEdit",
                                                      "Previous Switch At Text", "", true},
                                           PromptCase{kNotContaining,
                                                      "Remove lines Not containing text.",
                                                      "Type text lines must contain", "frmEdit",
                                                      "Previous Switch At Text", "", true},
                                           PromptCase{kNumeric, kNumericPrompt, "filter numbers",
                                                      "Reg Key frmEdit", "PrvValue", "0", false}));

TEST(NumericFilter, NonNumericNumberPartEndsSilently) {
    for (const char* answer : {"<abc", "<", "=1 2", "<1e3"}) {
        Harness h(QStringLiteral("1\r\n2"));
        h.dialogs.answers.push_back(answer);
        h.run(kNumeric);
        EXPECT_EQ(h.edit.assignments(), 0) << answer;
        EXPECT_EQ(h.settings.writes, 0) << answer;
        EXPECT_TRUE(h.log.errors.empty()) << answer;
        EXPECT_TRUE(h.dialogs.messages.empty()) << answer;
    }
}

TEST(NumericFilter, OverflowIsLoggedAndTextKept) {
    struct Case {
        const char* text;
        const char* answer;
    };
    for (const Case c : {Case{"1\r\n2", "<3000000000"}, Case{"1\r\n2", "=2147483647.5"},
                         Case{"1\r\n99999999999\r\n2", "<5"}, Case{"1\r\n-2147483648.6", "#0"}}) {
        Harness h(QString::fromLatin1(c.text));
        h.dialogs.answers.push_back(c.answer);
        h.run(kNumeric);
        EXPECT_EQ(h.edit.text(), QString::fromLatin1(c.text)) << c.answer;
        EXPECT_EQ(h.edit.assignments(), 0) << c.answer;
        ASSERT_EQ(h.log.errors.size(), 1u) << c.answer;
        EXPECT_EQ(h.log.errors[0].module, "frmEdit");
        EXPECT_EQ(h.log.errors[0].location, "mnuByNumericValue_Click");
        // The answer is remembered before the number is converted.
        EXPECT_EQ(h.setting("Reg Key frmEdit", "PrvValue"), QString::fromLatin1(c.answer));
    }
}

TEST(RoundedInt32, AcceptsPlainDecimalsAndRoundsHalfToEven) {
    struct Case {
        const char* text;
        std::optional<qint32> value;
    };
    const Case cases[] = {
        {" 42 ", 42},
        {"-0.5", 0},
        {"1.5", 2},
        {"2.5", 2},
        {"2.50000", 2},
        {"2.500001", 3},
        {"-3.5", -4},
        {".5", 0},
        {"5.", 5},
        {"", {}},
        {".", {}},
        {"1e3", {}},
        {"1 2", {}},
        {"1.2.3", {}},
        {"\u0661", {}},
        {"2147483647", 2147483647},
        {"-2147483648", std::numeric_limits<qint32>::min()},
        {"2147483646.5", 2147483646},
        {"-2147483648.5", std::numeric_limits<qint32>::min()},
    };
    for (const Case& c : cases)
        EXPECT_EQ(roundedInt32(QByteArrayView(c.text)), c.value) << c.text;
    for (const char* text : {"2147483648", "-2147483649", "2147483647.5", "-2147483648.51",
                             "99999999999999999999999999999", "00000000000002147483648"})
        EXPECT_THROW(roundedInt32(QByteArrayView(text)), RuntimeError) << text;
}

} // namespace
