#include "launcherapp/platform/linux/desktop/X11WindowControl.h"

#include "LauncherCore/commands/WindowVerb.h"
#include "tests/linux/BareDisplay.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/panel/X11Neighbour.h"

#include <gmock/gmock.h>

#include <QProcess>
#include <array>
#include <chrono>
#include <csignal>
#include <future>
#include <map>
#include <ostream>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tessarine {

/// For failures.
inline void PrintTo(const Rectangle& rectangle, std::ostream* out) {
    *out << rectangle.x << "," << rectangle.y << " " << rectangle.width << "x" << rectangle.height;
}

namespace {

using testing::SizeIs;

using Window = X11Neighbour::Window;

constexpr Rectangle leftMonitor{.width = 640, .height = 800};
constexpr Rectangle rightMonitor{.x = 640, .width = 640, .height = 800};
constexpr double dockHeight = 40; ///< below the right monitor

int xrandr(const QStringList& arguments) {
    return QProcess::execute(QStringLiteral("xrandr"), arguments);
}

class X11WindowControlTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(spinUntil([&] { return neighbour.managed().empty(); }));
    }

    void TearDown() override {
        for (const auto window : opened)
            neighbour.close(window);
        ASSERT_TRUE(spinUntil([&] { return neighbour.managed().empty(); }));
    }

    Window open(const std::function<void(Window)>& prepare = {}) {
        const auto window =
            neighbour.open(700, 100, 300, 200, X11Neighbour::Kind::managed, prepare);
        opened.push_back(window);
        EXPECT_TRUE(spinUntil([&] { return isManaged(window); }));
        return window;
    }

    bool isManaged(Window window) {
        const auto managed = neighbour.managed();
        return std::ranges::count(managed, window) > 0 && topLevel(window) != window;
    }

    /// The window manager's window around one of a program, or that itself without any.
    Window topLevel(Window window) {
        for (;;) {
            const XcbOwned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
                neighbour.xcb(), xcb_query_tree(neighbour.xcb(), window), nullptr));
            if (!tree || tree->parent == neighbour.root())
                return window;
            window = tree->parent;
        }
    }

    /// What is to be seen of the window, told by the display instead of by hints.
    Rectangle seen(Window window, const std::array<double, 4>& shadow = {}) {
        const XcbOwned<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(
            neighbour.xcb(), xcb_get_geometry(neighbour.xcb(), topLevel(window)), nullptr));
        if (!size)
            return {};
        const auto [left, right, top, bottom] = shadow;
        return {.x = size->x + left,
                .y = size->y + top,
                .width = size->width + 2.0 * size->border_width - left - right,
                .height = size->height + 2.0 * size->border_width - top - bottom};
    }

    /// As the verbs do it.
    void place(Window window, const Rectangle& frame) {
        control.restore(window);
        control.resize(window, frame.width, frame.height);
        control.move(window, {.x = frame.x, .y = frame.y});
        control.resize(window, frame.width, frame.height);
    }

    bool hasState(Window window, const std::string& state) {
        const auto states =
            neighbour.display.numbers({{window, neighbour.display.atom("_NET_WM_STATE")}}).front();
        return std::ranges::count(states, neighbour.display.atom(state)) > 0;
    }

    void setState(Window window, const std::string& first, const std::string& second = "") {
        neighbour.ask(window,
                      "_NET_WM_STATE",
                      {1,
                       neighbour.display.atom(first),
                       second.empty() ? 0 : neighbour.display.atom(second),
                       2});
        ASSERT_TRUE(spinUntil([&] { return hasState(window, first); }));
    }

    X11Neighbour neighbour;
    std::vector<Window> opened;
    X11WindowControl control;
};

