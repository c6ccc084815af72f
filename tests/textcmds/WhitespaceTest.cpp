// The space and blank-line commands, and their one-pass forms against the step-by-step
// replacements on random texts.
#include "support/Fakes.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;
using namespace ed::test;

namespace {

// What the comparison with the step-by-step replacements below does not show: selections, and
// the commands it leaves out.
TEST(WhitespaceCommands, Tidy) {
    const struct {
        const char* item;
        const char* text;
        int selStart, selLength;
        const char* expected;
    } cases[] = {
        {"mnuRemoveAllSpaces", "x a b y", 2, 3, "x ab y"},
        {"mnuTrimLeadingAndTrailingSpaces", "  a  \r\n\tb ", 0, 0, "a\r\n\tb\r\n"},
        {"mnuTrimLeadingAndTrailingSpaces", "", 0, 0, "\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " on " + c.text);
        const auto h = runOn(c.item, QString::fromUtf8(c.text), {}, c.selStart, c.selLength);
        EXPECT_EQ(h->edit.text(), QString::fromUtf8(c.expected));
        EXPECT_TRUE(h->log.errors.empty() && h->dialogs.prompts.empty());
        if (c.selLength > 0) { // the caret goes back to where the selection started
            EXPECT_EQ(h->edit.selStart(), c.selStart);
            EXPECT_EQ(h->edit.selLength(), 0);
        }
    }
    for (const char* text : {"", "x\r\ny"}) // 301 line breaks go in front
        EXPECT_EQ(runOn("mnuInsertBlankLines", text, {}, 1)->edit.text(),
                  QStringLiteral("\r\n").repeated(301) + text);
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

} // namespace
