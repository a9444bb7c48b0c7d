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

TEST(SystemBus, everyAddressOfASocketIsAskedWithinOnePatience) {
    const auto session = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const ScratchFolder folder;
    QLocalServer hangs;
    ASSERT_TRUE(hangs.listen(QString::fromStdString(folder.path("/hangs"))));
    QLocalServer abstract;
    abstract.setSocketOptions(QLocalServer::AbstractNamespaceOption);
    const auto name = QString::fromStdString(folder.path("/abstract"));
    ASSERT_TRUE(abstract.listen(name));
    const auto hanging = "unix:path=" + hangs.fullServerName().toUtf8();

    const struct {
        QByteArray address;
        bool answers;
    } cases[] = {
        {session, true},
        {"unix:path=/none;" + session, true},
        {"unix:guid=0,abstract=" + name.toUtf8(), false},
        {hanging + ";" + session, false}, // the library would wait for the first
        {"tcp:host=localhost,port=1", true},
        {"", false},
    };

    for (const auto& [address, answers] : cases) {
        const auto began = std::chrono::steady_clock::now();
        EXPECT_EQ(busAnswers(QString::fromUtf8(address), std::chrono::milliseconds{300}), answers)
            << address.toStdString();
        EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds{550});
    }
}

} // namespace
} // namespace tessarine
