// Finding the lines that hold a text, block by block over the bytes, against a line-by-line
// search of the lower-cased text.
#include "textcmds/LineHits.h"
#include "util/ModelText.h"

#include <gtest/gtest.h>

#include <random>

using namespace ed;

namespace {

// The simple lower case character for character, as QChar gives it.
QString simpleLower(const QString& s) {
    QString out;
    for (qsizetype i = 0; i < s.size(); ++i) {
        char32_t c = s[i].unicode();
        if (s[i].isHighSurrogate() && i + 1 < s.size() && s[i + 1].isLowSurrogate())
            c = QChar::surrogateToUcs4(s[i], s[i + 1]), ++i;
        char32_t m = QChar::toLower(c);
        if (QChar::requiresSurrogates(m) != QChar::requiresSurrogates(c))
            m = c;
        if (QChar::requiresSurrogates(m))
            out += QChar(QChar::highSurrogate(m)), out += QChar(QChar::lowSurrogate(m));
        else
            out += QChar(char16_t(m));
    }
    return out;
}

// A document of many blocks: ASCII lines, lines whose lower case changes their length in bytes
// (before a hit, in it, after it), lone CR and LF, empty lines, no break after the last line.
QString bigDocument() {
    static const char16_t* const pieces[] = {
        u"alpha ERROR beta", u"",      u"  ",        u"gamma\rdelta", u"epsilon\nzeta",
        u"Ärger café",       u"error", u"xerrorx",   u"no match",     u"ÄRGER",
        u"\u212Aerror",      u"OR",    u"ȺİErRoR Ⱥ", u"😀err😀or",
    };
    QString doc;
    std::mt19937 rng(11);
    for (int i = 0; i < 30000; ++i) {
        const unsigned k = rng() % 14;
        // The lines that change length only now and then, so most blocks keep their offsets.
        if ((k == 10 || k == 12) && rng() % 300 != 0)
            continue;
        doc += QStringView(pieces[k]);
        doc += u"\r\n";
    }
    return doc + QStringLiteral("last error");
}

TEST(LineHits, SameLinesAndPlacesAsLineByLine) {
    const QString doc = bigDocument();
    struct Case {
        const char16_t* pattern;
        Utf8Lowering::Mapping mapping;
    };
    for (const Case& c :
         {Case{u"error", Utf8Lowering::Mapping::Full}, Case{u"ärger", Utf8Lowering::Mapping::Full},
          Case{u"i̇er", Utf8Lowering::Mapping::Full}, Case{u"r c", Utf8Lowering::Mapping::Simple},
          Case{u"ⱥi", Utf8Lowering::Mapping::Simple}, Case{u"zz", Utf8Lowering::Mapping::Simple},
          Case{u"\na", Utf8Lowering::Mapping::Full}, Case{u"a\r", Utf8Lowering::Mapping::Full}}) {
        const QString pattern = QString::fromUtf16(c.pattern);
        SCOPED_TRACE(pattern.toStdString());
        for (const QString& text : {doc, doc + QStringLiteral("\r\n"), QString()}) {
            // Line by line: the first place of the pattern in the lower case, in characters.
            std::vector<std::pair<qsizetype, qsizetype>> expected; // line number, character
            const QStringList lines = text.split(QStringLiteral("\r\n"));
            for (qsizetype l = 0; l < lines.size(); ++l) {
                const QString low = c.mapping == Utf8Lowering::Mapping::Full
                                        ? lines[l].toLower()
                                        : simpleLower(lines[l]);
                const qsizetype at = low.indexOf(pattern);
                if (at >= 0)
                    expected.emplace_back(l, c.mapping == Utf8Lowering::Mapping::Full
                                                 ? -1
                                                 : low.left(at).toUcs4().size());
            }

            const QByteArray bytes = toModelUtf8(text);
            Utf8Lowering lowering(c.mapping);
            const ByteSearch search(toModelUtf8(pattern));
            LineHits hits(bytes, search, &lowering);
            std::vector<std::pair<qsizetype, qsizetype>> got;
            qsizetype line = 0, counted = 0; // lines before the offset `counted`
            LineHit hit;
            while (hits.next(hit)) {
                const QByteArrayView all(bytes);
                ASSERT_GE(hit.start, counted);
                ASSERT_TRUE(hit.start == 0 || all.first(hit.start).endsWith("\r\n"));
                ASSERT_TRUE(hit.end == all.size() || all.sliced(hit.end).startsWith("\r\n"));
                line += countModelLines(all.sliced(counted, hit.start - counted)) - 1;
                counted = hit.start;
                const qsizetype chars =
                    fromModelUtf8(all.sliced(hit.start, hit.at - hit.start)).toUcs4().size();
                got.emplace_back(line, c.mapping == Utf8Lowering::Mapping::Full ? -1 : chars);
            }
            EXPECT_EQ(got, expected);
        }
    }
}

} // namespace
