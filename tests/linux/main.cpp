#include <gtest/gtest.h>

#include <QApplication>
#include <cstdio>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // Some take the names of session managers and tell them to end the session: never the user's.
    if (!qEnvironmentVariableIsSet("TESSARINE_TEST_DESKTOP") ||
        qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) {
        std::fputs("These tests run on a desktop of their own: tests/desktop/with-desktop\n",
                   stderr);
        return 1;
    }
    // The system's services are faked on the tests' own bus. Read once, by the first connection.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"));
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
