#include "textcmds/LineFiltersSupport.h"

#include <gtest/gtest.h>

using namespace ed;

namespace {

// A document of many blocks: ASCII lines, lines with accented letters, a line with a character
// that lowers into two (which sends its block down the line-by-line path), lone CR and LF
// inside lines, empty lines, and hits right at block edges.
QString bigDocument() {
    static const char16_t* const pieces[] = {
        u"alpha ERROR beta", u"",           u"  ",    u"gamma\rdelta",
        u"epsilon\nzeta",    u"Ärger café", u"error", u"xerrorx",
        u"no match here",    u"ÄRGER",      u"ERR",   u"OR",
        u"straße İstanbul",
    };
    QString doc;
    quint32 s = 7;
    for (int i = 0; i < 30000; ++i) {
        s = s * 1103515245u + 12345u;
        const int k = int((s >> 16) % 13);
        // The line with İ only now and then, so most blocks stay on the fast path.
        if (k == 12 && (s >> 8) % 400 != 0)
            continue;
        doc += QStringView(pieces[k]);
        doc += u"\r\n";
    }
    doc += u"last error"; // no break after the last line
    return doc;
}

// Each line with whether its lower-cased form holds `pattern`, line by line.
std::vector<std::pair<QString, bool>> expected(const QString& text, const QString& pattern) {
    std::vector<std::pair<QString, bool>> lines;
    forEachCrLfLine(text, [&](QStringView line) {
        lines.emplace_back(line.toString(), line.toString().toLower().contains(pattern));
    });
    return lines;
}

TEST(LineRuns, SameLinesAndVerdictsAsLineByLine) {
    const QString doc = bigDocument();
    for (const char16_t* p : {u"error", u"ärger", u"r c", u"i̇stanbul", u"zz", u"e"}) {
        const QString pattern = QString::fromUtf16(p);
        SCOPED_TRACE(pattern.toStdString());
        for (const QString& text :
             {doc, doc + QStringLiteral("\r\n"), QStringLiteral("error"), QString()}) {
            std::vector<std::pair<QString, bool>> got;
            const QStringMatcher matcher(pattern);
            LowerCaser lower;
            forEachLineRun(text, matcher, lower, [&](QStringView run, bool matched) {
                ASSERT_TRUE(!matched || !run.contains(u"\r\n")) << "a hit is one line";
                forEachCrLfLine(run,
                                [&](QStringView l) { got.emplace_back(l.toString(), matched); });
            });
            EXPECT_TRUE(got == expected(text, pattern));
        }
    }
}

} // namespace
