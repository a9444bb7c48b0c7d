#include "launcherapp/platform/linux/system/EffectWays.h"
#include "launcherapp/platform/linux/system/LinuxSystemEffects.h"
#include "tests/linux/system/SystemFixture.h"

namespace tessarine {
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;

using enum SystemAction;

/// A desktop as it was found.
struct Desktop {
    const char* name = "";
    bool isWayland = false;
    std::vector<const char*> owned = {};
    std::vector<const char*> programs = {};
    std::vector<const char*> running = {};
    const char* opener = "";
    bool hasSession = true; ///< that logind knows
};

struct Case {
    const char* reason;
    Desktop desktop;
    SystemAction action;
    std::vector<std::string> does = {}; ///< what is run and called, in order
    const char* missing = "";           ///< a part of why it can't be had
};

class DesktopAbilities : public SystemFixture {
protected:
    Effect effect(const Desktop& desktop, SystemAction action) {
        DesktopFacts facts{.desktops = {desktop.name},
                           .hasX11 = true,
                           .hasWayland = desktop.isWayland,
                           .folderOpener = desktop.opener,
                           .owned = {desktop.owned.begin(), desktop.owned.end()},
                           .schemas = {"org.gnome.desktop.interface",
                                       "org.x.apps.portal",
                                       "org.gtk.gtk4.Settings.FileChooser",
                                       "org.gtk.Settings.FileChooser",
                                       "org.nemo.preferences"},
                           .logind = LogindFacts{}};
        facts.running.insert(desktop.running.begin(), desktop.running.end());
        if (desktop.hasSession)
            facts.logind->session = "/session/c7";
        for (const auto* program : desktop.programs) {
            install(program);
            facts.programs[program] = scratch.path("/bin/") + program;
        }
        return effectOf(action,
                        {.doors = std::make_shared<const SystemDoors>(doors()),
                         .facts = std::move(facts),
                         .session = sessionBus(),
                         .system = sessionBus()});
    }

    void expect(const Case& each) {
        SCOPED_TRACE(each.reason);
        services.calls.clear();
        ran.clear();
        launcher.started.clear();
        const auto effect_ = effect(each.desktop, each.action);
        EXPECT_EQ(effect_.ability.available, each.does.size() > 0) << effect_.ability.reason;
        EXPECT_THAT(effect_.ability.reason, HasSubstr(each.missing));
        EXPECT_FALSE(effect_.ability.reason.ends_with('.'));
        if (!effect_.perform)
            return;
        EXPECT_EQ(ended(effect_.perform), std::nullopt);
        auto did = ran;
        for (const auto& spec : launcher.started)
            did.push_back(commandLine(spec) + " &");
        // Programs that greet whoever comes onto the bus are none of ours.
        std::ranges::copy_if(services.calls, std::back_inserter(did), [](const auto& call) {
            return call.find("RegisterClient") == std::string::npos &&
                   call.find("Properties.GetAll") == std::string::npos;
        });
        EXPECT_THAT(did, ElementsAreArray(each.does));
    }

    void own(const std::vector<const char*>& names) {
        for (const auto* name : names)
            ASSERT_TRUE(services.own(name)) << name;
    }
};

TEST_F(DesktopAbilities, theSession) {
    own({"org.gnome.SessionManager",
         "org.gnome.ScreenSaver",
         "org.cinnamon.ScreenSaver",
         "org.freedesktop.ScreenSaver",
         "org.kde.ksmserver",
         "org.xfce.SessionManager",
         "org.freedesktop.login1"});
    for (const auto* method : {"Logout", "logout", "Lock", "Terminate", "SetActive"})
        services.answer(method);
    const Case cases[] = {
        {"GNOME asks nothing more",
         {.name = "GNOME", .owned = {"org.gnome.SessionManager"}},
         logOut,
         {"/org/gnome/SessionManager SessionManager.Logout(1)"}},
        {"Plasma 5",
         {.name = "KDE", .owned = {"org.kde.ksmserver"}},
         logOutImmediately,
         {"/KSMServer KSMServerInterface.logout(0,0,0)"}},
        {"Xfce",
         {.name = "XFCE", .owned = {"org.xfce.SessionManager"}},
         logOut,
         {"/org/xfce/SessionManager Manager.Logout(false,true)"}},
        {"no session manager", {.name = "sway"}, logOut, {"/session/c7 Session.Terminate()"}},
        {"nor a session",
         {.name = "sway", .hasSession = false},
         logOut,
         {},
         "neither a session manager"},

        {"GNOME's own, not its stand-in",
         {.name = "GNOME", .owned = {"org.gnome.ScreenSaver", "org.freedesktop.ScreenSaver"}},
         lockScreen,
         {"/org/gnome/ScreenSaver ScreenSaver.Lock()"}},
        {"Cinnamon's takes a text",
         {.name = "X-Cinnamon", .owned = {"org.cinnamon.ScreenSaver"}},
         lockScreen,
         {"/org/cinnamon/ScreenSaver ScreenSaver.Lock()"}},
        {"somebody listens to logind",
         {.name = "i3", .programs = {"i3lock"}, .running = {"xss-lock"}},
         lockScreen,
         {"/session/c7 Session.Lock()"}},
        {"nobody listens", {.name = "i3", .programs = {"i3lock"}}, lockScreen, {"i3lock &"}},
        {"a locker of the other kind",
         {.name = "sway", .isWayland = true, .programs = {"i3lock"}},
         lockScreen,
         {},
         "swaylock would"},
        {"xscreensaver is installed but doesn't run",
         {.name = "i3", .programs = {"xscreensaver-command"}},
         lockScreen,
         {},
         "nothing here locks"},
        {"it runs",
         {.name = "i3", .programs = {"xscreensaver-command"}, .running = {"xscreensaver"}},
         lockScreen,
         {"xscreensaver-command -lock"}},
    };
    for (const auto& each : cases)
        expect(each);
}

TEST_F(DesktopAbilities, theScreens) {
    own({"org.gnome.ScreenSaver", "org.gnome.Mutter.DisplayConfig"});
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
          "PowerSaveMode,)"}},
        {"GNOME's saver",
         {.name = "GNOME", .owned = {"org.gnome.ScreenSaver"}, .programs = {"xset"}},
         screenSaver,
         {"/org/gnome/ScreenSaver ScreenSaver.SetActive(true)"}},
        {"the X server's", {.name = "i3", .programs = {"xset"}}, screenSaver, {"xset s activate"}},
        {"none", {.name = "sway", .isWayland = true}, screenSaver, {}, "no screen saver"},

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
         {"xfce4-screenshooter -w -c"}},
        {"wlroots without slurp",
         {.name = "sway", .isWayland = true, .programs = {"grim", "wl-copy", "maim"}},
         screenshotSelection,
         {},
         "slurp"},
        {"grimshot",
         {.name = "sway", .isWayland = true, .programs = {"grimshot"}},
         screenshotWindow,
         {"grimshot copy window"}},
    };
    for (const auto& each : cases)
        expect(each);
}

