// The case commands: selections, full Unicode mappings, and proper case and crippled text
// against a character-by-character model on random texts.
#include "support/Fakes.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;
using namespace ed::test;

namespace {

// Selections (upper and lower case of every character are compared with Qt's in
// CaseMappingTest, proper case and crippled text with a model below).
TEST(CaseCommands, ConvertTheSelectionOrTheWholeText) {
    const struct {
        const char* item;
        const char* text;
        int selStart, selLength;
        const char* expected;
        int caret; // expected selection start afterwards; -1: not checked
    } cases[] = {
        // A selection of spaces is still a selection for lower and upper case.
        {"mnuConvertToLowerCase", "AB   CD", 2, 3, "AB   CD", 2},
        {"mnuConvertToUpperCase", "xxabyy", 2, 2, "xxAByy", 2},
        // Not for proper case, which then converts the whole text.
        {"mnuConvertToProperCase", "ab   cd", 2, 3, "Ab   Cd", -1},
        {"mnuConvertToProperCase", "xx hELLO wORLD yy", 3, 11, "xx Hello World yy", 3},
        {"mnuCapitalizeEachWord", "the  quick fox", 0, 0, "The  Quick Fox ", -1},
        {"mnuCapitalizeEachWord", "xx ab cd yy", 3, 5, "xx Ab Cd  yy", 3},
        {"mnuCapitalizeEachWord", "", 0, 0, " ", -1},
        {"mnuConvertToCrippledText", "  abc  ", 0, 0, "aBc", -1},
        {"mnuConvertToCrippledText", "[a b]", 1, 3, "[a b]", 0},
        // The selected stretch loses its edge spaces; the caret is not put back.
        {"mnuConvertToCrippledText", "x ab y", 1, 4, "xaBy", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.item) + " on " + c.text);
        const auto h = runOn(c.item, QString::fromUtf8(c.text), {}, c.selStart, c.selLength);
        EXPECT_EQ(h->edit.text(), QString::fromUtf8(c.expected));
        EXPECT_EQ(h->edit.assignments(), 1);
        EXPECT_TRUE(h->log.errors.empty());
        if (c.caret >= 0) {
            EXPECT_EQ(h->edit.selStart(), c.caret);
            EXPECT_EQ(h->edit.selLength(), 0);
        }
    }
}

// Characters one at a time, as proper case and crippled text are meant to work: a word starts
// after white space or NUL; crippled text upper-cases odd 0-based UTF-16 positions; a mapping
// that changes how many units a character takes is not made, a lone surrogate stays as it is.
QString mapByCharacter(const QString& s, bool proper) {
    QString out;
    bool wordStart = true;
    qsizetype pos = 0;
    for (qsizetype i = 0; i < s.size();) {
        char32_t c = s[i].unicode();
        qsizetype units = 1;
        if (s[i].isHighSurrogate() && i + 1 < s.size() && s[i + 1].isLowSurrogate())
            c = QChar::surrogateToUcs4(s[i], s[i + 1]), units = 2;
        char32_t m = c;
        if (!QChar::isSurrogate(c)) {
            if (proper) {
                const bool boundary = QChar::isSpace(c) || c == 0;
                m = boundary ? c : wordStart ? QChar::toTitleCase(c) : QChar::toLower(c);
                wordStart = boundary;
            } else {
                m = pos % 2 ? QChar::toUpper(QChar::toLower(c)) : QChar::toLower(c);
            }
        }
        if (QChar::requiresSurrogates(m) != QChar::requiresSurrogates(c))
            m = c;
        out += QString::fromUcs4(&m, 1);
        i += units;
        pos += units;
    }
    return out;
}

// Random texts long enough for the sixteen-byte blocks, with characters of every UTF-8 length
// at every offset, white space of both kinds and lone surrogates.
TEST(CharacterMapping, ProperAndCrippledMatchCharacterByCharacter) {
    QStringList pieces =
        QStringLiteral("a|B|z|Q| | |\t|\v|\r\n|.|é|\u00a0|\u2003|Σ|İ|ǅ|ﬀ|ı|ɐ|\u212a|😀|𐐀")
            .split(u'|');
    pieces << QString(QChar(0xD800)) << QString(QChar(u'\0'));
    std::mt19937 rng(11);
    for (int round = 0; round < 400; ++round) {
        QString s;
        for (int i = int(rng() % 70); i > 0; --i)
            s += pieces[rng() % pieces.size()];
        SCOPED_TRACE(s.toStdString());
        Harness proper(s);
        proper.run("mnuConvertToProperCase");
        EXPECT_EQ(proper.edit.text(), mapByCharacter(s, true));
        // Crippled text trims spaces first; a leading "x" keeps them inside.
        const QString inner = QStringLiteral("x") + s + QStringLiteral("x");
        Harness crippled(inner);
        crippled.run("mnuConvertToCrippledText");
        EXPECT_EQ(crippled.edit.text(), mapByCharacter(inner, false));
    }
}

} // namespace
