#include "LauncherCore/commands/WindowVerb.h"
#include "tests/linux/desktop/X11WindowControlFixture.h"

#include <gmock/gmock.h>

#include <QProcess>
#include <array>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <thread>

namespace tessarine {
namespace {

using testing::SizeIs;

using Window = X11Neighbour::Window;

constexpr Rectangle leftMonitor{.width = 640, .height = 800};
constexpr Rectangle rightMonitor{.x = 640, .width = 640, .height = 800};
constexpr double dockHeight = 40; ///< below the right monitor

int xrandr(const QStringList& arguments) {
    return QProcess::execute(QStringLiteral("xrandr"), arguments);
}

/// Two monitors, a dock on the right one.
class X11TilingTest : public X11WindowControlFixture {
protected:
    void SetUp() override {
        X11WindowControlFixture::SetUp();
        ASSERT_EQ(xrandr({QStringLiteral("--setmonitor"),
                          QStringLiteral("L"),
                          QStringLiteral("640/169x800/211+0+0"),
                          QStringLiteral("screen")}),
                  0);
        ASSERT_EQ(xrandr({QStringLiteral("--setmonitor"),
                          QStringLiteral("R"),
                          QStringLiteral("640/169x800/211+640+0"),
                          QStringLiteral("none")}),
                  0);
        const auto dock =
            neighbour.open(640, 760, 640, 40, X11Neighbour::Kind::managed, [this](Window window) {
                neighbour.set(window,
                              "_NET_WM_WINDOW_TYPE",
                              {neighbour.display.atom("_NET_WM_WINDOW_TYPE_DOCK")},
                              XCB_ATOM_ATOM);
                neighbour.set(
                    window, "_NET_WM_STRUT_PARTIAL", {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 640, 1279});
            });
        opened.push_back(dock);
        ASSERT_TRUE(spinUntil([&] { return isManaged(dock); }));
    }

