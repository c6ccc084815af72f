// Where a new document goes when the window starts.

#include "editor/FormLoad.h"

#include <QSet>

#include <gtest/gtest.h>

using namespace ed;

TEST(FormLoad, NewDocumentGoesWhereTheUserCanWrite) {
    const struct {
        const char* name;
        QString program;
        QSet<QString> writable;
        QString documents;
        QString chosen;
    } cases[] = {
        {"a copy in a folder of the user's",
         "/opt/ed",
         {"/opt/ed", "/home/u/Documents"},
         "/home/u/Documents",
         "/opt/ed"},
        {"installed in /usr/bin",
         "/usr/bin",
         {"/home/u/Documents"},
         "/home/u/Documents",
         "/home/u/Documents"},
        {"no documents folder", "/usr/bin", {}, "/home/u/Documents", "/home/u"},
        {"none known", "/usr/bin", {}, "", "/home/u"},
    };
    for (const auto& c : cases) {
        const auto writable = [&](const QString& folder) { return c.writable.contains(folder); };
        EXPECT_EQ(newDocumentFolder(c.program, writable, c.documents, "/home/u"), c.chosen)
            << c.name;
    }
}
