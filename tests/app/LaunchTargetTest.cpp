// Text handed to another program arrives as an address or not at all, never as a switch.

#include "app/LaunchTarget.h"
#include "support/Fakes.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace ed;

namespace {

TEST(LaunchTarget, OnlyProtocolAddressesFollowTheSwitches) {
    struct Case {
        QString address;
        bool started;
    };
    const Case cases[] = {
        {"HTTPS://a.example/", true}, {"file:///tmp/x", true},
        {"mailto:a@b.example", true}, {"--renderer-cmd-prefix=/tmp/x", false},
        {"a.example", false},         {"javascript:alert(1)", false},
        {"file://host/x", false},     {"", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.address.toStdString());
        test::FakeLauncher launcher;
        EXPECT_EQ(launcher.startDetached("/bin/browser", {"--switch"}, {c.address}), c.started);
        if (c.started) {
            ASSERT_EQ(launcher.started.size(), 1u);
            EXPECT_EQ(launcher.started[0].arguments, (QStringList{"--switch", c.address}));
        } else {
            EXPECT_TRUE(launcher.started.empty());
        }
    }
}

TEST(LaunchTarget, TheDesktopIsHandedAddressesOnly) {
    const QString dir = test::makeTempDir();
    const QString dashFile = dir + "/--new-window";
    QFile(dashFile).open(QIODevice::WriteOnly);
    const QString oldCwd = QDir::currentPath();
    QDir::setCurrent(dir);
    struct Case {
        QString target;
        QString address; // "" = refused
    };
    const Case cases[] = {
        {"--new-window", QUrl::fromLocalFile(dashFile).toString()},
        {dir, QUrl::fromLocalFile(dir).toString()},
        {"mailto:a@b.example?Subject=Hello", "mailto:a@b.example?Subject=Hello"},
        {"--missing", ""},
        {"javascript:alert(1)", ""},
        {"", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.target.toStdString());
        const QUrl url = desktopAddress(c.target);
        EXPECT_EQ(url.isValid() ? url.toString() : QString(), c.address);
    }
    QDir::setCurrent(oldCwd);
}

} // namespace
