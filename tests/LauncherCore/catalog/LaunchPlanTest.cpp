#include "LauncherCore/catalog/LaunchPlan.h"

#include <gmock/gmock.h>

#include <set>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Words = std::vector<std::string>;

TEST(LaunchPlans, theBusGoesFirstWhereItCan) {
    const auto plan = [](const std::string& id, bool busActivatable, const std::string& exec) {
        return LaunchPlans::plan(
            {.bundleID = id, .exec = exec, .busActivatable = busActivatable}, {}, {});
    };
    const auto both = plan("org.x.Some-App", true, "some --flag");
    EXPECT_EQ(both.busName, "org.x.Some-App");
    EXPECT_THAT(both.commands, ElementsAre(Words{"some", "--flag"}));
    EXPECT_EQ(plan("org.x.App", true, "").problem, "");
    EXPECT_EQ(plan("org.x.App", false, "x").busName, std::nullopt);
    for (const auto* id : {"files", "org..x", "org.1x", "org.x.", "", "org.ä"})
        EXPECT_EQ(plan(id, true, "x").busName, std::nullopt) << id << " is no bus name";
    EXPECT_EQ(plan("files", true, "").problem, "its desktop entry names no program");
}

TEST(LaunchPlans, aTerminalGoesAroundEachCommand) {
    const InstalledApp top{.bundleID = "top", .exec = "top %f", .terminal = true};
    const Words terminal{"/usr/bin/xterm", "-e"};
    const Words files{"file:///a", "file:///b"};
    EXPECT_THAT(LaunchPlans::plan(top, files, terminal).commands,
                ElementsAre(Words{"/usr/bin/xterm", "-e", "top", "/a"},
                            Words{"/usr/bin/xterm", "-e", "top", "/b"}));
    const auto none = LaunchPlans::plan(top, {}, {});
    EXPECT_THAT(none.commands, IsEmpty());
    EXPECT_EQ(none.problem, "it needs a terminal, and none is installed");
}

TEST(LaunchPlans, theTerminalIsTheUsersThenTheDesktopsThenAnyKnown) {
    const auto words = [](std::string_view variable, std::set<std::string, std::less<>> programs) {
        return LaunchPlans::terminalWords(
            variable, [&](std::string_view program) -> std::optional<std::string> {
                const auto name = program.substr(program.rfind('/') + 1);
                return programs.contains(name) ? std::optional("/bin/" + std::string(name))
                                               : std::nullopt;
            });
    };
    EXPECT_THAT(words("", {"xterm", "x-terminal-emulator"}),
                ElementsAre("/bin/x-terminal-emulator", "-e"));
    EXPECT_THAT(words("", {"xterm", "xdg-terminal-exec"}), ElementsAre("/bin/xdg-terminal-exec"));
    EXPECT_THAT(words("wezterm", {"xterm", "wezterm"}), ElementsAre("/bin/wezterm", "start", "--"));
    EXPECT_THAT(words("/opt/gnome-terminal", {"gnome-terminal"}),
                ElementsAre("/bin/gnome-terminal", "--"));
    EXPECT_THAT(words("mine", {"mine", "xterm"}), ElementsAre("/bin/mine", "-e"));
    EXPECT_THAT(words("gone", {"xterm"}), ElementsAre("/bin/xterm", "-e"));
    EXPECT_THAT(words("", {}), IsEmpty());
}

} // namespace
} // namespace tessarine
