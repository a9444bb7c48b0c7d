#include "launcherapp/commands/WindowManager.h"

#include "tests/fakes/FakeServices.h"
#include "tests/fakes/FakeWindowControl.h"
#include "tests/fakes/RectanglePrinting.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Two screens, the right one smaller and with a bar at its top.
const Screen leftScreen{.name = "L",
                        .frame = {.width = 800, .height = 900},
                        .workArea = {.width = 800, .height = 900},
                        .isMain = true};
const Screen rightScreen{.name = "R",
                         .frame = {.x = 800, .width = 400, .height = 600},
                         .workArea = {.x = 800, .y = 20, .width = 400, .height = 580}};

class WindowManagerTest : public testing::Test {
protected:
    WindowManagerTest() {
        services.install("editor", "Editor");
        services.install("browser", "Browser");
        services.startCatalog();
        control.monitors = {leftScreen, rightScreen};
        open({.id = 1, .className = "editor", .processID = 11},
             {.x = 10, .y = 10, .width = 300, .height = 200});
        open({.id = 2, .className = "browser", .processID = 12},
             {.x = 900, .y = 100, .width = 200, .height = 100});
        list.activeID = 2;
    }

    void open(const AppWindow& window, const Rectangle& frame) {
        list.open.push_back(window);
        control.windows[window.id] = {.frame = frame};
    }

    AppWindow close(std::uint64_t id) {
        const auto found = std::ranges::find(list.open, id, &AppWindow::id);
        const auto window = *found;
        list.open.erase(found);
        control.windows.erase(id);
        return window;
    }

    const AppWindow& window(std::uint64_t id) {
        return *std::ranges::find(list.open, id, &AppWindow::id);
    }

    Rectangle frame(std::uint64_t id) { return control.windows.at(id).frame; }

    FakeServices services;
    FakeWindowList& list = services.platform.windows;
    FakeWindowControl control;
    WindowManager manager{{.queue = services.platform.queue,
                           .control = control,
                           .windows = list,
                           .running = services.running,
                           .catalog = services.catalog,
                           .diagnostics = services.diagnostics}};
};

TEST_F(WindowManagerTest, tilesOnTheScreenThatHoldsTheWindow) {
    EXPECT_TRUE(manager.apply(WindowVerb::right, window(2)));
    EXPECT_EQ(frame(2), (Rectangle{1000, 20, 200, 580}));
    EXPECT_THAT(services.log(), HasSubstr("window: right -> Browser at 1000,20 200x580 on R\n"));

    control.windows[1].frame.x = -5; // on no screen: the main one
    EXPECT_TRUE(manager.apply(WindowVerb::top, window(1)));
    EXPECT_EQ(frame(1), (Rectangle{0, 0, 800, 450}));
}

TEST_F(WindowManagerTest, goesRoundTheDisplaysKeepingItsSize) {
    EXPECT_TRUE(manager.apply(WindowVerb::display, window(1)));
    EXPECT_EQ(frame(1), (Rectangle{850, 210, 300, 200}));
    EXPECT_TRUE(manager.apply(WindowVerb::display, window(1)));
    EXPECT_EQ(frame(1), (Rectangle{250, 350, 300, 200}));
    control.monitors = {leftScreen};
    control.windows[1].frame = {.x = 3, .y = 3, .width = 100, .height = 100};
    EXPECT_TRUE(manager.apply(WindowVerb::display, window(1)));
    EXPECT_EQ(frame(1), (Rectangle{350, 400, 100, 100})); // the one there is
}

TEST_F(WindowManagerTest, asksForTheSizeAgainWhereThereIsRoom) {
    control.windows[2].longestWidth = 250;
    EXPECT_TRUE(manager.apply(WindowVerb::max, window(2)));
    EXPECT_EQ(frame(2), rightScreen.workArea);
}

