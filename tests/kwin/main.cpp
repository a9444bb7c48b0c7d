#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("TESSARINE_TEST_DESKTOP") ||
        !qEnvironmentVariableIsSet("KWIN_AGAIN")) {
        std::fputs("These tests run on a desktop of their own: tests/desktop/with-kwin\n", stderr);
        return 1;
    }
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
