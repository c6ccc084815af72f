// Get Html Tags, Switch Rear To Front, Renumber Array elements and the two stream commands.
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

QString u8(const char* s) {
    return QString::fromUtf8(s);
}

// A command with its answers on a text, and the text it gives.
struct RunCase {
    const char* item;
    const char* text;
    std::vector<const char*> answers;
    const char* expected;
};

class ReOrderTest : public ::testing::TestWithParam<RunCase> {};

TEST_P(ReOrderTest, GivesTheText) {
    const RunCase& c = GetParam();
    Harness h(u8(c.text));
    for (const char* a : c.answers)
        h.dialogs.answers.push_back(u8(a));
    h.run(c.item);
    EXPECT_EQ(h.edit.text(), u8(c.expected));
    EXPECT_LE(h.edit.assignments(), 1);
    EXPECT_TRUE(h.log.errors.empty());
    EXPECT_TRUE(h.dialogs.messages.empty());
}

const char* const kArray = "Private Const XCount As Long = 1\r\nReDim X(1)\r\nPrivate X() As "
                           "String\r\nX(0) = \"a\"\r\nY(7) = \"other\"\r\nX(0) = \"new\"\r\n"
                           "X(9) = \"b\"\r\nX(1)\r\n";

INSTANTIATE_TEST_SUITE_P(
    Cases, ReOrderTest,
    ::testing::Values(
        RunCase{"mnuGetHtmlTags",
                "<b>one</b> <B class=\"x\">two</B>",
                {"<b>", "</b>"},
                ">one\r\n class=\"x\">two\r\n"},
        RunCase{"mnuGetHtmlTags", "<p>x</p>", {"<b>", "</b>"}, "\r\n"},
        RunCase{"mnuGetHtmlTags", "", {"<b>", "</b>"}, "\r\n"},
        RunCase{"mnuGetHtmlTags",
                "<a>\xc3\xa9\r\n\xf0\x9f\x98\x80</a>",
                {"<A>", "</A>"},
                ">\xc3\xa9\r\n\xf0\x9f\x98\x80\r\n"},
        RunCase{"mnuSwitchRearToFront", "Doe, John", {", "}, "John, Doe\r\n"},
        RunCase{
            "mnuSwitchRearToFront", "a=b=c\r\nno marker\r\n", {"="}, "b=c=a\r\nno marker\r\n\r\n"},
        RunCase{"mnuSwitchRearToFront", "xABy", {"ab"}, "yABx\r\n"},
        RunCase{"mnuSwitchRearToFront",
                "\xf0\x9f\x98\x80\xc3\x89=\xc3\xbc\r\nx\xc3\x89y",
                {"\xc3\xa9"},
                "=\xc3\xbc\xc3\x89\xf0\x9f\x98\x80\r\ny\xc3\x89x\r\n"},
        RunCase{"mnuReNumberArrayElements",
                kArray,
                {"10"},
                "Private Const XCount As Long = 12\r\nReDim X(12)\r\nPrivate X() As "
                "String\r\nX(10) = \"a\"\r\nY(7) = \"other\"\r\nX(11) = \"new\"\r\n"
                "X(12) = \"b\"\r\nX(1)\r\n\r\n"},
        RunCase{"mnuReNumberArrayElements",
                "Private Const ACount As Long = 4\r\nReDim A(4)",
                {" -3 "},
                "Private Const ACount As Long = 4\r\nReDim A(4)\r\n"},
        RunCase{"mnuReNumberArrayElements",
                "Private Const A BCount As Long = 0\r\nReDim A B(0)\r\nA B(-1) = \"\"",
                {"0"},
                "Private Const A BCount As Long = 0\r\nReDim A B(0)\r\nA B(0) = \"\"\r\n"},
        RunCase{"mnuReNumberArrayElements", "", {"5"}, "\r\n"},
        RunCase{"mnuTurnToStream", "a\r\nb\r\nc\r\n", {","}, "a,b,c"},
        RunCase{"mnuTurnToStream", "a\r\n\r\nb", {";"}, "a;;b"},
        RunCase{"mnuTurnToStream", "a\r\nb\rc\nd", {"VbTab"}, "a\tb\rc\nd"},
        RunCase{"mnuTurnToStream", "a\r\nb\r\n", {" vbcrlf-vbTAB "}, "a \r\n-\t b"},
        RunCase{"mnuTurnToStream", "\r\n", {","}, ""}, RunCase{"mnuTurnToStream", "", {","}, ""},
        RunCase{"mnuDelimitRunningText", "a,b,c", {","}, "a\r\nb\r\nc\r\n"},
        RunCase{"mnuDelimitRunningText", "a,,b", {","}, "a\r\n\r\nb\r\n"},
        RunCase{"mnuDelimitRunningText", "abc", {","}, "abc\r\n"},
        RunCase{"mnuDelimitRunningText", "", {","}, "\r\n"},
        RunCase{"mnuDelimitRunningText", "aaaaa", {"aa"}, "\r\n\r\na\r\n"},
        RunCase{"mnuDelimitRunningText", "a  b   c", {"  "}, "a\r\nb\r\n c\r\n"},
        RunCase{"mnuDelimitRunningText", "aXb\tc", {"vbTab"}, "aXb\r\nc\r\n"},
        RunCase{"mnuDelimitRunningText",
                "\xc3\xa9\xc3\x89\xc3\xa9",
                {"\xc3\x89"},
                "\xc3\xa9\r\n\xc3\xa9\r\n"}));

struct PromptCase {
    const char* item;
    std::vector<const char*> answers;
    std::vector<const char*> prompts; // prompt, title, default for each prompt shown
    std::vector<const char*> saved;   // key, value of each remembered answer
};

