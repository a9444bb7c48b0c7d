#include "launcherapp/commands/SystemCommands.h"

#include "launcherapp/commands/SystemCommandsSelftest.h"
#include "tests/fakes/FakeAlerts.h"
#include "tests/fakes/FakeServices.h"
#include "tests/fakes/FakeSystemEffects.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SystemCommandsTest : public testing::Test {
protected:
    SystemCommandsTest() {
        services.environment.programDirs = {"/usr/bin"};
        services.platform.files.file("/usr/bin/gnome-control-center", "");
        services.platform.files.makeExecutable("/usr/bin/gnome-control-center");
    }

    /// Installs a panel of GNOME's, as its control centre ships them.
    void installPanel(const std::string& page, const std::string& name) {
        services.platform.files.file("/usr/share/applications/gnome-" + page + "-panel.desktop",
                                     "[Desktop Entry]\nType=Application\nNoDisplay=true\nIcon=x\n"
                                     "Name=" +
                                         name + "\nExec=gnome-control-center " + page + "\n");
    }

    SystemCommands& start() {
        commands.start();
        services.startCatalog();
        return commands;
    }

    /// Ids of the commands that aren't actions.
    std::vector<std::string> others() {
        std::vector<std::string> ids;
        for (const auto& command : commands.available({})) {
            if (!command.action)
                ids.push_back(command.id);
        }
        return ids;
    }

    /// What the commands work through.
    SystemCommands::Services reached() {
        return {.queue = services.platform.queue,
                .work = services.platform.work,
                .files = services.platform.files,
                .catalog = services.catalog,
                .running = services.running,
                .prefs = services.prefs,
                .effects = effects,
                .alerts = alerts,
                .diagnostics = services.diagnostics,
                .openWindows = [this] { return open; },
                .closeWindow = [this](std::uint64_t window) { closed.push_back(window); },
                .showPanel = [this](const std::string& query) { shown.push_back(query); }};
    }

    void run(SystemAction action) {
        commands.run(action, [this](std::optional<std::string> problem) {
            ends.push_back(std::move(problem).value_or("done"));
        });
        services.platform.time.settle();
    }

    void answer(bool isConfirmed) {
        alerts.answers.back()(isConfirmed);
        services.platform.time.settle();
    }

    const OpenWindow editor{.id = 1, .name = "Editor", .bundleID = "editor"};
    const OpenWindow unknown{.id = 2, .name = "AppImage", .bundleID = {}};

    FakeServices services;
    FakeSystemEffects effects{services.platform.queue};
    FakeAlerts alerts;
    std::vector<OpenWindow> open;
    std::vector<std::uint64_t> closed;
    std::vector<std::string> shown;
    std::vector<std::string> ends; ///< how what was run ended, each once
    SystemCommands commands{reached(), services.environment};
};

TEST_F(SystemCommandsTest, panesComeAfterTheActionsByNameAndAreNoApplications) {
    installPanel("wifi", "Wi-Fi");
    installPanel("info-overview", "About");
    installPanel("sound", "Sound");
    services.install("org.gnome.Settings", "Settings");
    services.install("editor", "Editor");
    EXPECT_THAT(others(), IsEmpty()) << "nothing is known before the first scan";
    start();
    EXPECT_THAT(others(),
                ElementsAre("sys.settings",
                            "sys.pane.gnome-info-overview-panel",
                            "sys.pane.gnome-sound-panel",
                            "sys.pane.gnome-wifi-panel"));
    std::vector<std::string> applications;
    for (const auto& app : services.catalog.apps())
        applications.push_back(app.name);
    EXPECT_THAT(applications, ElementsAre("Editor", "Settings"));
    EXPECT_THAT(services.log(), HasSubstr("system commands: 27 actions + 3 settings panes"));
}

TEST_F(SystemCommandsTest, settingsOfAnotherDesktopAreNotOffered) {
    installPanel("wifi", "Wi-Fi");
    services.install("org.gnome.Settings", "Settings", "OnlyShowIn=Unity;\n");
    services.platform.files.remove("/usr/bin/gnome-control-center");
    start();
    EXPECT_THAT(others(), IsEmpty());
    // KDE's run on any desktop, and stand in where the desktop has none.
    services.install("systemsettings", "System Settings");
    services.catalog.rescan();
    services.platform.time.settle();
    EXPECT_THAT(others(), ElementsAre("sys.settings"));
    EXPECT_THAT(commands.available({})[allSystemActions.size()].path,
                "/usr/share/applications/systemsettings.desktop");
}

