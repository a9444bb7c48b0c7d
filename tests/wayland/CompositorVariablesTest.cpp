#include "launcherapp/platform/linux/wayland/CompositorVariables.h"

#include "launcherapp/platform/linux/wayland/windows/WaylandWindowDoors.h"
#include "tests/linux/EventLoop.h"
#include "tests/wayland/CompositorOfItsOwn.h"
#include "tests/wayland/windows/ipc/ListeningSocket.h"

#include <gtest/gtest.h>

#include <map>

namespace tessarine {
namespace {

class CompositorVariablesTest : public testing::Test {
protected:
    void TearDown() override {
        qputenv("SWAYSOCK", socket);
        qunsetenv("HYPRLAND_INSTANCE_SIGNATURE");
    }

    const QByteArray socket = qgetenv("SWAYSOCK");
};

TEST_F(CompositorVariablesTest, aLivingCompositorIsFoundByItsDisplay) {
    const CompositorOfItsOwn other;
    const QByteArray cases[] = {
        "/run/sway-ipc.1000.1.sock", // of one that has died
        "",                          // the session bus was never told
        socket,                      // of another that lives
    };
    for (const auto& before : cases) {
        SCOPED_TRACE(before.toStdString());
        qputenv("SWAYSOCK", before);
        qputenv("HYPRLAND_INSTANCE_SIGNATURE", "dead");
        // Sway lets three wait to be connected, and takes one more when it has told them.
        EXPECT_TRUE(spinUntil([&] {
            CompositorVariables::renew();
            return qgetenv("SWAYSOCK") != before && qgetenv("SWAYSOCK") != socket &&
                   waylandWindowDoors("")->control->ability() == Ability{};
        }));
        EXPECT_FALSE(qEnvironmentVariableIsSet("HYPRLAND_INSTANCE_SIGNATURE"));
    }
}

TEST_F(CompositorVariablesTest, whatNamesTheRightOneOrAnyoneAloneIsLeft) {
    CompositorVariables::renew();
    EXPECT_EQ(qgetenv("SWAYSOCK"), socket);
    const ScratchFolder folder;
    folder.folder("/hypr/wrapped");
    const auto listening = listeningSocket(folder.path("/hypr/wrapped/.socket2.sock"));
    const auto runtime = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(folder.path()));
    qputenv("HYPRLAND_INSTANCE_SIGNATURE", "wrapped");
    CompositorVariables::renew();
    EXPECT_EQ(qgetenv("HYPRLAND_INSTANCE_SIGNATURE"), "wrapped");
    qputenv("XDG_RUNTIME_DIR", runtime);
}

TEST_F(CompositorVariablesTest, theOneDisplayIsFoundByWhatTheBusStarts) {
    const ScratchFolder folder;
    const std::map<const char*, QByteArray> before{{"WAYLAND_DISPLAY", qgetenv("WAYLAND_DISPLAY")},
                                                   {"XDG_RUNTIME_DIR", qgetenv("XDG_RUNTIME_DIR")}};
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(folder.path()));
    const auto found = [] {
        qunsetenv("WAYLAND_DISPLAY");
        CompositorVariables::findDisplay();
        return qgetenv("WAYLAND_DISPLAY");
    };
    const auto one = listeningSocket(folder.path("/wayland-1"));
    folder.write("/wayland-1.lock", "");
    folder.write("/wayland-0", "left of one that has died");
    EXPECT_EQ(found(), "") << "started by hand, it goes without";
    qputenv("DBUS_STARTER_ADDRESS", "unix:path=/bus");
    EXPECT_EQ(found(), "wayland-1");
    const auto other = listeningSocket(folder.path("/wayland-2"));
    EXPECT_EQ(found(), "") << "it could be either";
    qunsetenv("DBUS_STARTER_ADDRESS");
    for (const auto& [name, value] : before)
        qputenv(name, value);
}

TEST_F(CompositorVariablesTest, withoutADisplayNothingIsChanged) {
    const auto display = qgetenv("WAYLAND_DISPLAY");
    qputenv("WAYLAND_DISPLAY", "nobody-listens-here");
    qputenv("SWAYSOCK", "/run/sway-ipc.1000.1.sock");
    CompositorVariables::renew();
    EXPECT_EQ(qgetenv("SWAYSOCK"), "/run/sway-ipc.1000.1.sock");
    qputenv("WAYLAND_DISPLAY", display);
}

} // namespace
} // namespace tessarine
