// Text rules of the browser session: where an address goes, tag stripping, link recognition,
// line breaks.

#include "web/WebText.h"

#include <gtest/gtest.h>

using namespace ed::web;

namespace {

TEST(NavigationTarget, ProtocolTableDecides) {
    struct Case {
        const char* url;
        bool mail;
        const char* sent;
    } cases[] = {
        {"www.example.com", false, "http://www.example.com"},
        {"FTP://files.example.com/x", false, "FTP://files.example.com/x"},
        {"file:///tmp/a.html", false, "file:///tmp/a.html"},
        {"file://tmp/a.html", false, "http://file://tmp/a.html"},
        {"joe@example.com", true, "mailto:joe@example.com?Subject=Hello"},
        {"example.com/users/@joe", true, "mailto:example.com/users/@joe?Subject=Hello"},
    };
    for (const Case& c : cases) {
        const NavigationTarget t = navigationTarget(QString::fromUtf8(c.url));
        EXPECT_EQ(t.mail, c.mail) << c.url;
        EXPECT_EQ(t.text, QString::fromUtf8(c.sent)) << c.url;
    }
}

TEST(StripHtml, DropsTagsAndStrayClosingBrackets) {
    const std::pair<const char*, const char*> cases[] = {
        {"a<b>c</b>d>e", "acde"},
        {"<p class=\"x\">Hello&nbsp;<i>you</i></p>", "Hello&nbsp;you"},
        {"open <tag never closed", "open "},
        {">>x", "x"},
    };
    for (const auto& [in, out] : cases)
        EXPECT_EQ(stripHtml(QString::fromUtf8(in)), QString::fromUtf8(out)) << in;
}

TEST(IsThisEmailOrLink, ClassifiesAddresses) {
    struct Case {
        const char* text;
        bool checkProtocol;
        int expected;
    } cases[] = {
        {"http://example.com/", true, WebLink},
        {"http://", true, NotALink},
        {"mailto:joe@example.com", true, EmailAddress},
        {"javascript:void(0)", true, NotALink},
        {"  joe@example.com  ", false, EmailAddress},
        {"www.example.com", false, WebLink},
        {"localhost:9222", false, WebLink},
        {"http://example.com", false, NotALink},
        {"joe@example.c0m", false, NotALink},
        // The top-level domain must be a real one.
        {"o'neil+news@mail.example.MUSEUM", false, EmailAddress},
        {"mailto:joe@example.invalid", true, NotALink},
        {"shop.example.xn--p1ai/x", false, WebLink},
        {"two words.com", false, NotALink},
    };
    for (const Case& c : cases)
        EXPECT_EQ(isThisEmailOrLink(QString::fromUtf8(c.text), c.checkProtocol), c.expected)
            << c.text << " checkProtocol=" << c.checkProtocol;
}

TEST(ToCrLf, EveryLineBreakBecomesCrLf) {
    EXPECT_EQ(toCrLf("a\nb\r\nc\rd\n"), "a\r\nb\r\nc\r\nd\r\n");
}

} // namespace
