#include "launcherapp/platform/linux/surroundings/DesktopLook.h"

#include "launcherapp/platform/Environment.h"
#include "tests/linux/BusObject.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusVariant>
#include <QThread>
#include <chrono>

namespace tessarine {
namespace {

using std::chrono::milliseconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// A portal that has one interface, in a thread of its own as who asks stands still.
class OnePortal : public QDBusVirtualObject {
public:
    bool isSilent = false;

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (isSilent)
            return true;
        const bool has = message.arguments()[0].toString().endsWith(QLatin1String("Settings"));
        return bus.send(has ? message.createReply(QVariant::fromValue(QDBusVariant(2U)))
                            : message.createErrorReply(QDBusError::InvalidArgs, {}));
    }
};

class DesktopLookTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(
            bus.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal));
        ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
        portal.moveToThread(&thread);
        thread.start();
    }

    ~DesktopLookTest() override {
        thread.quit();
        thread.wait();
        bus.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
        QDBusConnection::disconnectFromBus(QStringLiteral("look"));
    }

    QThread thread;
    OnePortal portal;
    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("look"));
};

TEST_F(DesktopLookTest, tellsWhatTheBusAndThePortalHave) {
    const auto found = DesktopLook::withBus({}, milliseconds(5000));
    EXPECT_TRUE(found.hasSessionBus);
    EXPECT_THAT(found.busNames, Contains("org.freedesktop.portal.Desktop"));
    EXPECT_THAT(found.portals, ElementsAre("Settings"));
}

TEST_F(DesktopLookTest, doesNotWaitLongForAPortalThatHangs) {
    portal.isSilent = true;
    const auto began = std::chrono::steady_clock::now();
    const auto found = DesktopLook::withBus({}, milliseconds(100));
    EXPECT_THAT(found.portals, IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - began, milliseconds(2000));
}

TEST(DesktopLook, findsTheFileThatSwayReads) {
    const ScratchFolder home;
    const auto found = [&] {
        return DesktopLook::display({.home = home.path(), .configHome = home.path("/.config")});
    };
    EXPECT_FALSE(found().hasSwayConfig);
    EXPECT_EQ(found().swayConfig, "~/.config/sway/config");
    for (const auto* folder : {"/.i3", "/.config/sway", "/.sway"}) { // the last one counts
        home.folder(folder);
        home.write(std::string(folder) + "/config", "");
        EXPECT_TRUE(found().hasSwayConfig);
        EXPECT_EQ(found().swayConfig, "~" + std::string(folder) + "/config");
    }
}

TEST(DesktopLook, aCompositorThatIsNotThereCountsOnlyWhereNothingElseDoes) {
    qputenv("WAYLAND_DISPLAY", "no-such-compositor"); // as another session left it
    const auto both = DesktopLook::display({.hasX11 = true, .hasWayland = true});
    const auto alone = DesktopLook::display({.hasWayland = true});
    qunsetenv("WAYLAND_DISPLAY");
    EXPECT_EQ(DesktopTable::family(both), DesktopFamily::x11);
    EXPECT_EQ(DesktopTable::cell(both, DesktopAbility::typing), DesktopCell());
    EXPECT_TRUE(DesktopTable::isSilent(alone));
}

} // namespace
} // namespace tessarine
