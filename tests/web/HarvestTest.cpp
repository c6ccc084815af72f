// Harvesting a page: e-mail addresses cut out of running text and mailto: links, phone and fax
// numbers, and the Email and Any Tag Content commands over a scripted browser (repeats, an
// unreadable frame, prompts and their remembered answers).

#include "FakeBrowser.h"
#include "support/Fakes.h"

#include "web/EmailFinder.h"
#include "web/PhoneFinder.h"

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;
using namespace ed::web;

namespace {

TEST(EmailsInText, CutsAddressesOutOfRunningText) {
    const std::pair<const char*, QStringList> cases[] = {
        {"Write to joe@example.com today.", {"joe@example.com"}},
        {"<a.b+tag@mail.example.co.uk>, (x_y@example.org)",
         {"a.b+tag@mail.example.co.uk", "x_y@example.org"}},
        // Quotes and paths before an address, and punctuation after it, are not part of it.
        {"'quoted@example.com' /path/joe@example.net. ?to=end-@example.org-",
         {"quoted@example.com", "joe@example.net", "end-@example.org"}},
        // A domain running into the next sentence ends at its last real top-level domain.
        {"mail joe@example.com.Thanks", {"joe@example.com"}},
        {"x..y@example.com", {"y@example.com"}},
        {"Ünïcödé@exämple.com", {"Ünïcödé@exämple.com"}},
        // Not addresses: no real top-level domain, no domain, no local part, a local part
        // longer than 64 characters.
        {"joe@example.invalidtld joe@localhost @example.com joe@ a@b", {}},
        {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa@example.com", {}},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(emailsInText(QString::fromUtf8(text)), expected) << text;
}

TEST(EmailsInMailto, TakesEveryAddressBeforeTheQuery) {
    const std::pair<const char*, QStringList> cases[] = {
        {"MAILTO:a@example.com,b@example.org?cc=c@example.net", {"a@example.com", "b@example.org"}},
        {"mailto:first%40example.com%2C%20second@example.net",
         {"first@example.com", "second@example.net"}},
        {"mailto:J%C3%B6rg@example.de?subject=hi", {"Jörg@example.de"}},
        {"mailto:?subject=nobody", {}},
        {"http://example.com/joe@example.com", {}},
    };
    for (const auto& [href, expected] : cases)
        EXPECT_EQ(emailsInMailto(QString::fromUtf8(href)), expected) << href;
}

TEST(PhoneNumberLines, FindFormatAndPlaceNumbersAndKeepFaxesApart) {
    const QString words = QStringLiteral("word ").repeated(400); // a line read in pieces
    struct Case {
        QStringList texts, phones, faxes;
    };
    const Case cases[] = {
        // Repeats, numbers that are not valid, and fax labels before the number on its line.
        {{"Call (212) 555-0142 or +44 20 7946 0958.\r\nFax: 212-555-0199, phone 415.555.2671 "
          "fax 202 456 1111\r\nagain 1 212 555 0142, not a number 555-12",
          "+33 1 42 68 53 00 and +1 (415) 555-2671\nFAX +33 1 42 68 53 01"},
         {"(212) 555-0142\tNew York, NY", "+44 20 7946 0958\tLondon",
          "(415) 555-2671\tSan Francisco, CA", "+33 1 42 68 53 00\tParis"},
         {"(212) 555-0199\tNew York, NY", "(202) 456-1111\tWashington D.C.",
          "+33 1 42 68 53 01\tParis"}},
        {{"no numbers, 12 34", ""}, {}, {}},
        // A number labelled fax anywhere is not a phone number.
        {{"Phone 212-555-0199", "Fax: 212-555-0199"}, {}, {"(212) 555-0199\tNew York, NY"}},
        {{"Fax:\n212-555-0199"}, {"(212) 555-0199\tNew York, NY"}, {}},
        {{"fax 212-555-0199 " + words + "415-555-2671 fax: " + words + "202-456-1111"},
         {"(415) 555-2671\tSan Francisco, CA"},
         {"(212) 555-0199\tNew York, NY", "(202) 456-1111\tWashington D.C."}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.texts.join('|').left(60).toStdString());
        EXPECT_EQ(phoneNumberLines(c.texts, false), c.phones);
        EXPECT_EQ(phoneNumberLines(c.texts, true), c.faxes);
    }
}

using Browser = BrowserHarness;

// Links' addresses come first; a repeat in any case and an unreadable frame are skipped.
TEST(HarvestCommands, AddressesComeFromThePageAndItsReadableFrames) {
    Browser b("doc");
    b.window().top = {
        "", "Top@Example.com links@EXAMPLE.com", {"http://x/", "mailto:links@example.com"}};
    b.window().frames = {{"", "frame@example.org", {}},
                         {"", "hidden@example.net", {}, true},
                         {"", "top@example.com", {}}};
    b.h.select(3, 0);
    b.h.run("mnuGetBrowserEmail");
    EXPECT_EQ(b.h.edit.text(), "doclinks@example.com\r\nTop@Example.com\r\nframe@example.org\r\n");
    EXPECT_EQ(b.h.form.UndoText, "doc");
    EXPECT_TRUE(b.h.log.errors.empty());
}

TEST(HarvestCommands, AnyTagContentAsksForTagsAndCutsThePage) {
    struct Case {
        QStringList answers;
        QString inserted;
        QString start, stop; // remembered afterwards
    };
    const Case cases[] = {
        {{"<b>", "</B>"}, ">one\r\n class=\"x\">two\r\n", "<b>", "</B>"},
        {{"<i>", "</i>"}, "\r\n", "<i>", "</i>"}, // no element: the one empty entry
        {{"<b>"}, "", "<b>", "stop"},             // stop tag cancelled: nothing happens
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answers.join(' ').toStdString());
        Browser b("x");
        b.window().top.html = "<p><b>one</b> <B class=\"x\">two</B></p>";
        b.h.setSetting("frmEdit", "GetHtmlTagsStart", "start");
        b.h.setSetting("frmEdit", "GetHtmlTagsStop", "stop");
        b.h.select(1, 0);
        b.h.dialogs.answers.assign(c.answers.begin(), c.answers.end());
        b.h.run("mnuAnyTagContent");
        EXPECT_EQ(b.h.edit.text(), "x" + c.inserted);
        EXPECT_EQ(b.h.setting("frmEdit", "GetHtmlTagsStart"), c.start);
        EXPECT_EQ(b.h.setting("frmEdit", "GetHtmlTagsStop"), c.stop);
    }
}

} // namespace
