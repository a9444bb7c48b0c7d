#include "tests/linux/system/DesktopAbilities.h"

#include <fstream>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using enum SystemAction;

class ScreenshotsTest : public DesktopAbilities {};

TEST_F(ScreenshotsTest, takesPicturesWithTheDesktopsOwnProgramAndSaysOfWhichWindow) {
    const Case cases[] = {
        {"Plasma's own camera",
         {.name = "KDE", .programs = {"spectacle", "maim"}},
         screenshotSelection,
         {"spectacle -r -b -n -c"}},
        {"Plasma's is not taken elsewhere",
         {.name = "i3", .programs = {"spectacle"}},
         screenshotWindow,
         {},
         "maim would do"},
        {"a window on Xfce",
         {.name = "XFCE", .programs = {"xfce4-screenshooter"}},
         screenshotWindow,
         {"xfce4-screenshooter -w -c"},
         "",
         "window in front"},
        {"wlroots without slurp",
         {.name = "sway", .isWayland = true, .programs = {"grim", "wl-copy", "maim"}},
         screenshotSelection,
         {},
         "slurp"},
        {"grimshot",
         {.name = "sway", .isWayland = true, .programs = {"grimshot", "swaymsg"}},
         screenshotWindow,
         {"grimshot copy window"}},
        {"only sway tells grimshot its windows",
         {.name = "Hyprland", .isWayland = true, .programs = {"grimshot", "swaymsg"}},
         screenshotWindow,
         {},
         "it is not known how"},
        {"it takes a part of the screen anywhere",
         {.name = "Hyprland", .isWayland = true, .programs = {"grimshot"}},
         screenshotSelection,
         {"grimshot copy area"}},
        {"Plasma's takes what is below the pointer",
         {.name = "KDE", .isWayland = true, .programs = {"spectacle"}},
         screenshotWindow,
         {"spectacle -u -b -n -c"},
         "",
         "below the pointer"},
        {"a left-over of GNOME's leaves grimshot its part",
         {.name = "sway", .isWayland = true, .programs = {"gnome-screenshot", "grimshot"}},
         screenshotSelection,
         {"grimshot copy area"}},
        {"and doesn't take a black picture by itself",
         {.name = "sway", .isWayland = true, .programs = {"gnome-screenshot"}},
         screenshotSelection,
         {},
         "grim with slurp"},
        {"on plain X11 it works",
         {.name = "i3", .programs = {"gnome-screenshot"}},
         screenshotSelection,
         {"gnome-screenshot -a -c"}},
        {"GNOME's compositor serves no grim",
         {.name = "GNOME", .isWayland = true, .programs = {"grim", "slurp", "wl-copy"}},
         screenshotSelection,
         {},
         "gnome-screenshot would do"},
    };
    for (const auto& each : cases)
        expect(each);
}

TEST_F(ScreenshotsTest, aWindowIsClickedWhereAProgramAllowsIt) {
    const Desktop xfce{.name = "XFCE", .programs = {"xfce4-screenshooter", "maim"}};
    const auto made = effect(xfce, screenshotWindow);
    EXPECT_EQ(made.manner.line, std::nullopt) << "the action's own line is true";
    EXPECT_EQ(ended(made.perform), std::nullopt);
    EXPECT_THAT(ran, ElementsAre(StartsWith("maim -s /")));
}

TEST_F(ScreenshotsTest, aPictureInAFileIsCopiedAndItsFileGoes) {
    const Desktop desktop{.name = "i3", .programs = {"maim"}};
    std::string path;
    const auto shoot = [&](int status, const char* text) {
        const auto before = programs.started.size();
        endedPrograms = before + 1;
        return ended([&](EffectDone done) {
            effect(desktop, screenshotSelection).perform(std::move(done));
            const auto program = programs.started.at(before);
            path = program->spec.arguments.back();
            std::ofstream(path) << "picture";
            program->end({.status = status, .output = text});
        });
    };
    EXPECT_EQ(shoot(0, ""), std::nullopt);
    EXPECT_EQ(copied, path);
    EXPECT_TRUE(path.starts_with(scratch.path("/run/")));
    EXPECT_TRUE(spinUntil([&] { return !std::filesystem::exists(path); }));
    copied.clear();
    EXPECT_EQ(shoot(1, "Selection was cancelled by keystroke or right-click."), std::nullopt);
    EXPECT_EQ(shoot(1, "Key was pressed, aborting shot"), std::nullopt);
    EXPECT_EQ(shoot(1, "Can't grab the keyboard"), "maim: Can't grab the keyboard");
    EXPECT_EQ(copied, "");
}

TEST_F(ScreenshotsTest, aPictureThatGrimCannotTakeLeavesTheClipboardAlone) {
    const Desktop sway{.name = "sway", .isWayland = true, .programs = {"grim", "slurp", "wl-copy"}};
    const auto shoot = [&](int status, const char* text) {
        ran.clear();
        const auto before = programs.started.size();
        endedPrograms = before + 1;
        return ended([&](EffectDone done) {
            effect(sway, screenshotSelection).perform(std::move(done));
            programs.started.at(before)->end({.status = status, .output = text});
        });
    };
    EXPECT_EQ(shoot(0, ""), std::nullopt);
    EXPECT_THAT(ran, ElementsAre(HasSubstr("wl-copy /")));
    EXPECT_EQ(shoot(1, "failed to create display"), "sh: failed to create display");
    EXPECT_EQ(shoot(1, "selection cancelled"), std::nullopt);
    EXPECT_THAT(ran, ElementsAre());
}

} // namespace
} // namespace tessarine
