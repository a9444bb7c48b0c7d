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

    void run(SystemAction action) {
        commands.run(action);
        services.platform.time.settle();
    }

    FakeServices services;
    FakeSystemEffects effects{services.platform.queue};
    FakeAlerts alerts;
    std::vector<QuittableApp> running;
    std::vector<std::string> askedToQuit;
    std::vector<std::string> shown;
    SystemCommands commands{
        {.queue = services.platform.queue,
         .work = services.platform.work,
         .files = services.platform.files,
         .catalog = services.catalog,
         .running = services.running,
         .prefs = services.prefs,
         .effects = effects,
         .alerts = alerts,
         .diagnostics = services.diagnostics,
         .runningApps = [this] { return running; },
         .askToQuit = [this](const QuittableApp& app) { askedToQuit.push_back(app.bundleID); },
         .showPanel = [this](const std::string& query) { shown.push_back(query); }},
        services.environment};
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
    EXPECT_TRUE(commands.hasScanned());
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
        alerts.answers.back()(false);
        EXPECT_THAT(effects.performed, IsEmpty());
        run(action);
        alerts.answers.back()(true);
        EXPECT_THAT(effects.performed, ElementsAre(performed));
    }
}

TEST_F(SystemCommandsTest, theSessionEndsWhenAllAppsHaveQuitAndStaysWithOneThatDoesNot) {
    running = {{.name = "Editor", .bundleID = "editor"},
               {.name = "Tessarine", .bundleID = "com.corvane.tessarine"}};
    run(SystemAction::restart);
    EXPECT_THAT(askedToQuit, IsEmpty()) << "the user has not confirmed yet";
    alerts.answers.back()(true);
    EXPECT_THAT(askedToQuit, ElementsAre("editor"));
    services.platform.time.advance(Seconds{30});
    EXPECT_THAT(effects.performed, IsEmpty()) << "it asks whether to save";
    running.erase(running.begin());
    services.platform.time.advance(Seconds{1});
    EXPECT_THAT(effects.performed, ElementsAre(SystemAction::restartImmediately));

    running.push_back({.name = "Editor", .bundleID = "editor"});
    run(SystemAction::shutDown);
    alerts.answers.back()(true);
    services.platform.time.advance(Seconds{120});
    EXPECT_EQ(effects.performed.size(), 1u);
    EXPECT_THAT(alerts.told,
                ElementsAre(testing::Pair("Shut down", HasSubstr("still open: Editor"))));
}

TEST_F(SystemCommandsTest, whereAppsCannotBeAskedTheQuestionSaysSo) {
    services.platform.windows.supported = Ability::missing("windows are not told");
    running = {{.name = "Editor", .bundleID = "editor"}};
    run(SystemAction::logOut);
    EXPECT_THAT(alerts.questions.back().text, HasSubstr("can't be asked to quit"));
    alerts.answers.back()(true);
    EXPECT_THAT(askedToQuit, IsEmpty());
    EXPECT_THAT(effects.performed, ElementsAre(SystemAction::logOutImmediately));
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

TEST_F(SystemCommandsTest, aFailureIsLoggedAndTold) {
    effects.problem = "the trash of a drive can't be written";
    run(SystemAction::emptyTrash);
    EXPECT_THAT(alerts.told,
                ElementsAre(testing::Pair("Empty Trash", HasSubstr("the trash of a drive"))));
    EXPECT_THAT(services.log(),
                HasSubstr("system emptyTrash: the trash of a drive can't be written"));
}

TEST_F(SystemCommandsTest, quittingAllSparesTheFileManagerAndThisProgram) {
    services.install("org.x.Files", "Files", "MimeType=inode/directory;\n");
    start();
    for (const auto* id : {"editor", "org.x.Files", "com.corvane.tessarine", "mail"})
        running.push_back({.name = id, .bundleID = id});
    run(SystemAction::quitAll);
    EXPECT_THAT(askedToQuit, ElementsAre("editor", "mail"));
    services.platform.windows.supported = Ability::missing("windows are not told");
    run(SystemAction::quitAll);
    EXPECT_EQ(askedToQuit.size(), 2u);
    EXPECT_EQ(alerts.told.size(), 1u);
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
