#include "launcherapp/shell/Invitation.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/shell/DesktopKey.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using enum Invitation::StartedFrom;
using State = Invitation::Chord::State;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr auto byTheDesktop = "gapplication action com.corvane.tessarine toggle";

const auto swayKey = DesktopKeys::forPanel(
    {.hasWayland = true, .hasSessionBus = true, .hasSway = true, .hasSwayConfig = true});

TEST(Invitation, namesAKeyThatWorks) {
    EXPECT_EQ(
        Invitation::withPanel({.state = State::held, .keys = "Super+Space", .status = "registered"},
                              swayKey,
                              desktop),
        "Tessarine is running. Super+Space brings it up.");
    // The user has done what was told, or has called it by a menu.
    EXPECT_THAT(
        Invitation::withPanel(
            {.state = State::desktopOwn, .keys = {}, .status = "no portal"}, swayKey, desktop),
        AllOf(HasSubstr("If you gave it a key"), HasSubstr(byTheDesktop)));
}

TEST(Invitation, saysWhichLineGivesTheDesktopsOwnKey) {
    const Invitation::Chord none{.state = State::none, .keys = {}, .status = "no portal"};
    EXPECT_THAT(Invitation::withPanel(none, swayKey, desktop),
                AllOf(HasSubstr("no key brings it up: no portal"),
                      HasSubstr("~/.config/sway/config"),
                      HasSubstr(byTheDesktop)));
    EXPECT_THAT(Invitation::noKeyYet(none, *swayKey).text,
                AllOf(HasSubstr("no portal"), HasSubstr(byTheDesktop)));

    struct Case {
        DesktopSurroundings found;
        const char* desktop;
        const char* line;
    };

    const Case cases[] = {
        {{.desktops = {"sway"}}, "sway", "bindsym --no-warn Mod4+space exec gapplication"},
        {{.hasHyprland = true}, "Hyprland", "bind = SUPER, SPACE, exec, gapplication"},
        {{.desktops = {"river"}}, "river", "riverctl map normal Super Space spawn 'gapplication"},
        {{.globals = {"zriver_control_v1"}}, "river", "riverctl"}, // it sets no name
        {{.desktops = {"ubuntu", "GNOME"}}, "GNOME", "gapplication"},
        {{.desktops = {"KDE"}}, "KDE", "gapplication"},
        {{.desktops = {"MATE", "X"}}, "MATE:X", "gapplication"},
        {{}, "", "gapplication"},
    };
    for (auto [found, name, line] : cases) {
        SCOPED_TRACE(line);
        EXPECT_EQ(DesktopKeys::desktop(found), name);
        EXPECT_EQ(DesktopKeys::forPanel(found), std::nullopt) << "nothing to call it over";
        found.hasSessionBus = true;
        EXPECT_THAT(DesktopKeys::forPanel(found)->line, StartsWith(line));
    }
    EXPECT_THAT(Invitation::withPanel(none, std::nullopt, desktop),
                AllOf(HasSubstr("no portal; there is no session bus"), Not(HasSubstr("To have"))));
}

TEST(Invitation, saysWhatTheDesktopsOwnKeyNeedsFirst) {
    const DesktopSurroundings sway{.hasSessionBus = true, .hasSway = true, .hasSwayConfig = true};
    auto without = sway;
    without.hasSwayConfig = false; // and the one for all users may not be edited by this one
    without.swayConfig = "~/etc/sway/config";
    auto bare = sway;
    bare.lacksGapplication = true;
    const std::pair<DesktopSurroundings, const char*> cases[] = {
        {sway, "put this line at the end of ~/.config/sway/config and reload it"},
        {without, "copy /etc/sway/config to ~/etc/sway/config, put this line at the end of ~/etc"},
        {bare, "install the package libglib2.0-bin"},
    };
    for (const auto& [found, words] : cases)
        EXPECT_THAT(DesktopKeys::forPanel(found)->where, StartsWith(words));
}

TEST(Invitation, saysWhatIsMissingWithoutAPanel) {
    const std::set<std::string> offered{"wl_compositor"};
    const std::pair<DesktopSurroundings, const char*> cases[] = {
        {{}, "there is no display"},
        {{.hasX11 = true}, "the X11 display does not answer"},
        {{.hasWayland = true}, "the Wayland compositor does not answer"},
        {{.hasX11 = true, .hasWayland = true}, "the Wayland compositor does not answer"},
        {{.hasWayland = true, .globals = offered}, "qt6-wayland"}, // it answers, but not to Qt
        {{.hasX11 = true, .hasWayland = true, .globals = offered}, "qt6-wayland"},
    };
    for (const auto& [found, reason] : cases) {
        EXPECT_THAT(Invitation::missingDisplay(found), HasSubstr(reason));
        EXPECT_THAT(Invitation::withoutPanel(found, desktop), HasSubstr(reason));
    }
}

TEST(Invitation, tellsWhoLooksAtATerminalWhatEndsIt) {
    EXPECT_THAT(Invitation::withoutPanel({}, terminal), HasSubstr("closing this terminal"));
    EXPECT_THAT(Invitation::withoutPanel({}, desktop), Not(HasSubstr("terminal")));
}

} // namespace
} // namespace tessarine
