#include "LauncherCore/commands/WindowVerb.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowControl.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowList.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/SwayIpc.h"
#include "tests/fakes/RectanglePrinting.h"
#include "tests/wayland/TestKeyboard.h"
#include "tests/wayland/windows/ShownWindows.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

std::unique_ptr<CompositorIpc> compositor() {
    return std::make_unique<SwayIpc>(qEnvironmentVariable("SWAYSOCK").toStdString());
}

class SwayWindowsTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(spinUntil([&] { return list.windows().empty(); }));
    }

    std::optional<AppWindow> find(const std::string& applicationID) {
        const auto windows = list.windows();
        const auto found = std::ranges::find(windows, applicationID, &AppWindow::applicationID);
        return found == windows.end() ? std::nullopt : std::optional(*found);
    }

    std::uint64_t open(const std::string& applicationID) {
        shown.terminal(applicationID);
        return id(applicationID);
    }

    std::uint64_t id(const std::string& applicationID) {
        EXPECT_TRUE(spinUntil([&] { return find(applicationID).has_value(); })) << applicationID;
        const auto found = find(applicationID);
        return found ? found->id : 0;
    }

    bool isActive(std::uint64_t window) {
        return spinUntil([&] {
            const auto active = list.active();
            return window == 0 ? !active : active && active->id == window;
        });
    }

    std::vector<std::string> names() {
        std::vector<std::string> names;
        for (const auto& window : list.windows())
            names.push_back(window.applicationID);
        return names;
    }

    /// As the verbs do it.
    void place(std::uint64_t window, const Rectangle& frame) {
        control.resize(window, frame.width, frame.height);
        control.move(window, {.x = frame.x, .y = frame.y});
        control.resize(window, frame.width, frame.height);
    }

    TestKeyboard keyboard;
    IpcWindowList list{compositor()};
    IpcWindowControl control{compositor()};
    ShownWindows shown;
};

TEST_F(SwayWindowsTest, windowsAreToldOldestFirstWithTheirProcesses) {
    ASSERT_EQ(list.ability(), Ability{});
    const auto process = shown.terminal("org.example.first");
    const auto first = id("org.example.first");
    open("org.example.second");
    shown.gtk("org.example.third");
    id("org.example.third");
    EXPECT_THAT(names(),
                ElementsAre("org.example.first", "org.example.second", "org.example.third"));
    list.activate(first);
    ASSERT_TRUE(isActive(first));
    EXPECT_THAT(names(),
                ElementsAre("org.example.first", "org.example.second", "org.example.third"));
    // Somebody who comes later is told the same.
    EXPECT_EQ(IpcWindowList(compositor()).windows(), list.windows());

    const auto window = *find("org.example.first");
    EXPECT_EQ(window.processID, process);
    EXPECT_EQ(window.className, "org.example.first");
    EXPECT_TRUE(window.executable.ends_with("/foot")) << window.executable;
    EXPECT_TRUE(window.ordinary);
    EXPECT_FALSE(window.hidden);
    EXPECT_FALSE(window.own);
    EXPECT_TRUE(list.stillRuns(window));
    ::kill(static_cast<pid_t>(process), SIGKILL);
    EXPECT_TRUE(spinUntil([&] { return !find("org.example.first"); }));
    EXPECT_TRUE(spinUntil([&] { return !list.stillRuns(window); }));
}

TEST_F(SwayWindowsTest, anotherActiveWindowIsTold) {
    const auto first = open("org.example.first");
    const auto second = open("org.example.second");
    ASSERT_TRUE(isActive(second));
    spinFor(50);
    int changes = 0;
    const auto subscription = list.onActiveChanged([&] { ++changes; });
    list.activate(first);
    EXPECT_TRUE(isActive(first));
    EXPECT_TRUE(spinUntil([&] { return changes == 1; }));
    ASSERT_TRUE(sway("workspace elsewhere"));
    EXPECT_TRUE(isActive(0)); // there is none there
    EXPECT_TRUE(spinUntil([&] { return changes == 2; }));
    list.activate(second);
    EXPECT_TRUE(isActive(second));
    ASSERT_TRUE(sway("splitv")); // so that the window has a container of its own
    ASSERT_TRUE(isActive(second));
    ASSERT_TRUE(sway("focus parent"));
    // The keys go to no window, of which sway tells nobody who doesn't ask.
    EXPECT_EQ(IpcWindowList(compositor()).active(), std::nullopt);
}