TEST_F(WindowManagerTest, aWindowThatEndsUnderItsHandsWasNotMoved) {
    control.windows[2].endsWhenMoved = true;
    EXPECT_FALSE(manager.apply(WindowVerb::max, window(2)));
    EXPECT_THAT(services.log(), HasSubstr("window: max was not seen to reach Browser\n"));
}

TEST_F(WindowManagerTest, aMaximisedWindowHasTheSizeItComesBackTo) {
    control.windows[1] = {.frame = leftScreen.workArea,
                          .restored = Rectangle{.x = 1, .y = 1, .width = 200, .height = 100}};
    EXPECT_TRUE(manager.apply(WindowVerb::center, window(1)));
    EXPECT_EQ(frame(1), (Rectangle{300, 400, 200, 100}));
}

TEST_F(WindowManagerTest, staysWithTheApplicationAsLongAsItRuns) {
    open({.id = 3, .className = "editor"}, {.width = 100, .height = 100});
    open({.id = 4, .className = "editor"}, {.width = 100, .height = 100});
    open({.id = 5, .className = "editor", .hidden = true}, {.width = 100, .height = 100});
    open({.id = 6, .className = "editor", .ordinary = false}, {.width = 100, .height = 100});
    list.programs = {11};
    const auto gone = close(1);

    for (const auto id : {4, 3, 5}) { // the newest that can be seen, then one in the task bar
        SCOPED_TRACE(id);
        EXPECT_TRUE(manager.apply(WindowVerb::top, gone));
        EXPECT_EQ(frame(static_cast<std::uint64_t>(id)), (Rectangle{0, 0, 800, 450}));
        close(static_cast<std::uint64_t>(id));
    }
    const auto browser = frame(2);
    EXPECT_FALSE(manager.apply(WindowVerb::top, gone)); // there is a window, but a panel or such
    close(6);
    EXPECT_FALSE(manager.apply(WindowVerb::top, gone)); // there is none, and the program runs
    EXPECT_EQ(frame(2), browser);
    EXPECT_THAT(services.log(), HasSubstr("window: Editor reported no window\n"));
    list.programs.clear();
    EXPECT_TRUE(manager.apply(WindowVerb::top, gone)); // it has ended: the one in front
    EXPECT_EQ(frame(2), (Rectangle{800, 20, 400, 290}));
    EXPECT_TRUE(manager.apply(WindowVerb::max, std::nullopt));
    EXPECT_EQ(frame(2), rightScreen.workArea);
}

TEST_F(WindowManagerTest, knowsTheApplicationByItsProcessWhereItIsNotInstalled) {
    open({.id = 3, .className = "unknown", .processID = 13}, {.width = 100, .height = 100});
    open({.id = 4, .className = "other", .processID = 13}, {.width = 100, .height = 100});
    open({.id = 5, .className = "browser", .processID = 11}, {.width = 100, .height = 100});
    const Rectangle half{.width = 800, .height = 450};
    EXPECT_TRUE(manager.apply(WindowVerb::top, close(3)));
    EXPECT_EQ(frame(4), half);

    const auto editor = close(1);
    EXPECT_TRUE(manager.apply(WindowVerb::top, editor)); // the one in front, and not 5
    EXPECT_NE(frame(5), half) << "two applications may be one process";

    list.open.push_back({.id = 1, .className = "browser", .processID = 99});
    control.windows[1] = {.frame = {.width = 50, .height = 50}};
    EXPECT_TRUE(manager.apply(WindowVerb::top, editor));
    EXPECT_NE(frame(1), half) << "its number is another program's now";
}

TEST_F(WindowManagerTest, takesAWindowLikeOthersForOneThatCannotBeMoved) {
    open({.id = 3, .className = "editor", .ordinary = false}, leftScreen.frame);
    EXPECT_TRUE(manager.apply(WindowVerb::top, window(3)));
    EXPECT_EQ(frame(1), (Rectangle{0, 0, 800, 450}));
}

