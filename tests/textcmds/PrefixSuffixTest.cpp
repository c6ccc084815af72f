// Add Prefix and Add Suffix: the answer and the lines, trimmed.
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

} // namespace
