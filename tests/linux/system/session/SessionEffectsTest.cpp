#include "tests/linux/system/DesktopAbilities.h"

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using enum SystemAction;

class SessionEffectsTest : public DesktopAbilities {};

constexpr auto gnomes = "org.gnome.SessionManager";

TEST_F(SessionEffectsTest, endsTheSessionThroughItsManager) {
    ASSERT_TRUE(own({gnomes,
                     "org.kde.Shutdown",
                     "org.kde.ksmserver",
                     "org.xfce.SessionManager",
                     "org.lxqt.session",
                     "org.freedesktop.login1"}));
    for (const auto* method : {"Logout",
                               "Reboot",
                               "PowerOff",
                               "Shutdown",
                               "Restart",
                               "logout",
                               "logoutAndReboot",
                               "logoutAndShutdown",
                               "Terminate"})
        services.answer(method);
    const Desktop gnome{.name = "GNOME", .isWayland = true, .owned = {gnomes}};
    const Desktop mate{.name = "MATE", .owned = {gnomes}};
    const Desktop plasma5{.name = "KDE", .owned = {"org.kde.ksmserver"}};
    const Desktop plasma6{
        .name = "KDE", .owned = {"org.kde.ksmserver"}, .startable = {"org.kde.Shutdown"}};
    const Desktop xfce{.name = "XFCE", .owned = {"org.xfce.SessionManager"}};

    const struct {
        Case each;
        Farewell farewell = Farewell::none;
    } cases[] = {
        {{"GNOME asks the user",
          gnome,
          restart,
          {"/org/gnome/SessionManager SessionManager.Reboot()"}},
         Farewell::userAndApps},
        {{"", gnome, shutDown, {"/org/gnome/SessionManager SessionManager.Shutdown()"}},
         Farewell::userAndApps},
        {{"", gnome, logOut, {"/org/gnome/SessionManager SessionManager.Logout(0u)"}},
         Farewell::userAndApps},
        {{"but not for what is done at once",
          gnome,
          logOutImmediately,
          {"/org/gnome/SessionManager SessionManager.Logout(1u)"}}},
        {{"nor is its power",
          gnome,
          restartImmediately,
          {"/org/freedesktop/login1 Manager.Reboot(true)"}}},
        {{"MATE's asks", mate, shutDown, {"/org/gnome/SessionManager SessionManager.Shutdown()"}},
         Farewell::userAndApps},
        {{"and can't restart", mate, restart, {"/org/freedesktop/login1 Manager.Reboot(true)"}}},
        {{"Plasma 5", plasma5, restart, {"/KSMServer KSMServerInterface.logout(0,1,0)"}},
         Farewell::apps},
        {{"", plasma5, shutDown, {"/KSMServer KSMServerInterface.logout(0,2,0)"}}, Farewell::apps},
        {{"", plasma5, logOutImmediately, {"/KSMServer KSMServerInterface.logout(0,0,0)"}}},
        {{"Plasma 6, started by the bus",
          plasma6,
          restart,
          {"/Shutdown Shutdown.logoutAndReboot()"}},
         Farewell::apps},
        {{"", plasma6, shutDown, {"/Shutdown Shutdown.logoutAndShutdown()"}}, Farewell::apps},
        {{"a left-over of Plasma's",
          {.name = "XFCE", .owned = {"org.xfce.SessionManager"}, .startable = {"org.kde.Shutdown"}},
          shutDown,
          {"/org/xfce/SessionManager Manager.Shutdown(true)"}},
         Farewell::apps},
        {{"Xfce", xfce, restart, {"/org/xfce/SessionManager Manager.Restart(true)"}},
         Farewell::apps},
        {{"", xfce, logOut, {"/org/xfce/SessionManager Manager.Logout(false,true)"}},
         Farewell::apps},
        {{"LXQt asks nobody",
          {.name = "LXQt", .owned = {"org.lxqt.session"}},
          logOut,
          {"/LXQtSession session.logout()"}}},
        {{"no session manager", {.name = "sway"}, logOut, {"/session/c7 Session.Terminate()"}}},
        {{"nor a session",
          {.name = "sway", .hasSession = false},
          logOut,
          {},
          "neither a session manager"}},
    };

    for (const auto& [each, farewell] : cases) {
        expect(each);
        EXPECT_EQ(effect(each.desktop, each.action).manner.farewell, farewell) << each.reason;
    }
}

TEST_F(SessionEffectsTest, whatTheManagerRefusesIsNotDoneUnasked) {
    ASSERT_TRUE(own({gnomes, "org.freedesktop.login1"}));
    services.answer("Reboot", {});
    const Desktop gnome{.name = "GNOME", .owned = {gnomes}};
    services.answers.erase("Reboot");
    services.answer("PowerOff");
    EXPECT_EQ(ended(effect(gnome, shutDown).perform), "not now");
    EXPECT_THAT(services.acts(),
                testing::AllOf(testing::Contains(HasSubstr("Shutdown()")),
                               testing::Not(testing::Contains(HasSubstr("PowerOff")))));
}