TEST_F(WindowManagerTest, neverMovesThePanel) {
    open({.id = 3, .className = "editor", .processID = 11, .own = true}, {.width = 9, .height = 9});
    list.activeID = 3;
    EXPECT_FALSE(manager.apply(WindowVerb::max, std::nullopt));
    EXPECT_THAT(services.log(), HasSubstr("window: no target app\n"));
    EXPECT_FALSE(manager.apply(WindowVerb::max, close(1)));
    EXPECT_EQ(frame(3), (Rectangle{0, 0, 9, 9}));
}

TEST_F(WindowManagerTest, isUnableWhereTheFrontWindowMayBeOneThatIsNotTold) {
    EXPECT_EQ(manager.ability(std::nullopt), Ability{});
    list.untold = "some are not read";
    const auto unable = Ability::missing("the front window isn't told: some are not read");
    EXPECT_EQ(manager.ability(std::nullopt), unable);
    EXPECT_EQ(manager.ability(window(1)), Ability{});
    EXPECT_FALSE(manager.apply(WindowVerb::max, std::nullopt));
    EXPECT_THAT(services.log(), HasSubstr("window: max needs Accessibility\n"));
    EXPECT_TRUE(manager.apply(WindowVerb::max, window(1)));
}

TEST_F(WindowManagerTest, movesNothingAndSaysWhy) {
    const auto before = frame(1);
    open({.id = 7, .className = "desk", .ordinary = false}, leftScreen.frame);
    EXPECT_FALSE(manager.apply(WindowVerb::left, window(7)));
    EXPECT_THAT(services.log(), HasSubstr("window: desk reported no window\n"));
    EXPECT_EQ(frame(7), leftScreen.frame);

    control.monitors.clear();
    EXPECT_FALSE(manager.apply(WindowVerb::left, window(2)));
    EXPECT_THAT(services.log(), HasSubstr("window: left found no screen\n"));

    control.windows.erase(2); // it goes while it is asked
    EXPECT_FALSE(manager.apply(WindowVerb::left, window(2)));
    EXPECT_THAT(services.log(), HasSubstr("window: Browser reported no window\n"));

    const auto gone = close(2);
    list.activeID = 0;
    EXPECT_FALSE(manager.apply(WindowVerb::left, gone));
    EXPECT_THAT(services.log(), HasSubstr("window: no target app\n"));

    control.supported = Ability::missing("no window manager");
    EXPECT_FALSE(manager.apply(WindowVerb::left, window(1)));
    EXPECT_THAT(services.log(), HasSubstr("window: left needs Accessibility\n"));
    EXPECT_EQ(frame(1), before);
}

class QuitTest : public WindowManagerTest {
protected:
    QuitTest() {
        services.install("com.corvane.tessarine", "Tessarine");
        services.install("zed", "Zed");
        services.install("org.x.Zed", "Zed");
        services.install("org.x.Sheet", "Sheet");
        services.install("shell", "Desktop", "NoDisplay=true\n");
        services.catalog.rescan();
        services.platform.time.settle();
        list.open.push_back({.id = 8, .className = "com.corvane.tessarine"});
        list.open.push_back({.id = 9, .className = "stranger"});
        list.open.push_back({.id = 11, .className = "shell"});
        list.open.push_back({.id = 12, .className = "sheet"}); // or any program's of that name
        open({.id = 10, .className = "editor", .hidden = true}, {});
    }

    std::vector<std::string> names(std::string_view query) {
        std::vector<std::string> result;
        for (const auto& app : manager.runningApps(query))
            result.push_back(app.name);
        return result;
    }
};

TEST_F(QuitTest, findsWhatRunsByAnyPartOfItsName) {
    EXPECT_THAT(names(""), ElementsAre("Browser", "Editor")); // not this program itself
    EXPECT_THAT(names("DIT"), ElementsAre("Editor"));
    EXPECT_THAT(names("zed"), IsEmpty()); // installed, and not running
    EXPECT_EQ(manager.runningApps("", Certainty::likely).size(), 3u);
    for (const auto* id : {"zed", "org.x.Zed"})
        list.open.push_back({.id = 20, .className = id});
    EXPECT_THAT(manager.runningApps("z"),
                ElementsAre(QuittableApp{"Zed", "org.x.Zed"}, QuittableApp{"Zed", "zed"}));
}

