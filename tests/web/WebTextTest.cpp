// Text rules of the browser session: where an address goes, tag stripping, link recognition,
// content between tags, line breaks.

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
        {"https://example.com", false, "https://example.com"},
        {"FTP://files.example.com/x", false, "FTP://files.example.com/x"},
        {"file:///tmp/a.html", false, "file:///tmp/a.html"},
        {"file://tmp/a.html", false, "http://file://tmp/a.html"},
        {"mailto:joe@example.com", false, "mailto:joe@example.com"},
        {"joe@example.com", true, "mailto:joe@example.com?Subject=Hello"},
        {"example.com/users/@joe", true, "mailto:example.com/users/@joe?Subject=Hello"},
        {"", false, "http://"},
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
        {"", ""},
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
        {"HTTPS://example.com/a.pdf", true, WebLink},
        {"http://", true, NotALink},
        {"mailto:joe@example.com", true, EmailAddress},
        {"MAILTO:joe.smith@mail.example.co.uk?subject=hi", true, EmailAddress},
        {"mailto:", true, NotALink},
        {"javascript:void(0)", true, NotALink},
        {"joe@example.com", true, EmailAddress},
        {"  joe@example.com  ", false, EmailAddress},
        {"www.example.com", false, WebLink},
        {"example.com:8080/path", true, WebLink},
        {"localhost:9222", false, WebLink},
        {"http://example.com", false, NotALink},
        {"joe@@example.com", false, NotALink},
        {".joe@example.com", false, NotALink},
        {"joe@example.c0m", false, NotALink},
        // The top-level domain must be a real one.
        {"o'neil+news@mail.example.MUSEUM", false, EmailAddress},
        {"joe@example.zzz", false, NotALink},
        {"mailto:joe@example.invalid", true, NotALink},
        {"shop.example.xn--p1ai/x", false, WebLink},
        {"two words.com", false, NotALink},
        {"-bad.example.com", false, NotALink},
    };
    for (const Case& c : cases)
        EXPECT_EQ(isThisEmailOrLink(QString::fromUtf8(c.text), c.checkProtocol), c.expected)
            << c.text << " checkProtocol=" << c.checkProtocol;
}

TEST(HtmlTagContent, CutsBetweenTags) {
    struct Case {
        const char* start;
        const char* stop;
        const char* html;
        QStringList expected;
    } cases[] = {
        {"<b>", "</b>", "x<b>one</b> y <B class=\"k\">two</b>", {">one", " class=\"k\">two"}},
        {"<title>", "</title>", "<head><TITLE>Home</TITLE></head>", {">Home"}},
        {"<i>", "</i>", "<b>nothing here</b>", {""}},
        {"<b>", "</b>", "<b>x</b>", {">x"}},
        {"", "</b>", "<b>x</b>", {""}},
        {"<b>", "", "<b>x</b>", {""}},
        // An unclosed element ends where the next one starts; the search then goes on after
        // that start, so the element that starts there is passed over.
        {"<li>", "</li>", "<li>a<li>b</li><li>c</li>", {">a", ">c"}},
        // Characters whose lower case is longer or shorter do not move the cut.
        {"<b>", "</b>", "\xc4\xb0\xe2\x84\xaa<B>\xc3\x9f</B>", {">\xc3\x9f"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(htmlTagContent(QString::fromUtf8(c.start), QString::fromUtf8(c.stop),
                                 QString::fromUtf8(c.html)),
                  c.expected)
            << c.html;
}

TEST(HtmlTagContent, TagsWhereverTheyLieInALongText) {
    // The text is lowered stretch by stretch as the search goes: a tag across the end of a
    // stretch, or far behind the start, is found all the same.
    for (qsizetype before : {0, 65530, 65534, 65535, 65536, 200000}) {
        const QByteArray html =
            QByteArray(before, 'x') + "<B>v" + QByteArray(1 << 20, 'y') + "</B>";
        const QList<QByteArrayView> out = htmlTagContentUtf8("<b>", "</b>", html);
        ASSERT_EQ(out.size(), 1) << before;
        EXPECT_EQ(out[0].size(), 2 + (1 << 20)) << before;
        EXPECT_TRUE(out[0].startsWith(">v")) << before;
    }
}

TEST(HtmlTagContent, UnfinishedSearchStartsOverUntilThePassLimit) {
    // The second <b> is never closed: every second pass finds the first element again.
    const QStringList out = htmlTagContent("<b>", "</b>", "<b>one</b><b>open");
    EXPECT_EQ(out.size(), 5000);
    EXPECT_EQ(out.count(">one"), 5000);
}

TEST(HtmlTagContent, StopsAtTenThousandEntries) {
    QString html;
    for (int i = 0; i < 12000; ++i)
        html += QStringLiteral("<td>%1</td>").arg(i);
    const QStringList out = htmlTagContent("<td>", "</td>", html);
    ASSERT_EQ(out.size(), 10000);
    EXPECT_EQ(out.back(), ">9999");
}

TEST(ToCrLf, EveryLineBreakBecomesCrLf) {
    EXPECT_EQ(toCrLf("a\nb\r\nc\rd\n"), "a\r\nb\r\nc\r\nd\r\n");
    EXPECT_EQ(toCrLf(""), "");
}

} // namespace
