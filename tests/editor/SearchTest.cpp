// Find, Find Next and Replace, on a text buffer and once through the batch runner.
#include "editor/LowerCaseSearch.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace ed;
using namespace ed::test;

namespace {

// Find... on a text: the answer typed, then what is selected and remembered (how case is ignored
// is compared with lower-casing both texts below).
TEST(Find, SelectsTheFirstMatchIgnoringCase) {
    struct Case {
        QString text, answer;
        int selStart, selLength; // expected selection
        qint32 searchPos;        // 0: not found
    } cases[] = {
        {"xxABCabc", "abc", 2, 3, 6},
        {"hello", "z", 0, 0, 0},
        {"a\r\nbc", "B", 3, 1, 5}, // CR LF counts two
        // A pair of surrogates is lowered as one character (Deseret capital to small).
        {QStringLiteral("a\U00010400b"), QStringLiteral("\U00010428B"), 1, 3, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString() + " / " + c.answer.toStdString());
        Harness h(c.text);
        h.clipboard.setText(QStringLiteral("from clipboard"));
        h.select(0, 1); // a selection is never what the prompt proposes
        h.dialogs.answers.push_back(c.answer);
        h.run("mnuSearch");
        ASSERT_EQ(h.dialogs.prompts.size(), 1u);
        EXPECT_EQ(h.dialogs.prompts[0].defaultAnswer, "from clipboard");
        EXPECT_EQ(h.setting("frmEdit", "Previous Search"), c.answer);
        EXPECT_EQ(h.form.SearchPos, c.searchPos);
        EXPECT_EQ(h.menu.isEnabled("mnuFindNext"), c.searchPos != 0);
        EXPECT_EQ(h.edit.text(), c.text);
        if (c.searchPos == 0) {
            ASSERT_EQ(h.dialogs.messages.size(), 1u);
            EXPECT_EQ(h.dialogs.messages[0].text, "String not found");
        } else {
            EXPECT_EQ(h.edit.selStart(), c.selStart);
            EXPECT_EQ(h.edit.selLength(), c.selLength);
            EXPECT_TRUE(h.dialogs.messages.empty());
        }
    }
}

TEST(FindNext, WalksMatchesWithoutWrappingThenAsksAgain) {
    Harness h(QStringLiteral("abcABCabc"));
    h.dialogs.answers = {"abc"};
    h.run("mnuSearch");
    for (const int start : {3, 6}) {
        h.run("mnuFindNext");
        EXPECT_EQ(h.edit.selStart(), start);
        EXPECT_EQ(h.form.SearchPos, start + 4);
    }
    EXPECT_EQ(h.dialogs.prompts.size(), 1u); // the stored text was used
    h.run("mnuFindNext");                    // past the last match: no wrap-around
    EXPECT_EQ(h.form.SearchPos, 0);
    EXPECT_FALSE(h.menu.isEnabled("mnuFindNext"));
    EXPECT_EQ(h.dialogs.messages.size(), 1u);

    // The position is 0 now, so Find Next asks again (proposing nothing) and starts at the top.
    h.clipboard.setText("clip");
    h.dialogs.answers = {"CA"};
    h.run("mnuFindNext");
    ASSERT_EQ(h.dialogs.prompts.size(), 2u);
    EXPECT_EQ(h.dialogs.prompts[1].defaultAnswer, "");
    EXPECT_EQ(h.edit.selStart(), 2);
    EXPECT_EQ(h.setting("frmEdit", "Previous Search"), "CA");

    // Cancelled: nothing changes.
    Harness cancelled(QStringLiteral("abc"));
    cancelled.form.SearchPos = 2; // nothing stored: asks even though a position is known
    cancelled.run("mnuFindNext");
    EXPECT_EQ(cancelled.form.SearchPos, 2);
    EXPECT_EQ(cancelled.settings.writes, 0);
}

// Lower case of one character as Find compares: a character whose lower case counts other
// UTF-16 units keeps its own, and dotted capital I is a plain i.
QString lowerReference(const QString& text) {
    QString out;
    for (const char32_t c : text.toUcs4()) {
        char32_t l = c == 0x130 ? U'i' : QChar::toLower(c);
        if (QChar::requiresSurrogates(l) != QChar::requiresSurrogates(c))
            l = c;
        out += QString::fromUcs4(&l, 1);
    }
    return out;
}

// The search over bytes agrees with lower-casing both texts as UTF-16 and searching, on random
// texts full of characters whose case differs (dotted I, sharp s, final sigma, Kelvin sign,
// a capital whose lower case takes three bytes for its two, pairs of surrogates).
TEST(IndexOfIgnoringCase, AgreesWithLowerCasingBoth) {
    const QList<uint> alphabet = QStringLiteral("aAiI\u0130\u0131\u00df\u1e9e\u03a3\u03c3\u03c2"
                                                "\u212a\u023a\u2c65\U00010400\U00010428")
                                     .toUcs4();
    std::mt19937 rng(7);
    auto randomText = [&](int maxLen) {
        QList<uint> s;
        for (int n = int(rng() % unsigned(maxLen + 1)); n > 0; --n)
            s << alphabet[qsizetype(rng() % unsigned(alphabet.size()))];
        return QString::fromUcs4(reinterpret_cast<const char32_t*>(s.constData()), s.size());
    };
    for (int round = 0; round < 3000; ++round) {
        const QString text = randomText(24);
        const QString needle = randomText(3);
        if (needle.isEmpty())
            continue;
        const qsizetype from = qsizetype(rng() % unsigned(text.size() + 2));
        const qsizetype expected =
            from > text.size() ? -1 : lowerReference(text).indexOf(lowerReference(needle), from);
        EXPECT_EQ(indexOfIgnoringCase(toModelUtf8(text), toModelUtf8(needle), from), expected)
            << round;
    }
}

// The document is lowered and searched a piece at a time: a match lying across two pieces, after
// characters of every width, must be found at its UTF-16 position.
TEST(IndexOfIgnoringCase, FindsMatchesAcrossThePiecesOfALongText) {
    const std::u32string filler = U"x\u00e9\u20ac\U0001F600";
    const QString longPattern = QString(300, u'a') + u'B';
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("\u0130STANBUL"), QStringLiteral("istanbul")},
        {QStringLiteral("STRA\u00dfE"), QStringLiteral("stra\u00dfe")},
        {longPattern, longPattern.toLower()},
    };
    for (const auto& [inText, needle] : cases) {
        // The first piece ends 65536 bytes after the start (3 units, 6 bytes, in).
        for (qsizetype bytes = 65120; bytes < 65160; bytes += 3) {
            QString prefix;
            for (qsizetype size = 0, k = 0; size < bytes; ++k) {
                const char32_t c1 = filler[k % filler.size()];
                prefix += QString::fromUcs4(&c1, 1);
                size += c1 < 0x80 ? 1 : c1 < 0x800 ? 2 : c1 < 0x10000 ? 3 : 4;
            }
            const QString text = prefix + QString(400, u'a') + inText + u'x';
            const qsizetype at = prefix.size() + 400;
            EXPECT_EQ(indexOfIgnoringCase(toModelUtf8(text), toModelUtf8(needle), 3), at) << bytes;
            EXPECT_EQ(indexOfIgnoringCase(toModelUtf8(text), toModelUtf8(needle), at + 1), -1);
        }
    }
}

