// Addresses handed to other programs arrive as one argument each, never through a shell.

#include "app/SystemPorts.h"
#include "support/Fakes.h"
#include "web/WaitLoop.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace ed;

namespace {

TEST(Launcher, ArgumentsReachTheProgramUnchanged) {
    const QString dir = test::makeTempDir();
    const QString out = dir + "/argv.txt";
    const QString script = dir + "/show-args.sh";
    // One argument per line, then a marker that the script ran to its end.
    test::writeFile(script,
                    "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$0.out.tmp\"\n"
                    "echo END >> \"$0.out.tmp\"\nmv \"$0.out.tmp\" \"" +
                        out.toUtf8() + "\"\n");
    QFile::setPermissions(script,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    const QStringList arguments{
        QStringLiteral("http://example.com/a;touch ") + dir + "/pwned",
        QStringLiteral("$(touch ") + dir + "/pwned2)",
        QStringLiteral("it's \"quoted\" `x` & | > <"),
        QStringLiteral("mailto:a;b$(id)'\"@example.com?Subject=Hello"),
    };
    ProcessLauncher launcher;
    ASSERT_TRUE(launcher.startDetached(script, arguments));
    ASSERT_TRUE(web::waitUntil([&] { return QFileInfo::exists(out); }, 10000, 20));
    const QStringList lines =
        QString::fromUtf8(test::readFile(out)).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines, arguments + QStringList{"END"});
    EXPECT_FALSE(QFileInfo::exists(dir + "/pwned"));
    EXPECT_FALSE(QFileInfo::exists(dir + "/pwned2"));
}

} // namespace