TEST_F(QuitTest, tellsWhatElseAProcessHas) {
    list.open.push_back({.id = 20, .className = "org.x.Sheet", .processID = 11});
    list.open.push_back({.id = 21, .className = "shell", .processID = 11});
    EXPECT_THAT(manager.runningApps("editor").front().alsoEnds, ElementsAre("Desktop", "Sheet"));
    EXPECT_THAT(manager.runningApps("sheet").front().alsoEnds, ElementsAre("Editor", "Desktop"));
    EXPECT_THAT(manager.runningApps("browser").front().alsoEnds, IsEmpty());
}

TEST_F(QuitTest, asksTheDesktopOnceASecondForKeystrokes) {
    const auto asked = list.listings;
    EXPECT_EQ(manager.offer().apps, manager.runningApps(""));
    const auto once = list.listings;
    manager.offer();
    EXPECT_GT(once, asked);
    EXPECT_EQ(list.listings, once);
    services.platform.time.advance(AppCatalog::runningLifetime);
    close(1);
    close(10);
    EXPECT_EQ(manager.offer().apps.size(), 1u);
    close(2);
    manager.quit({.name = "Browser", .bundleID = "browser"}, WindowManager::Force::no);
    EXPECT_THAT(manager.offer().apps, IsEmpty()) << "what was quit is not offered again";
    control.killable = Ability::missing("no processes");
    services.platform.time.advance(AppCatalog::runningLifetime);
    EXPECT_EQ(manager.offer().killing, control.killable);
}

TEST_F(QuitTest, endsNoWindowThatOnlyLooksLikeTheApplications) {
    const QuittableApp sheet{"Sheet", "org.x.Sheet"};
    control.windows[12] = {};
    manager.quit(sheet, WindowManager::Force::yes, Certainty::likely);
    manager.quit(sheet, WindowManager::Force::no);
    EXPECT_THAT(control.killed, IsEmpty());
    EXPECT_THAT(control.closed, IsEmpty());
    manager.quit(sheet, WindowManager::Force::no, Certainty::likely);
    EXPECT_THAT(control.closed, ElementsAre(12));
}

TEST_F(QuitTest, asksEveryWindowOrEndsTheProgram) {
    const auto editor = manager.runningApps("editor").front();
    manager.quit(editor, WindowManager::Force::no);
    EXPECT_THAT(control.closed, ElementsAre(1, 10));
    EXPECT_THAT(control.killed, IsEmpty());
    manager.quit(editor, WindowManager::Force::yes);
    EXPECT_THAT(control.killed, ElementsAre(1, 10));
    const auto log = services.log();
    EXPECT_THAT(log, HasSubstr("window: quit Editor\n"));
    EXPECT_THAT(log, HasSubstr("window: force-quit Editor\n"));
    manager.quit({.bundleID = "zed"}, WindowManager::Force::no);
    EXPECT_THAT(services.log(), HasSubstr("window: quit app\n"));
}

TEST_F(QuitTest, sparesAWindowThatHasGotTheNumberOfOneThatIsGone) {
    const auto editor = manager.runningApps("editor").front();
    for (auto& each : list.open) {
        if (each.className == "editor")
            each.className = "browser";
    }
    manager.quit(editor, WindowManager::Force::yes);
    manager.quit(editor, WindowManager::Force::no);
    EXPECT_THAT(control.killed, IsEmpty());
    EXPECT_THAT(control.closed, IsEmpty());
}

TEST_F(QuitTest, saysWhatCannotBeEnded) {
    control.windows.at(2).canBeKilled = false;
    manager.quit({.name = "Browser", .bundleID = "browser"}, WindowManager::Force::yes);
    EXPECT_THAT(services.log(), HasSubstr("window: Browser can't be ended\n"));
}

} // namespace
} // namespace tessarine
