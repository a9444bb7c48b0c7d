#include "launcherapp/platform/linux/wayland/CompositorVariables.h"
#include "launcherapp/platform/linux/wayland/windows/WaylandWindowDoors.h"
#include "tests/wayland/CompositorOfItsOwn.h"
#include "tests/wayland/TestKeyboard.h"
#include "tests/wayland/windows/ShownWindows.h"
#include "tests/wayland/windows/StandInPanel.h"

#include <gmock/gmock.h>

#include <QByteArray>
#include <algorithm>
#include <csignal>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// The way that the doors go: sway's own, or that of compositors without one.
enum class Way { ipc, taskBar };

class WindowDoorsTest : public testing::TestWithParam<Way> {
protected:
    void SetUp() override {
        connect();
        qputenv("SWAYSOCK", socket);
        ASSERT_TRUE(spinUntil([&] { return doors.list->windows().empty(); }));
    }

    void TearDown() override { qputenv("SWAYSOCK", socket); }

    void connect() {
        if (GetParam() == Way::taskBar)
            qunsetenv("SWAYSOCK");
        auto made = waylandWindowDoors("org.example.own");
        ASSERT_TRUE(made);
        doors = *std::move(made);
    }

    std::vector<std::string> names() {
        std::vector<std::string> names;
        for (const auto& window : doors.list->windows())
            names.push_back(window.applicationID);
        return names;
    }

    AppWindow open(const std::string& applicationID) {
        shown.terminal(applicationID);
        EXPECT_TRUE(spinUntil([&] { return std::ranges::count(names(), applicationID) > 0; }));
        const auto windows = doors.list->windows();
        const auto found = std::ranges::find(windows, applicationID, &AppWindow::applicationID);
        return found == windows.end() ? AppWindow() : *found;
    }

    bool isActive(const AppWindow& window) {
        return spinUntil([&] {
            const auto active = doors.list->active();
            return active && active->id == window.id;
        });
    }

    const QByteArray socket = qgetenv("SWAYSOCK");
    TestKeyboard keyboard;
    ShownWindows shown;
    WindowDoors doors;
};

INSTANTIATE_TEST_SUITE_P(EachWay,
                         WindowDoorsTest,
                         testing::Values(Way::ipc, Way::taskBar),
                         [](const auto& way) { return way.param == Way::ipc ? "ipc" : "taskBar"; });

TEST_P(WindowDoorsTest, windowsComeForwardAndClose) {
    ASSERT_EQ(doors.list->ability(), Ability{});
    const auto first = open("org.example.first");
    const auto second = open("org.example.second");
    EXPECT_THAT(names(), ElementsAre("org.example.first", "org.example.second"));
    EXPECT_EQ(first.className, "org.example.first");
    ASSERT_TRUE(isActive(second));
    spinFor(50);
    int changes = 0;
    const auto subscription = doors.list->onActiveChanged([&] { ++changes; });
    int listChanges = 0;
    const auto listing = doors.list->onListChanged([&] { ++listChanges; });
    doors.list->activate(first.id);
    EXPECT_TRUE(isActive(first));
    EXPECT_TRUE(spinUntil([&] { return changes == 1; }));
    EXPECT_THAT(names(), ElementsAre("org.example.first", "org.example.second"));
    EXPECT_EQ(listChanges, 0); // none came or went
    doors.control->close(first.id);
    EXPECT_TRUE(spinUntil([&] { return listChanges == 1 && names().size() == 1; }));
    EXPECT_TRUE(isActive(second));
    doors.control->close(first.id);
    doors.list->activate(first.id);
    doors.list->unhide(first.id);
    EXPECT_EQ(doors.list->ability(), Ability{});
}

