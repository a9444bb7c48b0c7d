#include <gtest/gtest.h>

#include <QApplication>
#include <cstdio>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("TESSARINE_TEST_DESKTOP") ||
        !qEnvironmentVariableIsSet("SWAYSOCK")) {
        std::fputs("These tests run on a desktop of their own: tests/desktop/with-sway\n", stderr);
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "wayland");
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1"); // as the program has it
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