TEST_F(SystemCommandsTest, panesFollowWhatIsInstalledLater) {
    start();
    int changes = 0;
    const auto watch = commands.onChange([&] { ++changes; });
    installPanel("wifi", "Wi-Fi");
    services.catalog.rescan();
    services.catalog.rescan();
    services.platform.time.settle();
    EXPECT_EQ(changes, 1) << "an overtaken scan publishes nothing";
    EXPECT_THAT(others(), ElementsAre("sys.pane.gnome-wifi-panel"));
}

TEST_F(SystemCommandsTest, unreadableFoldersLeaveTheActions) {
    services.platform.files.folder("/usr/share/applications");
    services.platform.files.forbid("/usr/share/applications");
    start();
    EXPECT_EQ(commands.available({}).size(), allSystemActions.size());
    EXPECT_THAT(services.log(),
                HasSubstr("system commands: /usr/share/applications is unreadable; no Settings "
                          "panes"));
}

TEST_F(SystemCommandsTest, anActionThatThisDesktopCannotDoSaysSoBeforeReturnAndAfter) {
    start();
    EXPECT_EQ(effects.starts, 1);
    EXPECT_EQ(commands.subtitle(SystemAction::screenSaver), "Starts the screen saver now");
    int changes = 0;
    const auto watch = commands.onChange([&] { ++changes; });
    effects.lose(SystemAction::screenSaver, "no screen saver is installed");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(commands.subtitle(SystemAction::screenSaver),
              "Can't be done here: no screen saver is installed");
    effects.lose(SystemAction::restart, "the session may not");
    run(SystemAction::screenSaver);
    run(SystemAction::restart);
    EXPECT_THAT(effects.performed, IsEmpty());
    EXPECT_THAT(alerts.questions, IsEmpty()) << "there is nothing to confirm";
    EXPECT_THAT(services.log(),
                AllOf(HasSubstr("system screenSaver: no screen saver is installed"),
                      HasSubstr("system restart: the session may not")));
    EXPECT_EQ(alerts.told.size(), 2u);
}

TEST_F(SystemCommandsTest, whatEndsTheSessionAsksFirst) {
    const struct {
        SystemAction action;
        const char* title;
        const char* confirm;
        SystemAction performed;
    } cases[] = {
        {SystemAction::restart,
         "Restart this computer?",
         "Restart",
         SystemAction::restartImmediately},
        {SystemAction::shutDown,
         "Shut down this computer?",
         "Shut Down",
         SystemAction::shutDownImmediately},
        {SystemAction::logOut, "Log out?", "Log Out", SystemAction::logOutImmediately},
    };

    for (const auto& [action, title, confirm, performed] : cases) {
        SCOPED_TRACE(title);
        effects.performed.clear();
        run(action);
        EXPECT_EQ(alerts.questions.back(),
                  (AlertQuestion{.title = title,
                                 .text = "Apps will be asked to quit. Anything unsaved is yours to "
                                         "save first.",
                                 .confirm = confirm}));
        answer(false);
        EXPECT_THAT(effects.performed, IsEmpty());
        run(action);
        answer(true);
        EXPECT_THAT(ends, ElementsAre("it was taken back", "done"));
        ends.clear();
        EXPECT_THAT(effects.performed, ElementsAre(performed));
    }
}

TEST_F(SystemCommandsTest, theSessionEndsWhenAllWindowsHaveClosedAndStaysWithOneThatDoesNot) {
    open = {editor, unknown};
    run(SystemAction::restart);
    EXPECT_THAT(closed, IsEmpty()) << "the user has not confirmed yet";
    answer(true);
    EXPECT_THAT(closed, ElementsAre(1, 2)) << "also of programs that aren't installed";
    services.platform.time.advance(Seconds{30});
    EXPECT_THAT(alerts.waiting, ElementsAre("Waiting for Editor, AppImage to quit"));
    open = {unknown};
    services.platform.time.advance(Seconds{1});
    EXPECT_THAT(alerts.waiting, ElementsAre("Waiting for AppImage to quit"));
    EXPECT_THAT(effects.performed, IsEmpty()) << "it asks whether to save";
    open.clear();
    services.platform.time.advance(Seconds{1});
    EXPECT_THAT(effects.performed, ElementsAre(SystemAction::restartImmediately));
    EXPECT_THAT(alerts.waiting, IsEmpty());

    open = {editor};
    run(SystemAction::shutDown);
    answer(true);
    services.platform.time.advance(Seconds{120});
    EXPECT_EQ(effects.performed.size(), 1u);
    EXPECT_THAT(alerts.told,
                ElementsAre(testing::Pair("Shut down", HasSubstr("still open: Editor"))));
    EXPECT_THAT(ends, ElementsAre("done", "still open: Editor"));
}