TEST_P(WindowDoorsTest, aPanelThatTakesTheKeyboardLeavesTheWindowActive) {
    open("org.example.first");
    const auto second = open("org.example.second");
    ASSERT_TRUE(isActive(second));
    spinFor(50);
    int changes = 0;
    const auto subscription = doors.list->onActiveChanged([&] { ++changes; });
    {
        constexpr auto focused = R"("focused": true)";
        EXPECT_THAT(swayTree(), HasSubstr(focused));
        const StandInPanel panel;
        ASSERT_TRUE(spinUntil([&] { return swayTree().find(focused) == std::string::npos; }));
        EXPECT_EQ(doors.list->active(), second);
        // A list that is made while it is up can't know with one of the ways.
        if (GetParam() == Way::ipc) {
            EXPECT_EQ(waylandWindowDoors("")->list->active(), second);
        }
    }
    spinFor(50);
    EXPECT_EQ(doors.list->active(), second);
    EXPECT_EQ(changes, 0);
    doors.control->close(second.id);
    EXPECT_TRUE(spinUntil([&] { return doors.list->active() != second; }));
}

TEST_P(WindowDoorsTest, whatCantBeDoneIsToldInWords) {
    const auto window = open("org.example.own");
    if (GetParam() == Way::ipc) {
        EXPECT_EQ(doors.control->ability(), Ability{});
        EXPECT_EQ(doors.control->killing(), Ability{});
        EXPECT_FALSE(window.own); // another process that calls itself so
    } else {
        EXPECT_THAT(doors.control->ability().reason, HasSubstr("lets no program move windows"));
        EXPECT_TRUE(window.own);
        EXPECT_THAT(doors.control->killing().reason, HasSubstr("doesn't tell whose process"));
        EXPECT_FALSE(doors.control->kill(window.id));
    }
}

TEST_P(WindowDoorsTest, aCompositorThatStandsStillStopsNobody) {
    const auto window = open("org.example.first");
    ASSERT_TRUE(isActive(window));
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(doors.list->active(), window);
    doors.list->activate(window.id);
    doors.control->close(window.id);
    EXPECT_EQ(doors.list->windows().size(), 1U);
    const auto took = clock.elapsed();
    ::kill(process, SIGCONT);
    EXPECT_LT(took, 500);
    EXPECT_TRUE(spinUntil([&] { return doors.list->windows().empty(); }));
}

TEST_P(WindowDoorsTest, aCompositorThatDiesTakesItsWindowsAlong) {
    const CompositorOfItsOwn dying;
    CompositorVariables::renew();
    connect();
    const auto window = open("org.example.first");
    dying.kill();
    EXPECT_TRUE(spinUntil([&] { return doors.list->windows().empty(); }));
    EXPECT_THAT(doors.list->ability().reason, HasSubstr("lost"));
    EXPECT_FALSE(doors.list->active());
    doors.list->activate(window.id);
    doors.list->unhide(window.id);
    doors.control->close(window.id);
    EXPECT_FALSE(doors.control->kill(window.id));
    // One that dies may take a last connection yet.
    EXPECT_TRUE(spinUntil([&] { return !doors.control->ability().available; }));
    spinFor(50);
    if (GetParam() == Way::taskBar)
        return;                  // Qt has the program start anew
    qputenv("SWAYSOCK", socket); // of one that is there
    EXPECT_TRUE(spinUntil([&] { return doors.list->ability() == Ability{}; }));
    EXPECT_TRUE(spinUntil([&] { return doors.control->ability() == Ability{}; }));
    EXPECT_FALSE(doors.control->screens().empty());
}

TEST(WindowDoors, withoutACompositorThereAreNone) {
    const auto display = qgetenv("WAYLAND_DISPLAY");
    const auto socket = qgetenv("SWAYSOCK");
    qputenv("WAYLAND_DISPLAY", "nobody-listens-here");
    qputenv("SWAYSOCK", "/nobody/listens/here");
    EXPECT_FALSE(waylandWindowDoors(""));
    qputenv("WAYLAND_DISPLAY", display);
    qputenv("SWAYSOCK", socket);
}

} // namespace
} // namespace tessarine
