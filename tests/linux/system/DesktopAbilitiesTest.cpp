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
         {.programs = {"gsettings"}, .opener = "org.gnome.Nautilus.desktop"},
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
         {.programs = {"xfconf-query"}, .opener = "thunar.desktop"},
         toggleHiddenFiles,
         {"xfconf-query -c thunar -p /last-show-hidden",
          "xfconf-query -c thunar -p /last-show-hidden -n -t bool -s true"}},
        {"its own business", {.opener = "org.kde.dolphin"}, toggleHiddenFiles, {}, "Dolphin lets"},
        {"nobody knows it", {.opener = "vlc.desktop"}, toggleHiddenFiles, {}, "vlc.desktop"},

        {"all windows at once",
         {.programs = {"nautilus"}, .opener = "org.gnome.Nautilus"},
         restartFinder,
         {"nautilus -q"}},
        {"each process on the bus",
         {.opener = "org.kde.dolphin"},
         restartFinder,
         {"/MainApplication .quit()"}},
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
