// Test entry point: an offscreen application, and settings and logs kept in a scratch folder
// so that no test touches the user's own.

#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir scratch;
    qputenv("XDG_CONFIG_HOME", (scratch.path() + "/config").toLocal8Bit());
    qputenv("XDG_STATE_HOME", (scratch.path() + "/state").toLocal8Bit());
    qputenv("LOGFILES", (scratch.path() + "/logs").toLocal8Bit());
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