class ReOrderPromptTest : public ::testing::TestWithParam<PromptCase> {};

// What each command asks, what it offers, what it remembers; a cancel changes nothing.
TEST_P(ReOrderPromptTest, AsksAndRemembers) {
    const PromptCase& c = GetParam();
    Harness h(u8("  selected  text"));
    h.select(0, 10);
    for (const char* a : c.answers)
        h.dialogs.answers.push_back(u8(a));
    h.run(c.item);
    ASSERT_EQ(h.dialogs.prompts.size() * 3, c.prompts.size());
    for (size_t i = 0; i < h.dialogs.prompts.size(); ++i) {
        EXPECT_EQ(h.dialogs.prompts[i].prompt, u8(c.prompts[3 * i]));
        EXPECT_EQ(h.dialogs.prompts[i].title, u8(c.prompts[3 * i + 1]));
        EXPECT_EQ(h.dialogs.prompts[i].defaultAnswer, u8(c.prompts[3 * i + 2]));
    }
    EXPECT_EQ(h.settings.writes * 2, int(c.saved.size()));
    for (size_t i = 0; i + 1 < c.saved.size(); i += 2)
        EXPECT_EQ(h.setting("frmEdit", c.saved[i]), u8(c.saved[i + 1]));
    EXPECT_EQ(h.edit.assignments(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ReOrderPromptTest,
    ::testing::Values(
        PromptCase{"mnuGetHtmlTags",
                   {" <td> "},
                   {"Enter the start tag.", "Get Html Tags", "<a>", "Enter the stop tag.",
                    "Get Html Tags", "</a>"},
                   {"GetHtmlTagsStart", " <td> "}},
        PromptCase{"mnuSwitchRearToFront",
                   {},
                   {"Switch front and rear of each line at what text?", "Enter text", "selected"},
                   {}},
        PromptCase{"mnuReNumberArrayElements",
                   {},
                   {"Enter the first index.", "Renumber Array elements", "0"},
                   {}},
        PromptCase{"mnuTurnToStream",
                   {},
                   {"Join the lines with what delimiter?", "Text Stream Delimiter", ","},
                   {}},
        PromptCase{"mnuDelimitRunningText",
                   {},
                   {"Split the text at what delimiter?", "Text Stream Delimiter", ","},
                   {}}));

class RenumberRefusesTest : public ::testing::TestWithParam<const char*> {};

TEST_P(RenumberRefusesTest, NotAWholeNumber) {
    Harness h(u8("A(0) = \"x\""));
    h.dialogs.answers.push_back(u8(GetParam()));
    h.run("mnuReNumberArrayElements");
    ASSERT_EQ(h.dialogs.messages.size(), 1u);
    EXPECT_EQ(h.dialogs.messages[0].text, "The first index must be a whole number.");
    EXPECT_EQ(h.dialogs.messages[0].title, "Renumber Array elements");
    EXPECT_EQ(h.dialogs.messages[0].icon, Icon::Exclamation);
    EXPECT_EQ(h.settings.writes, 0);
    EXPECT_EQ(h.edit.assignments(), 0);
}

INSTANTIATE_TEST_SUITE_P(Cases, RenumberRefusesTest,
                         ::testing::Values("1.5", "abc", "2147483648", "-2147483649", "1e3", "- 1",
                                           "0x10", "99999999999999999999"));

TEST(Renumber, TheLargestFirstIndex) {
    Harness h(u8("A(0) = \"x\"\r\nA(0) = \"y\""));
    h.dialogs.answers.push_back("2147483647");
    h.run("mnuReNumberArrayElements");
    EXPECT_EQ(h.edit.text(), u8("A(2147483647) = \"x\"\r\nA(2147483648) = \"y\"\r\n"));
    EXPECT_EQ(h.setting("frmEdit", "Start number"), "2147483647");
}

TEST(GetHtmlTags, ManyUnclosedTagsOnOneLongLine) {
    // Every start tag ends where the next begins; the stop tag comes only at the very end.
    QString text;
    for (int i = 0; i < 200000; ++i)
        text += u"<li>item";
    text += u"</li>";
    Harness h(text);
    h.dialogs.answers = {"<li>", "</li>"};
    h.run("mnuGetHtmlTags");
    const QStringList lines = h.edit.text().split("\r\n");
    ASSERT_EQ(lines.size(), 10001);
    EXPECT_EQ(lines[0], ">item");
}

TEST(SwitchRearToFront, AFiveMegabyteLine) {
    // A marker that almost matches everywhere: the search must not start over at each place.
    QByteArray line(5 << 20, 'a');
    line += "=b";
    Harness h;
    h.edit.setUtf8(line);
    h.dialogs.answers = {QString(1000, u'A') + u'='};
    h.run("mnuSwitchRearToFront");
    EXPECT_EQ(h.edit.utf8(),
              "b" + QByteArray(1000, 'a') + "=" + QByteArray((5 << 20) - 1000, 'a') + "\r\n");
}

TEST(StreamCommands, AFiveMegabyteLine) {
    QByteArray line(5 << 20, 'x');
    for (qsizetype i = 0; i < line.size(); i += 5000)
        line[i] = ',';
    Harness h;
    h.edit.setUtf8(line);
    h.dialogs.answers = {",", ","};
    h.run("mnuDelimitRunningText");
    EXPECT_EQ(h.edit.utf8().count("\r\n"), line.count(',') + 1);
    h.run("mnuTurnToStream");
    EXPECT_EQ(h.edit.utf8(), line);
}

} // namespace
