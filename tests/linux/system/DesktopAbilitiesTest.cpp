#include "tests/linux/system/DesktopAbilities.h"

namespace tessarine {
namespace {

using enum SystemAction;

TEST_F(DesktopAbilities, foldersOpenInTheProgramThatTheUserChose) {
    ASSERT_TRUE(own({"org.kde.dolphin-4711"}));
    services.answer("quit");
    prints["gsettings get org.nemo.preferences show-hidden-files"] = "true\n";
    const Case cases[] = {
        {"both GTKs, from what the newer one says",
         {.programs = {"gsettings"}, .opener = "org.gnome.Nautilus"},
         toggleHiddenFiles,
         {"gsettings get org.gtk.gtk4.Settings.FileChooser show-hidden",
          "gsettings set org.gtk.gtk4.Settings.FileChooser show-hidden true",
          "gsettings set org.gtk.Settings.FileChooser show-hidden true"}},
        {"shown, so hidden",
         {.programs = {"gsettings"}, .opener = "nemo"},
         toggleHiddenFiles,
         {"gsettings get org.nemo.preferences show-hidden-files",
          "gsettings set org.nemo.preferences show-hidden-files false"}},
        {"Xfconf",
         {.programs = {"xfconf-query"}, .opener = "thunar"},
         toggleHiddenFiles,
         {"xfconf-query -c thunar -p /last-show-hidden",
          "xfconf-query -c thunar -p /last-show-hidden -n -t bool -s true"}},
        {"its own business", {.opener = "org.kde.dolphin"}, toggleHiddenFiles, {}, "Dolphin lets"},
        {"nobody knows it", {.opener = "vlc"}, toggleHiddenFiles, {}, "vlc"},

        {"all windows at once",
         {.programs = {"nautilus"}, .opener = "org.gnome.Nautilus"},
         restartFinder,
         {"nautilus -q", "nautilus &"}},
        {"each process on the bus",
         {.programs = {"dolphin"}, .opener = "org.kde.dolphin"},
         restartFinder,
         {"dolphin &", "/MainApplication .quit()"}},
        {"what would not come again stays",
         {.opener = "org.kde.dolphin"},
         restartFinder,
         {},
         "start it again"},
        {"no program opens folders", {}, restartFinder, {}, "no program"},

        {"Nautilus shows the trash",
         {.programs = {"nautilus"}, .opener = "org.gnome.Nautilus"},
         showTrash,
         {"nautilus trash:/// &"}},
    };
    for (const auto& each : cases)
        expect(each);
}

} // namespace
} // namespace tessarine
