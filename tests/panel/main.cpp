#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // A run on a desktop, where there are screen readers to talk to, says so.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