TEST_F(SessionEffectsTest, locksThroughWhateverLocksHere) {
    ASSERT_TRUE(own({"org.gnome.ScreenSaver",
                     "org.cinnamon.ScreenSaver",
                     "org.mate.ScreenSaver",
                     "org.xfce.ScreenSaver",
                     "org.freedesktop.ScreenSaver",
                     "org.freedesktop.login1"}));
    services.answer("Lock");
    const Case cases[] = {
        {"GNOME's own, not its stand-in",
         {.name = "GNOME", .owned = {"org.gnome.ScreenSaver", "org.freedesktop.ScreenSaver"}},
         lockScreen,
         {"/org/gnome/ScreenSaver ScreenSaver.Lock()"}},
        {"Cinnamon's takes a text",
         {.name = "X-Cinnamon", .owned = {"org.cinnamon.ScreenSaver"}},
         lockScreen,
         {"/org/cinnamon/ScreenSaver ScreenSaver.Lock(\"\")"}},
        {"MATE's",
         {.name = "MATE", .owned = {"org.mate.ScreenSaver"}},
         lockScreen,
         {"/org/mate/ScreenSaver ScreenSaver.Lock()"}},
        {"Xfce's",
         {.name = "XFCE", .owned = {"org.xfce.ScreenSaver"}},
         lockScreen,
         {"/org/xfce/ScreenSaver ScreenSaver.Lock()"}},
        {"somebody listens to logind",
         {.name = "i3", .programs = {"i3lock"}, .running = {"xss-lock"}},
         lockScreen,
         {"/session/c7 Session.Lock()"}},
        {"another listener",
         {.name = "XFCE", .running = {"light-locker"}},
         lockScreen,
         {"/session/c7 Session.Lock()"}},
        {"one that may listen for other things",
         {.name = "sway", .isWayland = true, .programs = {"swaylock"}, .running = {"swayidle"}},
         lockScreen,
         {"swaylock &"}},
        {"nobody listens", {.name = "i3", .programs = {"i3lock"}}, lockScreen, {"i3lock &"}},
        {"a locker of the other kind",
         {.name = "sway", .isWayland = true, .programs = {"i3lock"}},
         lockScreen,
         {},
         "swaylock would"},
        {"kept off Wayland",
         {.name = "sway", .programs = {"i3lock"}, .running = {"Xwayland"}},
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

TEST_F(SessionEffectsTest, aLockerThatIsSlowIsNotJoinedByAnother) {
    ASSERT_TRUE(own({"org.freedesktop.ScreenSaver", "org.xfce.ScreenSaver"}));
    const Desktop desktop{.name = "KDE",
                          .owned = {"org.xfce.ScreenSaver", "org.freedesktop.ScreenSaver"},
                          .programs = {"i3lock"}};
    // A refusal goes on to the next of its kind, and then to a program.
    EXPECT_EQ(ended(effect(desktop, lockScreen).perform), std::nullopt);
    EXPECT_THAT(services.acts(), testing::SizeIs(2));
    EXPECT_EQ(launcher.started.size(), 1u);

    services.calls.clear();
    launcher.started.clear();
    services.hung["Lock"] = true;
    patience.act = Seconds{.05};
    EXPECT_EQ(ended(effect(desktop, lockScreen).perform),
              "org.xfce.ScreenSaver was asked, but has not answered");
    EXPECT_THAT(services.acts(), testing::SizeIs(1));
    EXPECT_TRUE(launcher.started.empty());
}

TEST_F(SessionEffectsTest, restartsTheShellWhereTheSessionSurvivesIt) {
    statuses["systemctl --user is-active plasma-plasmashell.service"] = 3;
    const auto pkill = "pkill -HUP -x -U 1000 gnome-shell";
    const Case cases[] = {
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
        {"nobody says that it is X11",
         {.name = "GNOME", .programs = {"pkill"}, .sessionTypes = {"tty"}},
         restartDock,
         {},
         "without ending the session"},
        {"kept off Wayland, from a terminal of an older session",
         {.name = "GNOME", .programs = {"pkill"}, .sessionTypes = {"x11", "wayland"}},
         restartDock,
         {},
         "without ending the session"},
        {"its X server is the compositor's",
         {.name = "X-Cinnamon", .programs = {"cinnamon"}, .running = {"Xwayland"}},
         restartDock,
         {},
         "without ending the session"},
    };
    for (const auto& each : cases)
        expect(each);
}

} // namespace
} // namespace tessarine
