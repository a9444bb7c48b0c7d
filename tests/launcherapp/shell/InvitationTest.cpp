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

const DesktopKey swayKey = DesktopKeys::forPanel({.hasWayland = true, .hasSway = true});

TEST(Invitation, namesAKeyThatWorks) {
    EXPECT_EQ(
        Invitation::withPanel({.state = State::held, .keys = "Super+Space", .status = "registered"},
                              swayKey,
                              desktop),
        "Tessarine is running. Super+Space brings it up.");
    EXPECT_THAT(
        Invitation::withPanel(
            {.state = State::desktopOwn, .keys = {}, .status = "no portal"}, swayKey, desktop),
        Not(HasSubstr("no portal"))); // the user has done what was told
}

TEST(Invitation, saysWhichLineGivesTheDesktopsOwnKey) {
    const Invitation::Chord none{.state = State::none, .keys = {}, .status = "no portal"};
    EXPECT_THAT(Invitation::withPanel(none, swayKey, desktop),
                AllOf(HasSubstr("no key brings it up: no portal"),
                      HasSubstr("~/.config/sway/config"),
                      HasSubstr(byTheDesktop)));
    EXPECT_THAT(Invitation::noKeyYet(none, swayKey).text,
                AllOf(HasSubstr("no portal"), HasSubstr(byTheDesktop)));

    const std::pair<DesktopSurroundings, const char*> cases[] = {
        {{.desktops = {"sway"}}, "bindsym Mod4+space exec gapplication"},
        {{.hasHyprland = true}, "bind = SUPER, SPACE, exec, gapplication"},
        {{.desktops = {"river"}}, "riverctl map normal Super Space spawn 'gapplication"},
        {{.desktops = {"ubuntu", "GNOME"}}, "gapplication"},
        {{.desktops = {"KDE"}}, "gapplication"},
        {{}, "gapplication"},
    };
    for (const auto& [surroundings, line] : cases)
        EXPECT_THAT(DesktopKeys::forPanel(surroundings).line, StartsWith(line));
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