TEST_F(DesktopAbilities, filesAndShells) {
    own({"org.kde.dolphin-4711"});
    services.answer("quit");
    prints["gsettings get org.nemo.preferences show-hidden-files"] = "true\n";
    statuses["systemctl --user is-active plasma-plasmashell.service"] = 3;
    const auto pkill = "pkill -HUP -x -U 1000 gnome-shell";
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

        {"the compositor itself",
         {.name = "GNOME", .isWayland = true, .programs = {"pkill"}},
         restartDock,
         {},
         "without ending the session"},
        {"on X11 it may", {.name = "GNOME", .programs = {"pkill"}}, restartDock, {pkill}},
        {"no systemd started it",
         {.name = "KDE", .programs = {"systemctl", "plasmashell"}},
         restartDock,
         {"systemctl --user is-active plasma-plasmashell.service", "plasmashell --replace &"}},
        {"Xfce", {.name = "XFCE", .programs = {"xfce4-panel"}}, restartDock, {"xfce4-panel -r"}},
        {"an unknown one", {.name = "sway"}, restartDock, {}, "this desktop"},

        {"Nautilus shows the trash",
         {.programs = {"nautilus"}, .opener = "org.gnome.Nautilus"},
         showTrash,
         {"nautilus trash:/// &"}},
    };
    for (const auto& each : cases)
        expect(each);
}

TEST_F(DesktopAbilities, theTogglesFollowWhatIsSetNow) {
    const auto turns = [&](const Desktop& desktop) {
        ran.clear();
        EXPECT_EQ(ended(effect(desktop, toggleDarkMode).perform), std::nullopt);
        return ran.empty() ? "" : ran.back();
    };
    const Desktop gnome{.name = "GNOME", .programs = {"gsettings"}};
    const Desktop plasma{.name = "KDE", .programs = {"plasma-apply-colorscheme"}};
    EXPECT_THAT(turns(gnome), HasSubstr("prefer-dark"));
    prints["gsettings get org.gnome.desktop.interface color-scheme"] = "'prefer-dark'\n";
    EXPECT_THAT(turns(gnome), HasSubstr("default"));
    EXPECT_THAT(turns(plasma), HasSubstr("BreezeDark"));
    scheme = ColorScheme::dark;
    EXPECT_THAT(turns(plasma), HasSubstr("BreezeLight"));
}

TEST_F(DesktopAbilities, aProgramThatFailsTellsWhy) {
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

TEST_F(DesktopAbilities, aPictureInAFileIsCopiedAndItsFileGoes) {
    const Desktop desktop{.name = "i3", .programs = {"maim"}};
    std::string path;
    const auto shoot = [&](int status, const char* prints_) {
        const auto before = programs.started.size();
        endedPrograms = before + 1;
        return ended([&](EffectDone done) {
            effect(desktop, screenshotSelection).perform(std::move(done));
            const auto program = programs.started.at(before);
            path = program->spec.arguments.back();
            std::ofstream(path) << "picture";
            program->end({.status = status, .output = prints_});
        });
    };
    EXPECT_EQ(shoot(0, ""), std::nullopt);
    EXPECT_EQ(copied, path);
    EXPECT_TRUE(path.starts_with(scratch.path("/run/")));
    EXPECT_TRUE(spinUntil([&] { return !std::filesystem::exists(path); }));
    copied.clear();
    EXPECT_EQ(shoot(1, "Selection was cancelled by keystroke or right-click."), std::nullopt);
    EXPECT_EQ(shoot(1, "Can't grab the keyboard"), "maim: Can't grab the keyboard");
    EXPECT_EQ(copied, "");
}

} // namespace
} // namespace tessarine
