#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowControl.h"
#include "tests/linux/BareDisplay.h"
#include "tests/linux/desktop/X11WindowControlFixture.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <memory>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace tessarine {
namespace {

using testing::SizeIs;

using Window = X11Neighbour::Window;

using X11WindowControlTest = X11WindowControlFixture;

TEST_F(X11WindowControlTest, aWindowThatHasGoneIsNoError) {
    const auto window = open();
    setState(window, "_NET_WM_STATE_FULLSCREEN");
    opened.clear();
    neighbour.close(window);
    EXPECT_EQ(control.frame(window), std::nullopt);
    place(window, {.width = 640, .height = 800});
    control.close(window);
    EXPECT_FALSE(control.kill(window));
    EXPECT_EQ(control.ability(), Ability{});
    EXPECT_THAT(control.screens(), SizeIs(1));
}

/// A program of the test's own with two windows.
class Child {
public:
    explicit Child(const std::string& machine) {
        int ends[2];
        if (::pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        process = ::fork();
        if (process == 0) {
            X11Neighbour program;
            const auto open = [&] {
                return program.open(50, 50, 200, 100, X11Neighbour::Kind::managed, [&](Window id) {
                    xcb_change_property(program.xcb(),
                                        XCB_PROP_MODE_REPLACE,
                                        id,
                                        XCB_ATOM_WM_CLIENT_MACHINE,
                                        XCB_ATOM_STRING,
                                        8,
                                        static_cast<std::uint32_t>(machine.size()),
                                        machine.data());
                });
            };
            const std::array made{open(), open()};
            [[maybe_unused]] const auto written = ::write(ends[1], made.data(), sizeof made);
            while (program.display.answers())
                ::free(xcb_wait_for_event(program.xcb()));
            ::_exit(5); // it was disconnected
        }
        ::close(ends[1]);
        [[maybe_unused]] const auto got = ::read(ends[0], windows.data(), sizeof windows);
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

    std::array<Window, 2> windows{};
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
    ASSERT_TRUE(spinUntil([&] { return isManaged(local.windows[1]); }));
    EXPECT_TRUE(control.kill(local.windows[0]));
    ASSERT_TRUE(spinUntil([&] { return local.hasEnded(); }));
    ASSERT_TRUE(spinUntil([&] { return neighbour.managed().empty(); }));
    EXPECT_FALSE(control.kill(local.windows[1])) << "it went with the first";
    EXPECT_TRUE(WIFSIGNALED(*local.status) && WTERMSIG(*local.status) == SIGKILL);

    // The number of its process would be one of another machine: the display lets it go instead.
    Child distant("far-away.example");
    ASSERT_TRUE(spinUntil([&] { return isManaged(distant.windows[0]); }));
    EXPECT_TRUE(control.kill(distant.windows[0]));
    ASSERT_TRUE(spinUntil([&] { return distant.hasEnded(); }));
    EXPECT_TRUE(WIFEXITED(*distant.status) && WEXITSTATUS(*distant.status) == 5);

    const auto own = open();
    EXPECT_FALSE(control.kill(own));
    EXPECT_TRUE(neighbour.display.answers());
}

/// A compositor with one window of an X11 program, whose number there it doesn't tell.
class Numberless : public CompositorIpc {
public:
    explicit Numberless(std::int64_t process) : process_(process) {}

    Ability ability() override { return {}; }

    bool isConnected() const override { return true; }

    std::optional<WindowScene> scene() override {
        WindowScene scene;
        scene.windows.push_back({.window = {.id = 1, .processID = process_}, .isX11 = true});
        return scene;
    }

    void follow(std::function<void(WindowScene)>) override {}

    void takeWhatCame() override {}

    void activate(std::uint64_t) override {}

    void unhide(const WindowScene::Window&) override {}

    void makeOrdinary(const WindowScene::Window&, Clock::time_point) override {}

    void place(const WindowScene::Window&, const Rectangle&) override {}

    void close(std::uint64_t) override {}

private:
    std::int64_t process_;
};

TEST_F(X11WindowControlTest, aCompositorThatTellsNoNumberHasItsX11ProgramsEnded) {
    Child child(hostName());
    ASSERT_TRUE(spinUntil([&] { return isManaged(child.windows[1]); }));
    // Counted in a sandbox: no program of the display's, though perhaps of the system's.
    EXPECT_FALSE(IpcWindowControl(std::make_unique<Numberless>(child.process + 1)).kill(1));
    EXPECT_TRUE(IpcWindowControl(std::make_unique<Numberless>(child.process)).kill(1));
    EXPECT_TRUE(spinUntil([&] { return child.hasEnded(); }));
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

TEST(X11WindowControlOnABareDisplay, killsOnlyWhatTheWindowManagerTells) {
    BareDisplay display({QStringLiteral("-extension"), QStringLiteral("X-Resource")});
    ASSERT_TRUE(display.answers);
    X11WindowControl control;
    X11Neighbour manager;
    Child child(hostName());
    const auto window = child.windows[0];
    EXPECT_FALSE(control.kill(window));
    EXPECT_FALSE(control.kill(1)); // the X server's own
    manager.set(manager.root(), "_NET_CLIENT_LIST", {window}, XCB_ATOM_WINDOW);
    EXPECT_TRUE(control.kill(window)); // whose process isn't told, so the display lets it go
    ASSERT_TRUE(spinUntil([&] { return child.hasEnded(); }));
    EXPECT_TRUE(WIFEXITED(*child.status) && WEXITSTATUS(*child.status) == 5);
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
    EXPECT_EQ(control.ability(), Ability::missing("the X11 display can't be reached"));
    ::setenv("DISPLAY", display.c_str(), 1);
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
