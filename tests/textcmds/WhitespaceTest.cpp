#include "support/Fakes.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;
using namespace ed::test;

namespace {

struct WsCase {
    const char* item;
    const char* text;
    int selStart, selLength;
    const char* expected;
};

class WhitespaceTest : public ::testing::TestWithParam<WsCase> {};

TEST_P(WhitespaceTest, Tidies) {
    const WsCase& c = GetParam();
    Harness h(QString::fromUtf8(c.text));
    h.select(c.selStart, c.selLength);
    h.run(QString::fromLatin1(c.item));
    EXPECT_EQ(h.edit.text(), QString::fromUtf8(c.expected));
    EXPECT_TRUE(h.log.errors.empty());
    EXPECT_TRUE(h.dialogs.prompts.empty());
    if (c.selLength > 0) { // the caret goes back to where the selection started
        EXPECT_EQ(h.edit.selStart(), c.selStart);
        EXPECT_EQ(h.edit.selLength(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WhitespaceTest,
    ::testing::Values(
        WsCase{"mnuRemoveAllSpaces", "x a b y", 2, 3, "x ab y"},
        WsCase{"mnuRemoveAllSpaces", " a\tb  c \r\n", 0, 0, "a\tbc\r\n"},
        WsCase{"mnuTrimLeadingAndTrailingSpaces", "  a  \r\n\tb ", 0, 0, "a\r\n\tb\r\n"},
        WsCase{"mnuTrimLeadingAndTrailingSpaces", "", 0, 0, "\r\n"},
        WsCase{"mnuCnvDblSpcToSingle", "a     b", 0, 0, "a b"},
        WsCase{"mnuReplaceDoubleBlankLineWithSingle", "a\r\n\r\n  \r\nb\r\n\r\nc", 0, 0,
               "a\r\n\r\nb\r\n\r\nc\r\n"},
        WsCase{"mnuTrimSpaces", "a\r\n  \r\n\t\r\n\r\n b", 0, 0, "a\r\n\t\r\n b\r\n"},
        WsCase{"mnuRemoveCRLF", "one\r\ntwo\r\n\r\nthree", 0, 0, "one two\r\n\r\nthree"},
        WsCase{"mnuRemoveCRLF", "a^b", 0, 0, "a\r\n\r\nb"},
        WsCase{"mnuRemoveCRLF", "a\r\n\r\n\r\nb", 0, 0, "a\r\n\r\n b"},
        WsCase{"mnuRemoveCRLF", "a\nb\r\rc", 0, 0, "a\nb\r\rc"}));

TEST(InsertBlankLines, Puts301BreaksInFront) {
    for (const char* text : {"", "x\r\ny"}) {
        Harness h(QString::fromUtf8(text));
        h.select(1, 0);
        h.run("mnuInsertBlankLines");
        EXPECT_EQ(h.edit.text(), QStringLiteral("\r\n").repeated(301) + QString::fromUtf8(text));
        EXPECT_EQ(h.edit.assignments(), 1);
    }
}

// The one-pass forms against the literal step-by-step replacements, on random texts made of the
// characters that matter, long enough for the sixteen-byte blocks.
QString replaceUntilGone(QString s, const QString& from, const QString& to) {
    while (s.contains(from))
        s.replace(from, to);
    return s;
}

QString joinStepByStep(QString s) {
    s.replace(QStringLiteral("\r\n\r\n"), QStringLiteral("^"));
    s.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    s.replace(QStringLiteral("^"), QStringLiteral("\r\n\r\n"));
    s.replace(QStringLiteral("  "), QStringLiteral(" "));
    return s;
}

QString linesStepByStep(const QString& s, bool dropAllBlank) {
    QString out;
    bool previousBlank = false;
    for (const QString& line : s.split(QStringLiteral("\r\n"))) {
        const bool blank = QString(line).remove(u' ').isEmpty();
        if (blank && (dropAllBlank || previousBlank))
            continue;
        previousBlank = blank;
        out += line + QStringLiteral("\r\n");
    }
    return out;
}

QString run(const char* item, const QString& text) {
    Harness h(text);
    h.run(item);
    return h.edit.text();
}

TEST(OnePassForms, MatchTheStepByStepReplacements) {
    std::mt19937 rng(7);
    const QString pieces[] = {"a", " ", " ", " ", "\r", "\n", "\r\n", "^", "\t", "é", "😀"};
    for (int round = 0; round < 2000; ++round) {
        QString s;
        for (int i = int(rng() % 60); i > 0; --i)
            s += pieces[rng() % std::size(pieces)];
        SCOPED_TRACE(s.toStdString());
        EXPECT_EQ(run("mnuRemoveCRLF", s), joinStepByStep(s));
        EXPECT_EQ(run("mnuCnvDblSpcToSingle", s),
                  replaceUntilGone(s, QStringLiteral("  "), QStringLiteral(" ")));
        EXPECT_EQ(run("mnuRemoveAllSpaces", s), QString(s).remove(u' '));
        EXPECT_EQ(run("mnuTrimSpaces", s), linesStepByStep(s, true));
        EXPECT_EQ(run("mnuReplaceDoubleBlankLineWithSingle", s), linesStepByStep(s, false));
    }
}

TEST(RemoveCRLF, ClearsThenAssigns) {
    Harness h(QStringLiteral("a\r\nb"));
    h.run("mnuRemoveCRLF");
    EXPECT_EQ(h.edit.text(), "a b");
    EXPECT_EQ(h.edit.assignments(), 2);
}

} // namespace
