// Opening and saving failures name the problem, leave the document empty and the old file whole.
// (What opened files hold and how they are saved back is shown through the window.)

#include "editor/DocumentStore.h"
#include "app/TextBuffer.h"
#include "support/Fakes.h"

#include <gtest/gtest.h>

using namespace ed;

namespace {

TEST(DocumentStore, FailuresNameTheProblemAndLeaveTheDocumentEmpty) {
    const QString dir = test::makeTempDir();
    TextBuffer edit("something");
    TextDocumentFiles files(edit);
    QString error;
    EXPECT_EQ(files.load(dir + "/missing.txt", false, error), DocumentFiles::LoadResult::Failed);
    EXPECT_EQ(edit.text(), "");
    EXPECT_TRUE(error.contains("no such file")) << error;
    EXPECT_EQ(files.load(dir, false, error), DocumentFiles::LoadResult::Failed);
    EXPECT_TRUE(error.contains("folder")) << error;
    EXPECT_FALSE(files.save(dir + "/no/such/folder/x.txt", false, error));
    EXPECT_FALSE(files.save(QString(), false, error));
    EXPECT_TRUE(error.contains("no file name")) << error;
}

} // namespace
