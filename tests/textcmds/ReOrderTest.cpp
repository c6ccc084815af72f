// Get Html Tags, Switch Rear To Front, Renumber Array elements and the two stream commands.
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

QString u8(const char* s) {
    return QString::fromUtf8(s);
}

TEST(ReOrder, GivesTheText) {
    const struct {
        const char* item;
        const char* text;
        QStringList answers;
        const char* expected;
    } cases[] = {
        {"mnuGetHtmlTags", "<p>x</p>", {"<b>", "</b>"}, "\r\n"},
        {"mnuGetHtmlTags", "<a>é\r\n😀</a>", {"<A>", "</A>"}, ">é\r\n😀\r\n"},
        {"mnuSwitchRearToFront", "a=b=c\r\nno marker\r\n", {"="}, "b=c=a\r\nno marker\r\n\r\n"},
        {"mnuSwitchRearToFront", "xABy", {"ab"}, "yABx\r\n"},
        {"mnuSwitchRearToFront", "😀É=ü\r\nxÉy", {"é"}, "=üÉ😀\r\nyÉx\r\n"},
        {"mnuReNumberArrayElements",
         "Private Const XCount As Long = 1\r\nReDim X(1)\r\nPrivate X() As String\r\nX(0) = "
         "\"a\"\r\nY(7) = \"other\"\r\nX(0) = \"new\"\r\nX(9) = \"b\"\r\nX(1)\r\n",
         {"10"},
         "Private Const XCount As Long = 12\r\nReDim X(12)\r\nPrivate X() As String\r\nX(10) = "
         "\"a\"\r\nY(7) = \"other\"\r\nX(11) = \"new\"\r\nX(12) = \"b\"\r\nX(1)\r\n\r\n"},
        {"mnuReNumberArrayElements",
         "Private Const ACount As Long = 4\r\nReDim A(4)",
         {" -3 "},
         "Private Const ACount As Long = 4\r\nReDim A(4)\r\n"},
        {"mnuReNumberArrayElements",
         "Private Const A BCount As Long = 0\r\nReDim A B(0)\r\nA B(-1) = \"\"",
         {"0"},
         "Private Const A BCount As Long = 0\r\nReDim A B(0)\r\nA B(0) = \"\"\r\n"},
        {"mnuTurnToStream", "a\r\n\r\nb", {";"}, "a;;b"},
        {"mnuTurnToStream", "a\r\nb\rc\nd", {"VbTab"}, "a\tb\rc\nd"},
        {"mnuTurnToStream", "a\r\nb\r\n", {" vbcrlf-vbTAB "}, "a \r\n-\t b"},
        {"mnuDelimitRunningText", "a,,b", {","}, "a\r\n\r\nb\r\n"},
        {"mnuDelimitRunningText", "aaaaa", {"aa"}, "\r\n\r\na\r\n"},
        {"mnuDelimitRunningText", "a  b   c", {"  "}, "a\r\nb\r\n c\r\n"},
        {"mnuDelimitRunningText", "aXb\tc", {"vbTab"}, "aXb\r\nc\r\n"},
        {"mnuDelimitRunningText", "éÉé", {"É"}, "é\r\né\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " on " + c.text);
        const auto h = runOn(c.item, u8(c.text), c.answers);
        EXPECT_EQ(h->edit.text(), u8(c.expected));
        EXPECT_LE(h->edit.assignments(), 1);
        EXPECT_TRUE(h->log.errors.empty() && h->dialogs.messages.empty());
    }
}

TEST(Renumber, AFirstIndexThatIsNoWholeNumberIsRefused) {
    for (const char* answer : {"1.5", "abc", "2147483648", "-2147483649", "1e3", "- 1", "0x10",
                               "99999999999999999999"}) {
        SCOPED_TRACE(answer);
        const auto h = runOn("mnuReNumberArrayElements", "A(0) = \"x\"", {answer});
        ASSERT_EQ(h->dialogs.messages.size(), 1u);
        EXPECT_EQ(h->dialogs.messages[0].text, "The first index must be a whole number.");
        EXPECT_EQ(h->settings.writes, 0);
        EXPECT_EQ(h->edit.assignments(), 0);
    }
    // The largest first index still counts on past it.
    const auto h =
        runOn("mnuReNumberArrayElements", "A(0) = \"x\"\r\nA(0) = \"y\"", {"2147483647"});
    EXPECT_EQ(h->edit.text(), "A(2147483647) = \"x\"\r\nA(2147483648) = \"y\"\r\n");
}

TEST(ReOrder, LongLines) {
    // A marker that almost matches everywhere: the search must not start over at each place.
    QByteArray line(5 << 20, 'a');
    line += "=b";
    Harness h;
    h.edit.setUtf8(line);
    h.dialogs.answers = {QString(1000, u'A') + u'='};
    h.run("mnuSwitchRearToFront");
    EXPECT_EQ(h.edit.utf8(),
              "b" + QByteArray(1000, 'a') + "=" + QByteArray((5 << 20) - 1000, 'a') + "\r\n");

    QByteArray commas(5 << 20, 'x');
    for (qsizetype i = 0; i < commas.size(); i += 5000)
        commas[i] = ',';
    Harness s;
    s.edit.setUtf8(commas);
    s.dialogs.answers = {",", ","};
    s.run("mnuDelimitRunningText");
    EXPECT_EQ(s.edit.utf8().count("\r\n"), commas.count(',') + 1);
    s.run("mnuTurnToStream");
    EXPECT_EQ(s.edit.utf8(), commas);
}

} // namespace
