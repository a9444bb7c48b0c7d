#include "tests/linux/system/DesktopAbilities.h"

namespace tessarine {
namespace {

using testing::HasSubstr;

using enum SystemAction;

class ScreenEffectsTest : public DesktopAbilities {};

TEST_F(ScreenEffectsTest, darkensTheScreensByWhatEachDesktopHas) {
    ASSERT_TRUE(own({"org.gnome.ScreenSaver", "org.gnome.Mutter.DisplayConfig"}));
    services.answer("SetActive");
    services.answer("Set");
    const Case cases[] = {
        {"X11", {.name = "i3", .programs = {"xset"}}, sleepDisplays, {"xset dpms force off"}},
        {"X11 without it", {.name = "i3"}, sleepDisplays, {}, "xset"},
        {"a Wayland that no key wakes",
         {.name = "sway", .isWayland = true, .programs = {"xset"}},
         sleepDisplays,
         {},
         "that a key would undo"},
        {"Plasma",
         {.name = "KDE", .isWayland = true, .programs = {"kscreen-doctor", "xset"}},
         sleepDisplays,
         {"kscreen-doctor --dpms off"}},
        {"GNOME",
         {.name = "GNOME", .isWayland = true, .owned = {"org.gnome.Mutter.DisplayConfig"}},
         sleepDisplays,
         {"/org/gnome/Mutter/DisplayConfig Properties.Set(org.gnome.Mutter.DisplayConfig,"
          "PowerSaveMode,<3>)"}},
        {"GNOME's saver",
         {.name = "GNOME", .owned = {"org.gnome.ScreenSaver"}, .programs = {"xset"}},
         screenSaver,
         {"/org/gnome/ScreenSaver ScreenSaver.SetActive(true)"}},
        {"the X server's", {.name = "i3", .programs = {"xset"}}, screenSaver, {"xset s activate"}},
        {"none", {.name = "sway", .isWayland = true}, screenSaver, {}, "no screen saver"},
        {"X11 only as a Wayland compositor's stand-in",
         {.name = "i3", .programs = {"xset"}, .sessionTypes = {"wayland"}},
         screenSaver,
         {},
         "no screen saver"},
    };
    for (const auto& each : cases)
        expect(each);
}

TEST_F(ScreenEffectsTest, turnsDarkAndLightByTheDesktopsOwnSetting) {
    const Case cases[] = {
        {"GNOME turns dark",
         {.name = "GNOME", .programs = {"gsettings"}},
         darkMode,
         {"gsettings set org.gnome.desktop.interface color-scheme prefer-dark"}},
        {"its light is its default",
         {.name = "GNOME", .programs = {"gsettings"}},
         lightMode,
         {"gsettings set org.gnome.desktop.interface color-scheme default"}},
        {"Cinnamon has its own",
         {.name = "X-Cinnamon", .programs = {"gsettings"}},
         lightMode,
         {"gsettings set org.x.apps.portal color-scheme prefer-light"}},
        {"Plasma",
         {.name = "KDE", .programs = {"plasma-apply-colorscheme", "gsettings"}},
         darkMode,
         {"plasma-apply-colorscheme BreezeDark"}},
        {"nobody passes it on",
         {.name = "sway", .programs = {"gsettings"}},
         darkMode,
         {},
         "portal"},
        {"Xfce", {.name = "XFCE", .programs = {"gsettings"}}, toggleDarkMode, {}, "Xfce has no"},
        {"by the hour", {.name = "GNOME"}, autoAppearance, {}, "GNOME has no switch"},
        {"nobody has found it out", {.name = "Pantheon"}, darkMode, {}, "it is not known how"},
    };
    for (const auto& each : cases)
        expect(each);
}

TEST_F(ScreenEffectsTest, theTogglesFollowWhatIsSetNow) {
    const auto turns = [&](const Desktop& desktop) {
        ran.clear();
        EXPECT_EQ(ended(effect(desktop, toggleDarkMode).perform), std::nullopt);
        return ran.empty() ? "" : ran.back();
    };
    const Desktop gnome{.name = "GNOME", .programs = {"gsettings"}};
    const Desktop plasma{.name = "KDE", .programs = {"plasma-apply-colorscheme"}};
    EXPECT_THAT(turns(gnome), HasSubstr("prefer-dark"));
    EXPECT_EQ(programs.started.front()->reading.errors, OutputReading::Errors::dropped)
        << "a warning is no setting";
    prints["gsettings get org.gnome.desktop.interface color-scheme"] = "'prefer-dark'\n";
    EXPECT_THAT(turns(gnome), HasSubstr("default"));
    EXPECT_THAT(turns(plasma), HasSubstr("BreezeDark"));
    scheme = ColorScheme::dark;
    EXPECT_THAT(turns(plasma), HasSubstr("BreezeLight"));
}

TEST_F(ScreenEffectsTest, aProgramThatFailsTellsWhy) {
    const Desktop gnome{.name = "GNOME", .programs = {"gsettings"}};
    const auto set = "gsettings set org.gnome.desktop.interface color-scheme prefer-dark";
    statuses[set] = 1;
    prints[set] = "No such key “color-scheme”\nmore";
    EXPECT_EQ(ended(effect(gnome, darkMode).perform), "gsettings: No such key “color-scheme”");

    patience.question = Seconds{.02}; // one that hangs is ended
    endedPrograms = 1000;
    EXPECT_EQ(ended(effect(gnome, darkMode).perform), "gsettings took too long");
    EXPECT_TRUE(programs.started.back()->terminated);
}

TEST_F(ScreenEffectsTest, aSettingThatCannotBeReadIsLeftAlone) {
    const Desktop gnome{.name = "GNOME", .programs = {"gsettings"}};
    statuses["gsettings get org.gnome.desktop.interface color-scheme"] = 1;
    EXPECT_EQ(ended(effect(gnome, toggleDarkMode).perform), "gsettings ended with status 1");
    EXPECT_THAT(ran, testing::SizeIs(1));
}

} // namespace
} // namespace tessarine