// Replace...: selection and answers in; text, selection, the last message and the remembered
// replacement out.
TEST(Replace, ReplacesExactlyAndSelectsFive) {
    const QString notFound = QStringLiteral("String not found");
    const QString emptyDash = QStringLiteral("Replace - with an empty string?");
    const QString unset = QStringLiteral("<unset>");
    struct Case {
        QString text;
        int selStart, selLength;
        QString answers;    // typed answers separated by "|"
        Answer emptyAnswer; // the reply to "Replace ... with an empty string?"
        QString expected;
        int expStart, expLength;
        QString message; // "" for none
        QString savedWith;
    } cases[] = {
        // Case sensitive; the replacement is remembered even when the text is not found.
        {"ABC", 0, 0, "abc|x", Answer::No, "ABC", 0, 0, notFound, "x"},
        {"aaaaa", 1, 0, "aa|b", Answer::No, "bba", 1, 2, "", "b"},
        {"a,b,,c", 0, 0, ",|VBcrLF", Answer::No, "a\r\nb\r\n\r\nc", 0, 5, "", "VBcrLF"},
        {"foo bar foo", 8, 3, "baz", Answer::No, "baz bar baz", 8, 3, "", "baz"}, // the selection
        {"a-b", 0, 0, "-", Answer::No, "a-b", 0, 0, emptyDash, unset},
        {"a-b-", 2, 0, "-", Answer::Yes, "ab", 2, 0, emptyDash, ""},
        {"abc", 1, 0, "", Answer::No, "abc", 1, 0, "", unset}, // cancelled
        {QStringLiteral("\U0001F600stra\u00dfe Stra\u00dfe"), 0, 0,
         QStringLiteral("a\u00dfe|\u00e4"), Answer::No,
         QStringLiteral("\U0001F600str\u00e4 Str\u00e4"), 0, 5, "", QStringLiteral("\u00e4")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString() + " / " + c.answers.toStdString());
        Harness h(c.text);
        h.setSetting("frmEdit", "Previous Search", "old find");
        h.select(c.selStart, c.selLength);
        for (const QString& a : c.answers.split(u'|', Qt::SkipEmptyParts))
            h.dialogs.answers.push_back(a);
        h.dialogs.buttonAnswers.push_back(c.emptyAnswer);
        h.run("mnuReplace");
        EXPECT_EQ(h.edit.text(), c.expected);
        EXPECT_EQ(h.edit.selStart(), c.expStart);
        EXPECT_EQ(h.edit.selLength(), c.expLength);
        EXPECT_EQ(h.setting("frmEdit", "Replace with"), c.savedWith);
        EXPECT_EQ(h.dialogs.messages.empty() ? QString() : h.dialogs.messages.back().text,
                  c.message);
        if (c.selLength == 0) { // the remembered text is proposed, not the selection
            EXPECT_EQ(h.dialogs.prompts[0].defaultAnswer, "old find");
        }
    }
}

// The search and clipboard commands one after another through the batch runner.
TEST(SearchBatch, FindThenFindNextAndCut) {
    const EditorRun r = runEditorBatch({"--apply", "Search", "--answer", "TWO", "--apply",
                                        "FindNext", "--apply", "Cut", "--report"},
                                       "one two one two");
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "one two one ");
    EXPECT_TRUE(r.report.contains("clipboard: two")) << r.report.join('\n');
    EXPECT_TRUE(r.report.contains("selection: 12,0"));
}

} // namespace
