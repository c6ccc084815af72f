#include "support/Fakes.h"
#include "util/TextCodec.h"
#include "util/Utility.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ed;
using namespace ed::test;

namespace {

TEST(LastSeparator, CutsAtTheLastOccurrence) {
    RecordingLogger log;
    Utility u(log);
    struct Case {
        QString text, ch;
        QString beginKeep, beginDrop, ending;
    };
    const std::vector<Case> cases = {
        {"C:\\dir\\file.txt", "\\", "C:\\dir\\", "C:\\dir", "file.txt"},
        {"/home/a/b.txt", "/", "/home/a/", "/home/a", "b.txt"},
        {"/home/a/b.txt", "#", "", "", "/home/a/b.txt"}, // absent: "" but the whole text
        {"/abc", "/", "/", "", "abc"},                   // only at position 1
        {"a.b.c", "b.", "", "", ""},                     // two characters never match one
        {"", "/", "", "", ""},
        {"x.", ".", "x.", "x", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(u.InStrRevGetBeginning(c.text, c.ch, false), c.beginKeep) << c.text;
        EXPECT_EQ(u.InStrRevGetBeginning(c.text, c.ch, true), c.beginDrop) << c.text;
        EXPECT_EQ(u.InStrRevGetEnding(c.text, c.ch), c.ending) << c.text;
    }
    EXPECT_TRUE(log.errors.empty());
}

TEST(CountChar, CountsOverlappingOccurrences) {
    RecordingLogger log;
    Utility u(log);
    struct Case {
        QString text, find;
        bool cs;
        int expected;
    };
    const std::vector<Case> cases = {
        {"aaa", "aa", true, 2}, {"Abc abc", "abc", true, 1}, {"Abc abc", "abc", false, 2},
        {"", "a", false, 0},    {"abc", "", true, 0},        {"a/b/c/d", "/", true, 3},
        {"ÄäÄ", "ä", false, 3}, {"😀😀", "😀", true, 2},
    };
    for (const Case& c : cases)
        EXPECT_EQ(u.CountChar(c.text, c.find, c.cs), c.expected) << c.text << " / " << c.find;
}

class FileHelpers : public ::testing::Test {
protected:
    QString path(const QString& name) const { return dir_.path() + "/" + name; }
    void write(const QString& name, const QByteArray& bytes) {
        QFile f(path(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    QByteArray read(const QString& name) {
        QFile f(path(name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
    }
    QTemporaryDir dir_;
    RecordingLogger log_;
    Utility u_{log_};
};

TEST_F(FileHelpers, WriteThenLoad) {
    u_.WriteTextToFile(path("a.txt"), "abc", false);
    EXPECT_EQ(u_.LoadTextFile(path("a.txt")), "abc\r\n");
    u_.WriteTextToFile(path("b.txt"), "one", true);
    u_.WriteTextToFile(path("b.txt"), "two", true);
    EXPECT_EQ(u_.LoadTextFile(path("b.txt")), "one\r\ntwo\r\n");
    // An existing CR LF file is appended to in its own style.
    write("c.txt", "x\r\n");
    u_.WriteTextToFile(path("c.txt"), "y", true);
    EXPECT_EQ(read("c.txt"), "x\r\ny\r\n");
    EXPECT_TRUE(log_.errors.empty());
}

TEST_F(FileHelpers, MissingHiddenAndFoldersAreQuietlyAbsent) {
    write("empty.txt", "");
    write(".hidden", "secret");
    QDir().mkpath(path("folder"));
    struct Case {
        QString name;
        bool exists;
    };
    for (const Case& c : std::vector<Case>{{path("empty.txt"), true},
                                           {path("nope.txt"), false},
                                           {path(".hidden"), false},
                                           {path("folder"), false}})
        EXPECT_EQ(u_.TestForText(c.name), c.exists) << c.name;
    EXPECT_EQ(u_.LoadTextFile(path("empty.txt")), "");
    EXPECT_EQ(u_.LoadTextFile(path("nope.txt")), "");
    EXPECT_TRUE(log_.errors.empty());
}

TEST_F(FileHelpers, BadNamesAreLogged) {
    EXPECT_EQ(u_.LoadTextFile(""), "");
    ASSERT_EQ(log_.errors.size(), 1u);
    EXPECT_EQ(log_.errors[0].location, "Function TestForText");
    EXPECT_EQ(log_.errors[0].module, "cUtility");

    write("wild1.txt", "x");
    EXPECT_FALSE(u_.TestForText(path("wild*.txt"))); // matches a file, then fails to open
    EXPECT_EQ(log_.errors.size(), 2u);

    u_.WriteTextToFile(path("no/such/dir/x.txt"), "abc", false);
    ASSERT_EQ(log_.errors.size(), 3u);
    EXPECT_EQ(log_.errors[2].location, "Sub WriteTextToFile");
    u_.WriteTextToFile(path("folder-as-file"), "abc", false);
    QDir().mkpath(path("d"));
    u_.WriteTextToFile(path("d"), "abc", false);
    EXPECT_EQ(log_.errors.size(), 4u);
    EXPECT_TRUE(QDir(path("d")).exists());
}

TEST_F(FileHelpers, FreeFileCountsUp) {
    EXPECT_EQ(u_.GetFreeFile(path("Text-0.Txt")), path("Text-0.Txt"));
    write("Text-0.Txt", "");
    write("Text-1.Txt", "");
    EXPECT_EQ(u_.GetFreeFile(path("Text-0.Txt")), path("Text-2.Txt"));
    write("notes.txt", "");
    EXPECT_EQ(u_.GetFreeFile(path("notes.txt")), path("notes1.txt"));
    EXPECT_TRUE(log_.errors.empty());
    EXPECT_EQ(u_.GetFreeFile(path("")), ""); // a folder, no file name
    EXPECT_EQ(log_.errors.size(), 1u);
}

TEST(FileSpecParts, SplitsFolderNameAndExtension) {
    RecordingLogger log;
    Utility u(log);
    struct Case {
        QString path, folder, base, ext;
    };
    for (const Case& c : std::vector<Case>{{"/a/b/name.txt", "/a/b/", "name", "txt"},
                                           {"/a/b.d/name", "/a/b.d/", "name", ""},
                                           {"name.tar.gz", "", "name.tar", "gz"},
                                           {"/a/.profile", "/a/", ".profile", ""}}) {
        const FileSpecParts p = u.GetFileSpecParts(c.path);
        EXPECT_EQ(p.folder, c.folder) << c.path;
        EXPECT_EQ(p.baseName, c.base) << c.path;
        EXPECT_EQ(p.extension, c.ext) << c.path;
    }
}

TEST(TextCodec, RoundTripsEveryKindOfFileByteForByte) {
    const std::vector<QByteArray> files = {
        "", "a\r\nb\r\n", "a\nb\n", "a\nb", "mixed\r\nand\nlone\rcr\r\n", "old\rmac\r",
        "\xEF\xBB\xBFwith bom\r\n", "caf\xC3\xA9 \xF0\x9F\x98\x80\n", "latin \xE9\xE8\xFF\r\n",
        QByteArray("bin\0ary\x80\x81\xFE\xFF\r\n\n\r", 15), "\xFF\xFEh\0i\0\r\0\n\0",
        "\xFE\xFF\0h\0i\0\n", "\xC0\xAF overlong",
        // A text that starts with U+FEFF of its own, after the byte order mark.
        QByteArray("\xFF\xFE\xFF\xFE"
                   "A\0",
                   6),
        QByteArray("\xFE\xFF\xFE\xFF\0A", 6),
        "\xEF\xBB\xBF\xEF\xBB\xBF"
        "A",
        QByteArray("\xFF\xFE\xFF\xFE", 4)};
    for (const QByteArray& bytes : files) {
        TextFormat f;
        const QString model = decodeText(bytes, &f);
        EXPECT_EQ(encodeText(model, f), bytes) << bytes.toHex().constData();
    }
}

TEST(TextCodec, ModelAlwaysHasCrLfBreaks) {
    struct Case {
        QByteArray bytes;
        QString model;
        Encoding enc;
        LineBreak lb;
    };
    for (const Case& c : std::vector<Case>{
             {"a\nb", "a\r\nb", Encoding::Utf8, LineBreak::Lf},
             {"a\r\nb", "a\r\nb", Encoding::Utf8, LineBreak::CrLf},
             {"a\rb", "a\r\nb", Encoding::Utf8, LineBreak::Cr},
             {"\xE9\n", QString::fromUtf8("é\r\n"), Encoding::Latin1, LineBreak::Lf},
         }) {
        TextFormat f;
        EXPECT_EQ(decodeText(c.bytes, &f), c.model);
        EXPECT_EQ(f.encoding, c.enc);
        EXPECT_EQ(f.lineBreak, c.lb);
    }
    // Text typed into a Latin-1 document that Latin-1 cannot hold is not lost.
    EXPECT_EQ(encodeText(QString::fromUtf8("€"), {Encoding::Latin1, LineBreak::Lf}),
              QByteArray("\xE2\x82\xAC"));
}

} // namespace
