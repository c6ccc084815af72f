// The batch runner works on the bytes of a UTF-8 file directly for some commands. Whatever the
// input, that must give exactly what the decoded document gives: every command with every answer
// is run both ways over a table of awkward documents and the results compared.
#include "app/BatchRunner.h"
#include "app/StartUp.h"
#include "support/Fakes.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

#include <cstdio>

using namespace ed;

namespace {

struct Outcome {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

QByteArray readAll(FILE* f) {
    QByteArray bytes;
    std::rewind(f);
    char buf[4096];
    for (size_t k; (k = std::fread(buf, 1, sizeof buf, f)) > 0;)
        bytes.append(buf, qsizetype(k));
    std::fclose(f);
    return bytes;
}

Outcome run(const QString& in, const QString& item, const QStringList& answers, bool direct) {
    BatchOptions o;
    BatchStep step;
    step.item = item;
    step.answers = answers;
    o.steps.push_back(step);
    o.inFile = in;
    o.directUtf8 = direct;
    static const StartUpState startUp = [] {
        StartUpState s;
        runStartUp(s, QCoreApplication::applicationFilePath(), {});
        return s;
    }();
    FILE* out = std::tmpfile();
    FILE* err = std::tmpfile();
    Outcome r;
    r.status = runBatch(o, startUp, out, err);
    r.out = readAll(out);
    r.err = readAll(err);
    return r;
}

// Lines of every kind, more than one 64 KB block of them, with a Kelvin sign (lower case "k",
// one byte instead of three) in one block only.
QByteArray manyLines() {
    const char* kinds[] = {"plain ascii line with error inside",
                           "Stra\xC3\x9F"
                           "e Caf\xC3\xA9 \xC3\x84rger na\xC3\xAFve",
                           "",
                           "   spaced   out   ",
                           "ERROR at the start",
                           "tab\there\rlone CR"};
    QByteArray b;
    for (int i = 0; i < 9000; ++i) {
        b += kinds[i % 6];
        if (i == 4500)
            b += " \xE2\x84\xAA";
        b += "\r\n";
    }
    return b;
}

const QByteArray kDocuments[] = {
    "",
    "abc",
    "a b\r\nc d\r\n",
    "a b\nc d\n",
    "x\r\ny\nz",
    "a\rb \rc",
    "a\rb\r\nc ",
    "\nstarts with a break",
    " \r\n  \r\n\r\n",
    "stra\xC3\x9F"
    "e STRASSE\r\nKelvin \xE2\x84\xAA k\r\n",
    "\xC4\xB0stanbul \xC4\xB1i I\r\n",
    "\xC8\xBA \xE2\xB1\xA5 \xC7\x85 \xC7\x86 \xC5\x89 \xCE\x90 \xEF\xAC\x80 \xE1\xBA\x9E\n",
    "\xCE\xA3\xCE\x91\xCE\xA3 \xCF\x83\xCE\xB1\xCF\x82\n",
    "emoji \xF0\x9F\x98\x80 \xF0\x90\x90\x80 \xF0\x90\x90\xA8\r\n",
    "\xEF\xBB\xBF"
    "bom \xC3\x9F text\r\n",
    "caf\xE9 in Latin-1\r\n",
    "\xEF\xBB\xBF"
    "bom then \xFF\r\n",
    "\xC0\xAF overlong\n",
    "\xED\xA0\x80 surrogate\n",
    "cut short \xE2\x82",
    QByteArray("nul\0byte\r\n", 10),
    QByteArray(70, 'a') + "\xC3\xA9" + QByteArray(70, 'B') + "\r\n",
    " 12 \r\n-3.5\r\n+7\r\n.5\r\n5.\r\n2.5\r\n3.5\r\n\t42\t\r\n1 "
    "2\r\n\xD9\xA3\r\n4\xC2\xA0\r\n-\r\n",
    "5000\n4999.5\n5000.5\n  -0  \n",
    "big\r\n99999999999\r\n",
    manyLines(),
};

struct Variant {
    const char* item;
    QStringList answers;
};

const QString kLoneHigh = QString(QChar(0xD83D));

const Variant kVariants[] = {
    {"ConvertToUpperCase", {}},
    {"ConvertToLowerCase", {}},
    {"RemoveAllSpaces", {}},
    {"TrimLeadingAndTrailingSpaces", {}},
    {"ByNumericValue", {"<5000"}},
    {"ByNumericValue", {">3"}},
    {"ByNumericValue", {"=4"}},
    {"ByNumericValue", {"<x"}},
    {"ByNumericValue", {"<99999999999"}},
    {"AddPrefix", {"x"}},
    {"AddPrefix", {"  sp "}},
    {"AddPrefix", {"  "}},
    {"AddPrefix", {QString::fromUtf8("\xC3\x9F\xE2\x82\xAC")}},
    {"AddPrefix", {kLoneHigh}},
    {"AddPrefix", {}},
    {"AddSuffix", {"y"}},
    {"AddSuffix", {" s "}},
    {"AddSuffix", {QString(QChar(0xDE00))}},
    {"RemoveLinesContainingText", {"error"}},
    {"RemoveLinesContainingText", {"k"}},
    {"RemoveLinesContainingText", {QString::fromUtf8("i\xCC\x87")}},
    {"RemoveLinesContainingText", {" "}},
    {"RemoveLinesContainingText", {"\r"}},
    {"RemoveLinesContainingText", {kLoneHigh}},
    {"RemoveLinesContainingText", {}},
    {"RemoveLinesNotContainingText", {"ERROR"}},
    {"RemoveLinesNotContainingText", {QString::fromUtf8("\xC3\x9F")}},
    {"RemoveLinesNotContainingText", {QString::fromUtf8("\xCF\x83")}},
    {"RemoveLinesNotContainingText", {QString::fromUtf8("\xF0\x9F\x98\x80")}},
    {"RemoveLinesNotContainingText", {"a\r\nb"}},
    {"RemoveLinesNotContainingText", {"e"}},
};

TEST(DirectUtf8, GivesWhatTheDecodedDocumentGives) {
    const QString dir = test::makeTempDir();
    for (size_t d = 0; d < std::size(kDocuments); ++d) {
        const QString in = dir + "/in.txt";
        QFile f(in);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(kDocuments[d]);
        f.close();
        for (const Variant& v : kVariants) {
            const Outcome model = run(in, v.item, v.answers, false);
            const Outcome direct = run(in, v.item, v.answers, true);
            const QString what =
                QStringLiteral("%1 %2 on document %3").arg(v.item, v.answers.join(u'|')).arg(d);
            EXPECT_EQ(direct.status, model.status) << qPrintable(what);
            EXPECT_EQ(direct.err, model.err) << qPrintable(what);
            EXPECT_EQ(direct.out.toHex(' '), model.out.toHex(' ')) << qPrintable(what);
        }
    }
}

} // namespace