    void TearDown() override {
        xrandr({QStringLiteral("--delmonitor"), QStringLiteral("R")});
        xrandr({QStringLiteral("--delmonitor"), QStringLiteral("L")});
        X11WindowControlFixture::TearDown();
    }
};

TEST_F(X11TilingTest, everyMonitorHasAWorkAreaOfItsOwn) {
    ASSERT_EQ(control.ability(), Ability{});
    std::map<std::string, Screen> screens;
    for (auto& screen : control.screens())
        screens[screen.name] = screen;
    ASSERT_THAT(screens, SizeIs(2));
    EXPECT_EQ(screens["L"].frame, leftMonitor);
    EXPECT_EQ(screens["L"].workArea, leftMonitor);
    EXPECT_EQ(screens["R"].frame, rightMonitor);
    EXPECT_EQ(screens["R"].workArea, (Rectangle{640, 0, 640, 800 - dockHeight}));
    EXPECT_NE(screens["L"].isMain, screens["R"].isMain);
}

TEST_F(X11TilingTest, monitorsThatShowTheSameAreOne) {
    ASSERT_EQ(xrandr({QStringLiteral("--setmonitor"),
                      QStringLiteral("Mirror"),
                      QStringLiteral("640/169x800/211+0+0"),
                      QStringLiteral("none")}),
              0);
    EXPECT_THAT(control.screens(), SizeIs(2));
    xrandr({QStringLiteral("--delmonitor"), QStringLiteral("Mirror")});
}

TEST_F(X11TilingTest, whatIsSeenOfAWindowIsWhereItWasPut) {
    const std::array<double, 4> shadow{26, 26, 23, 29};

    const struct {
        const char* what;
        std::function<void(Window)> prepare;
        std::array<double, 4> shadow;
    } cases[] = {
        {"decorated", {}, {}},
        {"undecorated",
         [&](Window window) {
             neighbour.set(window,
                           "_MOTIF_WM_HINTS",
                           {2, 0, 0, 0, 0},
                           neighbour.display.atom("_MOTIF_WM_HINTS"));
         },
         {}},
        {"with a frame and shadow of its own",
         [&](Window window) {
             neighbour.set(window,
                           "_MOTIF_WM_HINTS",
                           {2, 0, 0, 0, 0},
                           neighbour.display.atom("_MOTIF_WM_HINTS"));
             neighbour.set(window, "_GTK_FRAME_EXTENTS", {26, 26, 23, 29});
         },
         shadow},
        {"with a shadow that can't be",
         [&](Window window) {
             neighbour.set(window, "_GTK_FRAME_EXTENTS", {0xffffffff, 0, 0xffffffff, 0});
         },
         {}},
    };

    for (const auto& [what, prepare, margins] : cases) {
        const auto window = open(prepare);
        for (const auto& screen : control.screens()) {
            for (const auto verb : allWindowVerbs) {
                SCOPED_TRACE(testing::Message()
                             << what << " " << WindowVerbs::name(verb) << " " << screen.name);
                const auto frame =
                    WindowVerbs::frame(verb, screen.workArea, control.frame(window).value());
                place(window, frame);
                EXPECT_TRUE(spinUntil([&, &m = margins] { return seen(window, m) == frame; }))
                    << testing::PrintToString(seen(window, margins)) << " instead of "
                    << testing::PrintToString(frame);
                // Its border and the window itself are moved one after the other.
                EXPECT_TRUE(spinUntil([&] { return control.frame(window) == frame; }));
            }
        }
    }
}

TEST_F(X11TilingTest, aSpecialWindowBecomesAnOrdinaryOne) {
    const auto window = open();
    const auto before = seen(window);

    const struct {
        const char* state;
        const char* second;
    } cases[] = {
        {"_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ"},
        {"_NET_WM_STATE_FULLSCREEN", ""}, // without a border, so it has another afterwards
        {"_NET_WM_STATE_SHADED", ""},
    };

    for (const auto& [state, second] : cases) {
        SCOPED_TRACE(state);
        setState(window, state, second);
        ASSERT_TRUE(spinUntil([&] { return seen(window) != before; }));
        control.restore(window);
        EXPECT_FALSE(hasState(window, state)); // with no more waiting
        EXPECT_EQ(control.frame(window), before);
        setState(window, state, second);
        const auto half = WindowVerbs::frame(WindowVerb::left, leftMonitor, before);
        place(window, half);
        EXPECT_TRUE(spinUntil([&] { return seen(window) == half; }))
            << testing::PrintToString(seen(window));
        place(window, before);
        ASSERT_TRUE(spinUntil([&] { return seen(window) == before; }));
    }
}

TEST_F(X11TilingTest, aMinimisedWindowIsBroughtBackToItsPlace) {
    const auto window = open();
    constexpr std::uint32_t iconic = 3; // ICCCM 4.1.4
    neighbour.ask(window, "WM_CHANGE_STATE", {iconic});
    ASSERT_TRUE(spinUntil([&] { return hasState(window, "_NET_WM_STATE_HIDDEN"); }));
    const auto half = WindowVerbs::frame(WindowVerb::left, leftMonitor, {});
    place(window, half);
    EXPECT_TRUE(spinUntil([&] { return !hasState(window, "_NET_WM_STATE_HIDDEN"); }));
    EXPECT_TRUE(spinUntil([&] { return seen(window) == half; }))
        << testing::PrintToString(seen(window));
}

TEST_F(X11TilingTest, aWindowThatGoesWhileItIsMovedIsNoError) {
    const auto window = open();
    setState(window, "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ");
    // Its program, as `restore` doesn't leave this thread before it is over.
    auto end = std::async(std::launch::async, [this, window] {
        X11Neighbour program;
        const auto state = program.display.atom("_NET_WM_STATE");
        while (!program.display.numbers({{window, state}}).front().empty())
            std::this_thread::yield();
        program.close(window);
    });
    place(window, leftMonitor);
    end.get();
    EXPECT_EQ(control.ability(), Ability{});
}

TEST_F(X11TilingTest, aShadowThatComesBackLateIsCountedIn) {
    const auto window = open([&](Window id) {
        neighbour.set(
            id, "_MOTIF_WM_HINTS", {2, 0, 0, 0, 0}, neighbour.display.atom("_MOTIF_WM_HINTS"));
    });
    const auto half = WindowVerbs::frame(WindowVerb::right, leftMonitor, {});
    for (int tries = 0; tries < 10; ++tries) {
        neighbour.set(window, "_GTK_FRAME_EXTENTS", {0, 0, 0, 0});
        setState(window, "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ");
        const auto begin = std::chrono::steady_clock::now();
        // It draws its shadow with the picture after the window manager has told it. In a thread,
        // as a program does it while `restore` waits in this one.
        auto drawn = std::async(std::launch::async, [window] {
            X11Neighbour program;
            const auto state = program.display.atom("_NET_WM_STATE");
            while (!program.display.numbers({{window, state}}).front().empty())
                std::this_thread::yield();
            std::this_thread::sleep_for(std::chrono::milliseconds(32));
            program.set(window, "_GTK_FRAME_EXTENTS", {10, 10, 10, 10});
            return std::chrono::steady_clock::now();
        });
        place(window, half);
        if (drawn.get() - begin > WindowControl::longestRestore / 2)
            continue; // the machine is too busy to be a program that is not slow
        EXPECT_TRUE(spinUntil([&] {
            return seen(window, {10, 10, 10, 10}) == half;
        })) << testing::PrintToString(seen(window, {10, 10, 10, 10}));
        return;
    }
    GTEST_SKIP() << "NOT MEASURED: the machine is too busy";
}

TEST_F(X11TilingTest, aTerminalTakesWholeCells) {
    const auto window = open([&](Window id) {
        std::vector<std::uint32_t> hints(18);
        constexpr std::uint32_t userPlace = 1, minimum = 16, increments = 64, base = 256;
        hints[0] = userPlace | minimum | increments | base;
        hints[5] = 24; // minimum
        hints[6] = 37;
        hints[9] = 10; // one cell
        hints[10] = 17;
        hints[15] = 4; // none
        hints[16] = 3;
        neighbour.set(id, "WM_NORMAL_HINTS", hints, XCB_ATOM_WM_SIZE_HINTS);
    });
    const auto half = WindowVerbs::frame(WindowVerb::right, leftMonitor, {});
    place(window, half);
    ASSERT_TRUE(spinUntil([&] { return seen(window).x == half.x; }));
    const auto found = seen(window);
    EXPECT_EQ(found.y, half.y);
    EXPECT_LE(found.width, half.width);
    EXPECT_GT(found.width, half.width - 10);
    EXPECT_LE(found.height, half.height);
    EXPECT_GT(found.height, half.height - 17);
}

} // namespace
} // namespace tessarine
