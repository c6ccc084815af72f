// The load procedure's choice of folder for a new document.

#include "editor/FormLoad.h"
#include "support/Fakes.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace ed;
using namespace ed::test;

TEST(FormLoad, NewDocumentGoesHomeWhenTheProgramFolderIsReadOnly) {
    if (geteuid() == 0)
        GTEST_SKIP() << "every folder is writable for root";
    const QString folder = makeTempDir() + "/bin";
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
    Harness h;
    h.startUp.programFolder = folder;
    Form_Load(h.ctx, QString());
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_EQ(h.form.FileName, QDir::homePath() + "/Text-0.Txt");
}

TEST(FormLoad, NewDocumentGoesToAWritableProgramFolder) {
    const QString folder = makeTempDir();
    Harness h;
    h.startUp.programFolder = folder;
    Form_Load(h.ctx, QString());
    EXPECT_EQ(h.form.FileName, folder + "/Text-0.Txt");
}
