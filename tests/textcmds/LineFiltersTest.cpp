// The line filters: what stays of a text (Unicode case, lone CR and LF, rounding), what they ask
// and remember, and numbers they cannot hold.
#include "textcmds/LineFilters.h"
#include "textcmds/LineFiltersSupport.h"

#include "app/Trap.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

constexpr const char* kContaining = "mnuRemoveLinesContainingText";
constexpr const char* kNotContaining = "mnuRemoveLinesNotContainingText";
constexpr const char* kNumeric = "mnuByNumericValue";

TEST(LineFilters, KeepTheRightLines) {
    const struct {
        const char* item;
        const char* text;
        const char* answer;
        const char* expected;
    } cases[] = {
        // The final empty line passes "containing" and grows the text by one line break.
        {kContaining, "", "x", "\r\n"},
        // The answer is taken as typed: its spaces count, nothing is a wildcard.
        {kContaining, "ba\r\n a\r\nx*y\r\nxzy", " a", "ba\r\nx*y\r\nxzy\r\n"},
        {kContaining, "a\nb\r\nc", "b", "c\r\n"}, // a lone LF is part of a line
        // Lower-casing follows Unicode (how lines are searched is compared with a line-by-line
        // search in LineHitsTest).
        {kNotContaining, "\u212A\u00C5\r\nkilo\r\nx", "\u212A\u212B", "\u212A\u00C5\r\n"},
        // Lines after characters whose lower case is shorter or longer in bytes.
        {kNotContaining, "\u212Aelvin\r\nfoo\r\n\u023A\u0130 FOO\r\nbar\r\nx foo", "foo",
         "foo\r\n\u023A\u0130 FOO\r\nx foo\r\n"},
        // A line break of the text is never part of a line: an answer with a CR or LF matches
        // only lone ones.
        {kContaining, "xa\r\nb\r\nxa\r\r\nc", "a\r", "xa\r\nb\r\nc\r\n"},
        {kNotContaining, "a\r\nb", "a\r\nb", ""},
        // Fractions round to the nearest, a half to the even neighbour.
        {kNumeric, "12.5\r\n13.5\r\n 42 \r\n11.5\r\n12.4999", "=12", "12.5\r\n11.5\r\n12.4999\r\n"},
        {kNumeric, "-2.5\r\n-3.5\r\n+3\r\n-3\r\n- 3", "= -3.0", "-3\r\n- 3\r\n"},
        {kNumeric, "1e3\r\n1,000\r\n$5\r\n.5\r\n5.", "<0", "1e3\r\n1,000\r\n$5\r\n5.\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " on " + c.text);
        const auto h = runOn(c.item, QString::fromUtf8(c.text), {QString::fromUtf8(c.answer)});
        EXPECT_EQ(h->edit.text(), QString::fromUtf8(c.expected));
        EXPECT_EQ(h->edit.assignments(), 1);
        EXPECT_TRUE(h->log.errors.empty());
    }
}

// What every command that remembers its answer does, shown on the line filters.
TEST(LineFilters, OfferADefaultRememberTheAnswerAndCancelQuietly) {
    const struct {
        const char* item;
        const char* section;
        const char* key;
        const char* fallback;
        bool selectionIsDefault;
    } cases[] = {
        {kContaining, "frmEdit", "Previous Switch At Text", "", true},
        {kNotContaining, "frmEdit", "Previous Switch At Text", "", true},
        {kNumeric, "Reg Key frmEdit", "PrvValue", "0", false},
    };
    const QString text = QStringLiteral(" 7 \r\n12\r\n70");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.item);
        // Nothing remembered, nothing selected: the fallback. Cancel changes nothing.
        const auto fresh = runOn(c.item, text);
        EXPECT_EQ(fresh->dialogs.prompts.at(0).defaultAnswer, c.fallback);
        EXPECT_EQ(fresh->edit.assignments(), 0);
        EXPECT_EQ(fresh->settings.writes, 0);

        // A selection: its trimmed text for the text filters; ignored by the numeric one. The
        // answer is remembered as typed.
        Harness selected(text);
        selected.setSetting(c.section, c.key, "=12");
        selected.select(0, 3);
        selected.dialogs.answers.push_back("=7 ");
        selected.run(c.item);
        EXPECT_EQ(selected.dialogs.prompts[0].defaultAnswer, c.selectionIsDefault ? "7" : "=12");
        EXPECT_EQ(selected.setting(c.section, c.key), "=7 ");
        EXPECT_EQ(selected.edit.assignments(), 1);

        // A blank selection falls back to the remembered answer; an empty answer is a Cancel.
        Harness blank(text);
        blank.setSetting(c.section, c.key, "=12");
        blank.select(0, 1);
        blank.dialogs.answers.push_back("");
        blank.run(c.item);
        EXPECT_EQ(blank.dialogs.prompts[0].defaultAnswer, "=12");
        EXPECT_EQ(blank.edit.assignments(), 0);
        EXPECT_EQ(blank.settings.writes, 0);
    }
}

// A number part that is no number ends quietly; one that cannot be held is logged, after the
// answer was remembered. Either way the text stays.
TEST(NumericFilter, BadNumbersLeaveTheText) {
    const struct {
        const char* text;
        const char* answer;
        bool logged;
    } cases[] = {
        {"1\r\n2", "<abc", false},          {"1\r\n2", "<", false},
        {"1\r\n2", "=1 2", false},          {"1\r\n2", "<1e3", false},
        {"1\r\n2", "=2147483647.5", true},  {"1\r\n99999999999\r\n2", "<5", true},
        {"1\r\n-2147483648.6", "#0", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer);
        const auto h = runOn(kNumeric, c.text, {c.answer});
        EXPECT_EQ(h->edit.assignments(), 0);
        EXPECT_TRUE(h->dialogs.messages.empty());
        EXPECT_EQ(h->log.errors.size(), c.logged ? 1u : 0u);
        EXPECT_EQ(h->setting("Reg Key frmEdit", "PrvValue"), c.logged ? c.answer : "<unset>");
    }
}

// Beyond what the filter cases show: what is no plain decimal, and what a 32-bit number cannot
// hold.
TEST(RoundedInt32, RefusesWhatIsNoPlainDecimalAndThrowsOnOverflow) {
    EXPECT_EQ(roundedInt32(QByteArrayView("-2147483648.5")), INT32_MIN);
    for (const char* text : {"", ".", "1e3", "1 2", "1.2.3", "\u0661"})
        EXPECT_EQ(roundedInt32(QByteArrayView(text)), std::nullopt) << text;
    for (const char* text : {"2147483648", "-2147483649", "2147483647.5", "-2147483648.51",
                             "99999999999999999999999999999", "00000000000002147483648"})
        EXPECT_THROW(roundedInt32(QByteArrayView(text)), RuntimeError) << text;
}

} // namespace
