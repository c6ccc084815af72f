// The file and name helpers the window uses.
#include "support/Fakes.h"
#include "util/Utility.h"

#include <QDir>

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

TEST(FileHelpers, LoadFreeFileAndTheirErrors) {
    const QString dir = makeTempDir();
    writeFile(dir + "/a.txt", "abc\n");
    writeFile(dir + "/.hidden", "secret");
    writeFile(dir + "/Text-0.Txt", "");
    writeFile(dir + "/Text-1.Txt", "");
    QDir().mkpath(dir + "/folder");
    RecordingLogger log;
    Utility u(log);
    EXPECT_EQ(u.LoadTextFile(dir + "/a.txt"), "abc\r\n");
    // Missing and hidden files and folders are quietly absent.
    for (const char* name : {"/nope.txt", "/.hidden", "/folder"})
        EXPECT_EQ(u.LoadTextFile(dir + name), "") << name;
    EXPECT_EQ(u.GetFreeFile(dir + "/Text-0.Txt"), dir + "/Text-2.Txt");
    EXPECT_EQ(u.GetFreeFile(dir + "/a.txt"), dir + "/a1.txt");
    EXPECT_EQ(u.GetFreeFile(dir + "/b.txt"), dir + "/b.txt");
    EXPECT_TRUE(log.errors.empty());

    EXPECT_EQ(u.LoadTextFile(""), "");
    EXPECT_FALSE(u.TestForText(dir + "/a*.txt")); // matches a file, then fails to open
    EXPECT_EQ(u.GetFreeFile(dir + "/"), "");      // a folder, no file name
    ASSERT_EQ(log.errors.size(), 3u);
    EXPECT_EQ(log.errors[0].module, "cUtility");
    EXPECT_EQ(log.errors[0].location, "Function TestForText");
    EXPECT_EQ(log.errors[2].location, "Function GetFreeFile");
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

} // namespace