TEST_F(SwayWindowsTest, aWindowThatWasPutAwayComesBack) {
    const auto window = open("org.example.first");
    ASSERT_TRUE(sway("move scratchpad"));
    ASSERT_TRUE(spinUntil([&] { return find("org.example.first")->hidden; }));
    EXPECT_TRUE(isActive(0));
    list.unhide(window);
    EXPECT_TRUE(spinUntil([&] { return !find("org.example.first")->hidden; }));
    list.unhide(window); // the same order would put a shown one away
    list.activate(window);
    EXPECT_TRUE(isActive(window));
    ASSERT_TRUE(sway("move scratchpad"));
    ASSERT_TRUE(spinUntil([&] { return find("org.example.first")->hidden; }));
    list.activate(window);
    EXPECT_TRUE(isActive(window));
    EXPECT_FALSE(find("org.example.first")->hidden);
}

TEST_F(SwayWindowsTest, aWindowIsWhereItWasPut) {
    open("org.example.terminal");
    shown.gtk("org.example.gtk");
    id("org.example.gtk");
    ASSERT_TRUE(sway("create_output"));
    ASSERT_TRUE(spinUntil([&] { return control.screens().size() == 2; }));
    ASSERT_TRUE(sway("[app_id=.*] border normal"));

    const struct {
        const char* before;
        const char* application;
    } cases[] = {
        {"nop", "org.example.terminal"}, // tiled
        {"fullscreen enable", "org.example.terminal"},
        {"floating enable", "org.example.terminal"},
        {"floating enable, border none", "org.example.terminal"},
        {"move scratchpad", "org.example.terminal"},
        {"nop", "org.example.gtk"},
        {"floating enable, border none", "org.example.gtk"},
    };

    for (const auto& [before, application] : cases) {
        const auto window = id(application);
        for (const auto& screen : control.screens()) {
            for (const auto verb : allWindowVerbs) {
                SCOPED_TRACE(testing::Message() << application << " after " << before << ": "
                                                << WindowVerbs::name(verb) << " " << screen.name);
                const auto criteria = "[con_id=" + std::to_string(window) + "] ";
                ASSERT_TRUE(sway(criteria + "floating disable"));
                ASSERT_TRUE(sway(criteria + before));
                control.restore(window);
                const auto now = control.frame(window);
                ASSERT_TRUE(now);
                const auto frame = WindowVerbs::frame(verb, screen.workArea, *now);
                place(window, frame);
                EXPECT_TRUE(spinUntil([&] { return control.frame(window) == frame; }))
                    << testing::PrintToString(*control.frame(window)) << " instead of "
                    << testing::PrintToString(frame);
            }
        }
    }
    for (const auto& screen : control.screens()) {
        if (screen.name != "HEADLESS-1") {
            EXPECT_TRUE(sway("output " + screen.name + " disable"));
        }
    }
}

TEST_F(SwayWindowsTest, aWindowIsClosedOrItsProgramEnded) {
    const auto closed = open("org.example.first");
    control.close(closed);
    EXPECT_TRUE(spinUntil([&] { return !find("org.example.first"); }));
    control.close(closed);
    list.activate(closed);
    list.unhide(closed);
    control.restore(closed);
    control.resize(closed, 10, 10);
    control.move(closed, {});
    EXPECT_EQ(control.frame(closed), std::nullopt);
    EXPECT_FALSE(control.kill(closed));

    const auto killed = open("org.example.second");
    EXPECT_TRUE(control.kill(killed));
    EXPECT_TRUE(spinUntil([&] { return !find("org.example.second"); }));
    EXPECT_EQ(control.ability(), Ability{});
}

TEST_F(SwayWindowsTest, aCompositorThatStandsStillCostsOneWait) {
    const auto window = open("org.example.first");
    ASSERT_TRUE(isActive(window));
    ASSERT_EQ(control.ability(), Ability{});
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    const auto begun = std::chrono::steady_clock::now();
    control.restore(window);
    EXPECT_EQ(control.frame(window), std::nullopt);
    EXPECT_TRUE(control.screens().empty());
    control.resize(window, 100, 100);
    control.close(window);
    EXPECT_FALSE(control.kill(window));
    EXPECT_EQ(control.ability(), Ability::missing("sway doesn't answer"));
    // The list goes on telling what it was told.
    EXPECT_EQ(list.active()->id, window);
    IpcWindowList(compositor()).windows();
    const auto took = std::chrono::steady_clock::now() - begun;
    ::kill(process, SIGCONT);
    EXPECT_GE(took, 2 * CompositorIpc::patience); // one of the control, one of the new list
    EXPECT_LT(took, 5 * CompositorIpc::patience); // seven would have waited each for itself
    EXPECT_TRUE(spinUntil([&] { return control.ability() == Ability{}; }));
    EXPECT_NE(control.frame(window), std::nullopt);
    EXPECT_TRUE(find("org.example.first")); // what was ordered meanwhile never was
}

} // namespace
} // namespace tessarine
