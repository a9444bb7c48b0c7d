#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // The system's services are faked on the tests' own bus. Read once, by the first connection.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"));
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
