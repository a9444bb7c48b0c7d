#include "launcherapp/platform/linux/desktop/SystemBus.h"

#include "tests/linux/EventLoop.h"

#include <gtest/gtest.h>

#include <QLocalServer>

namespace tessarine {
namespace {

TEST(SystemBus, isLeftAloneWhenItSaysNothing) {
    const auto address = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    const auto connects = [](std::chrono::milliseconds patience) {
        const auto name = QStringLiteral("of-system");
        const bool isConnected = systemBus(name, patience).isConnected();
        QDBusConnection::disconnectFromBus(name);
        return isConnected;
    };
    EXPECT_TRUE(connects(std::chrono::seconds{10}));

    // Qt reaches the tests' bus in any case: only the first look keeps it from there.
    const ScratchFolder folder;
    const auto path = QString::fromStdString(folder.path("/bus"));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + path.toUtf8() + ",guid=0");
    EXPECT_FALSE(connects(std::chrono::seconds{10})); // none there
    QLocalServer hangs;
    ASSERT_TRUE(hangs.listen(path));
    EXPECT_FALSE(connects(std::chrono::milliseconds{20}));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
}

} // namespace
} // namespace tessarine
