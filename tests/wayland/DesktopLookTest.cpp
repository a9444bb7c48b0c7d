#include "launcherapp/platform/linux/surroundings/DesktopLook.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/KeyInjector.h"
#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/linux/input/SessionKeyInjector.h"
#include "launcherapp/platform/linux/pasteboard/SessionPasteboard.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/surroundings/SessionWindows.h"
#include "tests/linux/EventLoop.h"
#include "tests/wayland/windows/ipc/ListeningSocket.h"

#include <gmock/gmock.h>

#include <QByteArray>

namespace tessarine {
namespace {

TEST(DesktopLook, takesACompositorForWhatItOffers) {
    const auto found = DesktopLook::display({.desktops = {"sway"}, .hasWayland = true});
    EXPECT_EQ(DesktopTable::family(found), DesktopFamily::wlroots);
    for (const auto ability : {DesktopAbility::panel,
                               DesktopAbility::clipboardHistory,
                               DesktopAbility::typing,
                               DesktopAbility::runningApplications,
                               DesktopAbility::windowVerbs,
                               DesktopAbility::activationTokens})
        EXPECT_EQ(DesktopTable::cell(found, ability), DesktopCell()) << DesktopTable::name(ability);
}

TEST(DesktopLook, doesNotBelieveWhatADeadCompositorLeftBehind) {
    const auto socket = qgetenv("SWAYSOCK");
    const auto runtime = qgetenv("XDG_RUNTIME_DIR");
    const ScratchFolder folder;
    folder.folder("/hypr/instance");
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(folder.path()));
    qputenv("SWAYSOCK", "/nobody/listens/here");
    qputenv("HYPRLAND_INSTANCE_SIGNATURE", "instance");
    const auto dead = DesktopLook::display({.hasWayland = true});
    const auto listening = listeningSocket(folder.path("/hypr/instance/.socket2.sock"));
    const auto living = DesktopLook::display({.hasWayland = true});
    qunsetenv("HYPRLAND_INSTANCE_SIGNATURE");
    qputenv("XDG_RUNTIME_DIR", runtime);
    qputenv("SWAYSOCK", socket);
    EXPECT_FALSE(dead.hasSway);
    EXPECT_FALSE(dead.hasHyprland);
    EXPECT_TRUE(living.hasHyprland);
    EXPECT_EQ(DesktopTable::cell(dead, DesktopAbility::windowVerbs).state,
              DesktopCell::State::absent);
}

/// What is degraded has a door too, to the display for X11 programs.
bool isPromised(const DesktopSurroundings& desktop, DesktopAbility ability) {
    return DesktopTable::cell(desktop, ability).state != DesktopCell::State::absent;
}

// The doors of this machine's sway, and those that the program takes where it offers less.
TEST(DesktopLook, theDoorsKeepWhatTheTablePromises) {
    QtMainQueue queue;
    const auto sway = DesktopLook::display({.hasWayland = true});
    auto closed = sway; // neither the clipboard nor keys
    closed.globals = {"wl_compositor", "wl_seat"};
    for (const auto& desktop : {sway, closed, DesktopSurroundings()}) {
        SCOPED_TRACE(desktop.globals.size());
        const std::pair<DesktopAbility, Ability> doors[] = {
            {DesktopAbility::clipboardHistory, pasteboard(queue, desktop)->ability()},
            {DesktopAbility::typing, keyInjector(queue, desktop)->ability()},
        };
        for (const auto& [ability, door] : doors) {
            EXPECT_EQ(door.available, isPromised(desktop, ability)) << DesktopTable::name(ability);
            EXPECT_EQ(door.reason, door.available ? "" : DesktopTable::reason(desktop, ability));
        }
    }
    EXPECT_TRUE(sessionWindowDoors(sway, "").control->ability().available);
    const auto none = sessionWindowDoors({}, "");
    EXPECT_EQ(none.list->ability().reason, "there is no display");
    EXPECT_EQ(none.control->ability().reason, "there is no display");
}

} // namespace
} // namespace tessarine