TEST_F(SystemCommandsTest, theWaitingCanBeTakenBack) {
    const struct {
        const char* reason;
        std::function<void()> act;
    } cases[] = {
        {"by its window", [this] { alerts.takeBack(); }},
        {"by another question", [this] { run(SystemAction::logOut); }},
    };

    for (const auto& [reason, act] : cases) {
        SCOPED_TRACE(reason);
        ends.clear();
        open = {editor};
        run(SystemAction::restart);
        answer(true);
        services.platform.time.advance(Seconds{10});
        act();
        services.platform.time.settle();
        EXPECT_THAT(alerts.waiting, IsEmpty());
        EXPECT_THAT(ends, ElementsAre("it was taken back"));
        open.clear(); // the user closes it for another reason
        services.platform.time.advance(Seconds{10});
        EXPECT_THAT(effects.performed, IsEmpty());
        EXPECT_THAT(alerts.told, IsEmpty()) << "the user knows";
    }
}

TEST_F(SystemCommandsTest, ofTwoQuestionsTheLastThatIsConfirmedCounts) {
    open = {editor};
    run(SystemAction::restart);
    run(SystemAction::logOut);
    alerts.answers.front()(true);
    alerts.answers.back()(true);
    open.clear();
    services.platform.time.advance(Seconds{1});
    EXPECT_THAT(effects.performed, ElementsAre(SystemAction::logOutImmediately));
}

TEST_F(SystemCommandsTest, nothingEndsTheSessionOnceTheyAreGone) {
    open = {editor};
    auto other = std::make_unique<SystemCommands>(reached(), services.environment);
    other->run(SystemAction::restart);
    other->run(SystemAction::shutDown);
    alerts.answers.front()(true);
    services.platform.time.advance(Seconds{1});
    other.reset();
    alerts.answers.back()(true);
    open.clear();
    services.platform.time.advance(Seconds{10});
    EXPECT_THAT(effects.performed, IsEmpty());
}

TEST_F(SystemCommandsTest, theDesktopEndsTheSessionInItsOwnWayWhereItAsks) {
    services.platform.windows.supported = Ability::missing("windows are not told");
    open = {editor};
    effects.manners[SystemAction::restart].farewell = Farewell::userAndApps;
    effects.manners[SystemAction::shutDown].farewell = Farewell::apps;
    run(SystemAction::restart);
    EXPECT_THAT(alerts.questions, IsEmpty()) << "the user is not asked twice";
    EXPECT_THAT(effects.performed, ElementsAre(SystemAction::restart));

    run(SystemAction::shutDown);
    EXPECT_THAT(alerts.questions.back().text, HasSubstr("Apps will be asked to quit."));
    answer(true);
    EXPECT_THAT(effects.performed, ElementsAre(SystemAction::restart, SystemAction::shutDown));
    EXPECT_THAT(closed, IsEmpty()) << "the session manager closes them, and may remember them";
    for (const auto action : {SystemAction::restart, SystemAction::shutDown})
        EXPECT_THAT(commands.subtitle(action), HasSubstr("apps are asked to quit"));
}

TEST_F(SystemCommandsTest, whereAppsCannotBeAskedTheRowAndTheQuestionSaySo) {
    services.platform.windows.supported = Ability::missing("windows are not told");
    open = {editor};
    for (const auto action :
         {SystemAction::restart, SystemAction::shutDown, SystemAction::logOut}) {
        EXPECT_THAT(commands.subtitle(action), HasSubstr("at once; save your work before"));
        EXPECT_EQ(SystemActions::guidanceProblem(commands.subtitle(action)), std::nullopt);
    }
    run(SystemAction::logOut);
    EXPECT_THAT(alerts.questions.back().text, HasSubstr("can't be asked to quit"));
    answer(true);
    EXPECT_THAT(closed, IsEmpty());
    EXPECT_THAT(effects.performed, ElementsAre(SystemAction::logOutImmediately));
}

TEST_F(SystemCommandsTest, aRowSaysHowThisDesktopDoesIt) {
    effects.manners[SystemAction::screenshotWindow].line = "Takes the window in front";
    EXPECT_EQ(commands.subtitle(SystemAction::screenshotWindow), "Takes the window in front");
}

TEST_F(SystemCommandsTest, appearanceByTheHourOpensThePageThatComesNearest) {
    effects.lose(SystemAction::autoAppearance, "there is no switch");
    start();
    EXPECT_THAT(commands.subtitle(SystemAction::autoAppearance), HasSubstr("Can't be done here"));
    installPanel("background", "Background");
    services.catalog.rescan();
    services.platform.time.settle();
    EXPECT_THAT(commands.subtitle(SystemAction::autoAppearance),
                HasSubstr("Opens Appearance in the settings"));
    services.platform.processes.programs.insert("gnome-control-center");
    run(SystemAction::autoAppearance);
    EXPECT_THAT(effects.performed, IsEmpty());
    ASSERT_EQ(services.platform.processes.started.size(), 1u);
    EXPECT_THAT(services.platform.processes.started[0].arguments,
                ElementsAre("gnome-control-center", "background"));
    EXPECT_THAT(ends, ElementsAre("done"));
}

