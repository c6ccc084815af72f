// Cutting the content of one kind of tag out of a text.

#include "util/TagContent.h"

#include <gtest/gtest.h>

using namespace ed;

namespace {

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

} // namespace
