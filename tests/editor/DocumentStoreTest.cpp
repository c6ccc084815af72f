#include "editor/DocumentStore.h"
#include "app/TextBuffer.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ed;

namespace {

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

// Load and save back without an edit: the bytes come back with one line break added.
TEST(DocumentStore, SavesUneditedBytesBack) {
    QTemporaryDir dir;
    struct Case {
        const char* name;
        QByteArray bytes;
        QByteArray eol;
    };
    const std::vector<Case> cases = {
        {"binary.bin", QByteArray("\0\x01\x80\xFF\r\n\n\rz\x7F", 10), "\n"},
        {"bad-utf8.txt", "ok \xC3\x28 \xF0\x28\x8C\x28\r\n", "\r\n"},
        {"zero.txt", "", "\n"},
        {"long.txt", QByteArray(5 * 1024 * 1024, 'y'), "\n"},
        {"utf16.txt", QByteArray("\xFF\xFEh\0\r\0\n\0", 8), QByteArray("\r\0\n\0", 4)},
        {"emoji.txt", "\xF0\x9F\x98\x80\r\n", "\r\n"},
    };
    for (const Case& c : cases) {
        const QString path = dir.path() + "/" + c.name;
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(c.bytes);
        f.close();
        TextBuffer edit;
        TextDocumentFiles files(edit);
        QString error;
        ASSERT_EQ(files.load(path, false, error), DocumentFiles::LoadResult::Loaded) << c.name;
        ASSERT_TRUE(files.save(path, false, error)) << c.name;
        EXPECT_EQ(readAll(path), c.bytes + c.eol) << c.name;
    }
}

TEST(DocumentStore, FailuresLeaveDocumentEmptyAndOldFileWhole) {
    QTemporaryDir dir;
    TextBuffer edit("something");
    TextDocumentFiles files(edit);
    QString error;
    EXPECT_EQ(files.load(dir.path() + "/missing.txt", false, error),
              DocumentFiles::LoadResult::Failed);
    EXPECT_EQ(edit.text(), "");
    EXPECT_TRUE(error.contains("no such file"));
    EXPECT_EQ(files.load(dir.path(), false, error), DocumentFiles::LoadResult::Failed);
    EXPECT_TRUE(error.contains("folder"));
    EXPECT_FALSE(files.save(dir.path() + "/no/such/folder/x.txt", false, error));
    EXPECT_FALSE(files.save(QString(), false, error));
}

TEST(DocumentStore, RtfRoundTripKeepsText) {
    QTemporaryDir dir;
    const QString path = dir.path() + "/x.rtf";
    TextBuffer edit(QString::fromUtf8("Käse {braces} \\ back\r\n\tTab 😀"));
    TextDocumentFiles files(edit);
    QString error;
    ASSERT_TRUE(files.save(path, true, error));
    TextBuffer again;
    TextDocumentFiles reread(again);
    ASSERT_EQ(reread.load(path, true, error), DocumentFiles::LoadResult::Loaded);
    EXPECT_EQ(again.text(), edit.text());
}

TEST(DocumentStore, RtfNamedFileWithoutRtfOpensAsText) {
    QTemporaryDir dir;
    const QString path = dir.path() + "/plain.rtf";
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("just text\n");
    f.close();
    TextBuffer edit;
    TextDocumentFiles files(edit);
    QString error;
    ASSERT_EQ(files.load(path, true, error), DocumentFiles::LoadResult::Loaded);
    EXPECT_EQ(edit.text(), "just text\r\n");
}

} // namespace