TEST_F(SystemCommandsTest, allOthersAreDoneAtOnce) {
    for (const auto action : allSystemActions) {
        if (SystemActions::asksFirst(action))
            continue;
        run(action);
    }
    EXPECT_THAT(alerts.questions, IsEmpty());
    EXPECT_THAT(effects.performed,
                AllOf(Contains(SystemAction::restartImmediately),
                      Contains(SystemAction::emptyTrash),
                      Not(Contains(SystemAction::quitAll)),
                      Not(Contains(SystemAction::forceQuitDialog)),
                      Not(Contains(SystemAction::timeHomeHere)),
                      Not(Contains(SystemAction::timeHomeClocks))));
    EXPECT_EQ(effects.performed.size(), allSystemActions.size() - 3 - 4);
}

TEST_F(SystemCommandsTest, aFailureIsLoggedAndToldWhereItWouldPassForDone) {
    effects.problem = "the disk is full";
    run(SystemAction::emptyTrash);
    run(SystemAction::showTrash);
    EXPECT_THAT(alerts.told,
                ElementsAre(testing::Pair("Empty Trash", HasSubstr("the disk is full"))));
    EXPECT_THAT(services.log(),
                AllOf(HasSubstr("system emptyTrash: the disk is full"),
                      HasSubstr("system showTrash: the disk is full")));
    EXPECT_THAT(ends, ElementsAre("the disk is full", "the disk is full"));
}

TEST_F(SystemCommandsTest, quittingAllSparesTheFileManager) {
    services.install("org.x.Files", "Files", "MimeType=inode/directory;\n");
    start();
    open = {editor, {.id = 3, .name = "Files", .bundleID = "org.x.Files"}, unknown};
    run(SystemAction::quitAll);
    EXPECT_THAT(closed, ElementsAre(1, 2));
    services.platform.windows.supported = Ability::missing("windows are not told");
    run(SystemAction::quitAll);
    EXPECT_EQ(closed.size(), 2u);
    EXPECT_EQ(alerts.told.size(), 1u);
    EXPECT_THAT(ends, ElementsAre("done", "windows are not told"));
}

TEST_F(SystemCommandsTest, forceQuittingListsTheApps) {
    ASSERT_FALSE(services.prefs.setKeywordWord(BuiltinKeyword::forceQuit, "kill"));
    run(SystemAction::forceQuitDialog);
    EXPECT_THAT(shown, ElementsAre("kill "));
    services.prefs.disableKeyword(BuiltinKeyword::forceQuit);
    run(SystemAction::forceQuitDialog);
    EXPECT_EQ(shown.size(), 1u);
    EXPECT_EQ(alerts.told.size(), 1u);
    EXPECT_THAT(commands.subtitle(SystemAction::forceQuitDialog), HasSubstr("switched off"));
    services.platform.windows.supported = Ability::missing("windows are not told");
    EXPECT_THAT(commands.subtitle(SystemAction::forceQuitDialog), HasSubstr("not told"));
}

TEST_F(SystemCommandsTest, theHomeOfTimesFollowsTheComputerOrTheClock) {
    run(SystemAction::timeHomeHere);
    EXPECT_TRUE(services.prefs.timeHomeFollowsMac());
    run(SystemAction::timeHomeClocks);
    EXPECT_FALSE(services.prefs.timeHomeFollowsMac());
    EXPECT_THAT(services.log(),
                AllOf(HasSubstr("time zones: home follows this Mac"),
                      HasSubstr("time zones: home is the first clock")));
}

TEST_F(SystemCommandsTest, theSelftestProvesItselfAndCountsWhatIsHere) {
    installPanel("wifi", "Wi-Fi");
    services.install("editor", "Editor");
    const auto result = systemCommandsSelftest(services.platform.files, services.environment);
    EXPECT_EQ(result.verdict, SelftestResult::Verdict::proved) << result.report;
    EXPECT_THAT(result.report,
                AllOf(HasSubstr("live: 1 of 2 desktop entries"), HasSubstr("3 of 11 invented")));
    const auto bare = systemCommandsSelftest(MemoryFileStore(), Environment());
    EXPECT_EQ(bare.verdict, SelftestResult::Verdict::proved);
    EXPECT_THAT(bare.report, HasSubstr("live: NOT MEASURED"));
}

} // namespace
} // namespace tessarine