/// Two monitors, a dock on the right one.
class X11TilingTest : public X11WindowControlTest {
protected:
    void SetUp() override {
        X11WindowControlTest::SetUp();
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
        X11WindowControlTest::TearDown();
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
        // It draws its shadow with the picture after the window manager has told it.
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

TEST_F(X11WindowControlTest, aWindowThatHasGoneIsNoError) {
    const auto window = open();
    setState(window, "_NET_WM_STATE_FULLSCREEN");
    opened.clear();
    neighbour.close(window);
    EXPECT_EQ(control.frame(window), std::nullopt);
    place(window, leftMonitor);
    control.close(window);
    EXPECT_FALSE(control.kill(window));
    EXPECT_EQ(control.ability(), Ability{});
    EXPECT_THAT(control.screens(), SizeIs(1));
}

/// A program of the test's own with one window.
class Child {
public:
    explicit Child(const std::string& machine) {
        int ends[2];
        if (::pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        process = ::fork();
        if (process == 0) {
            X11Neighbour program;
            const auto made =
                program.open(50, 50, 200, 100, X11Neighbour::Kind::managed, [&](Window id) {
                    xcb_change_property(program.xcb(),
                                        XCB_PROP_MODE_REPLACE,
                                        id,
                                        XCB_ATOM_WM_CLIENT_MACHINE,
                                        XCB_ATOM_STRING,
                                        8,
                                        static_cast<std::uint32_t>(machine.size()),
                                        machine.data());
                });
            [[maybe_unused]] const auto written = ::write(ends[1], &made, sizeof made);
            while (program.display.answers())
                ::free(xcb_wait_for_event(program.xcb()));
            ::_exit(5); // it was disconnected
        }
        ::close(ends[1]);
        [[maybe_unused]] const auto got = ::read(ends[0], &window, sizeof window);
        ::close(ends[0]);
    }

    ~Child() {
        if (process > 0 && !status) {
            ::kill(process, SIGKILL);
            ::waitpid(process, nullptr, 0);
        }
    }

    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    bool hasEnded() {
        int found = 0;
        if (!status && ::waitpid(process, &found, WNOHANG) == process)
            status = found;
        return status.has_value();
    }

    Window window = 0;
    pid_t process = 0;
    std::optional<int> status;
};

std::string hostName() {
    std::array<char, 256> name{};
    ::gethostname(name.data(), name.size() - 1);
    return name.data();
}

TEST_F(X11WindowControlTest, killingEndsTheProgramAndNeverThisOne) {
    Child local(hostName());
    ASSERT_TRUE(spinUntil([&] { return isManaged(local.window); }));
    EXPECT_TRUE(control.kill(local.window));
    ASSERT_TRUE(spinUntil([&] { return local.hasEnded(); }));
    EXPECT_TRUE(WIFSIGNALED(*local.status) && WTERMSIG(*local.status) == SIGKILL);

    // The number of its process would be one of another machine: the display lets it go instead.
    Child distant("far-away.example");
    ASSERT_TRUE(spinUntil([&] { return isManaged(distant.window); }));
    EXPECT_TRUE(control.kill(distant.window));
    ASSERT_TRUE(spinUntil([&] { return distant.hasEnded(); }));
    EXPECT_TRUE(WIFEXITED(*distant.status) && WEXITSTATUS(*distant.status) == 5);

    const auto own = open();
    EXPECT_FALSE(control.kill(own));
    EXPECT_TRUE(neighbour.display.answers());
}

TEST_F(X11WindowControlTest, closingAsksTheProgram) {
    const auto protocols = neighbour.display.atom("WM_PROTOCOLS");
    const auto deletion = neighbour.display.atom("WM_DELETE_WINDOW");
    const auto window =
        open([&](Window id) { neighbour.set(id, "WM_PROTOCOLS", {deletion}, XCB_ATOM_ATOM); });
    bool asked = false;
    control.close(window);
    EXPECT_TRUE(spinUntil([&] {
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(neighbour.xcb())}) {
            const auto& message = reinterpret_cast<xcb_client_message_event_t&>(*event);
            asked = asked || ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE &&
                              message.window == window && message.type == protocols &&
                              message.data.data32[0] == deletion);
        }
        return asked;
    }));
    EXPECT_TRUE(isManaged(window)); // it may keep its window
}

TEST(X11WindowControlOnABareDisplay, isAbleAsLongAsAWindowManagerTakesMoves) {
    BareDisplay display;
    ASSERT_TRUE(display.answers);
    X11WindowControl control;
    X11Neighbour manager;
    const auto unmanaged = Ability::missing("no window manager takes requests to move windows");
    EXPECT_EQ(control.ability(), unmanaged);

    const auto begin = [&] {
        const auto window = manager.open(0, 0, 1, 1);
        manager.set(window, "_NET_SUPPORTING_WM_CHECK", {window}, XCB_ATOM_WINDOW);
        manager.set(manager.root(), "_NET_SUPPORTING_WM_CHECK", {window}, XCB_ATOM_WINDOW);
        return window;
    };
    const auto first = begin();
    EXPECT_EQ(control.ability(), unmanaged); // it says nothing of moves
    manager.set(manager.root(),
                "_NET_SUPPORTED",
                {manager.display.atom("_NET_MOVERESIZE_WINDOW")},
                XCB_ATOM_ATOM);
    EXPECT_EQ(control.ability(), Ability{});
    manager.close(first); // its end leaves the root's properties behind
    EXPECT_TRUE(spinUntil([&] { return control.ability() == unmanaged; }));
    begin();
    EXPECT_EQ(control.ability(), Ability{});

    display.stop();
    EXPECT_TRUE(spinUntil(
        [&] { return control.ability() == Ability::missing("the X11 display was lost"); }));
    EXPECT_THAT(control.screens(), SizeIs(0));
    control.restore(1);
    EXPECT_FALSE(control.kill(1));
}

TEST(X11WindowControlWithoutDisplay, saysWhy) {
    const std::string display = ::getenv("DISPLAY");
    ::setenv("DISPLAY", ":987", 1);
    X11WindowControl control;
    ::setenv("DISPLAY", display.c_str(), 1);
    EXPECT_EQ(control.ability(), Ability::missing("the X11 display can't be reached"));
    EXPECT_THAT(control.screens(), SizeIs(0));
    EXPECT_EQ(control.frame(1), std::nullopt);
    control.restore(1);
    control.resize(1, 10, 10);
    control.move(1, {});
    control.close(1);
    EXPECT_FALSE(control.kill(1));
}

} // namespace
} // namespace tessarine
