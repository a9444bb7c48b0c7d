#include "launcherapp/platform/linux/wayland/windows/WaylandWindowDoors.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"
#include "tests/fakes/RectanglePrinting.h"
#include "tests/linux/EventLoop.h"
#include "tests/wayland/windows/ipc/FakeHyprland.h"

#include <gmock/gmock.h>

#include <QByteArray>
#include <atomic>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// In the shapes that Hyprland's wiki and source tell of; none was recorded.
constexpr auto monitors = R"([
{"id": 0, "name": "DP-1", "width": 3840, "height": 2160, "x": 0, "y": 0, "scale": 2.00,
 "transform": 0, "reserved": [0, 30, 0, 0], "focused": true,
 "activeWorkspace": {"id": 1, "name": "1"}, "specialWorkspace": {"id": 0, "name": ""}},
{"id": 1, "name": "DP-2", "width": 1280, "height": 1024, "x": 1920, "y": 0, "scale": 1.00,
 "transform": 1, "reserved": [0, 0, 0, 24], "focused": false,
 "activeWorkspace": {"id": 2, "name": "2"}, "specialWorkspace": {"id": 0, "name": ""}}])";
constexpr auto clients = R"([
{"address": "0x55d0c8a4b2c0", "mapped": true, "at": [10, 40], "size": [940, 1030],
 "workspace": {"id": 1, "name": "1"}, "floating": false, "class": "foot", "pid": 1,
 "xwayland": false, "fullscreen": 0, "focusHistoryID": 0},
{"address": "0x1f", "mapped": true, "at": [960, 40], "size": [500, 400],
 "workspace": {"id": -1337, "name": "mail"}, "floating": true, "class": "org.example.Mail",
 "pid": 0, "xwayland": false, "fullscreen": true, "focusHistoryID": 1},
{"address": "0x20", "mapped": true, "at": [0, 0], "size": [500, 400],
 "workspace": {"id": -99, "name": "special"}, "floating": true, "class": "Away",
 "pid": 0, "xwayland": true, "fullscreen": false, "focusHistoryID": 2},
{"address": "nonsense"}, 7])";
constexpr std::uint64_t first = 0x55d0c8a4b2c0;

class HyprlandTest : public testing::Test {
protected:
    void SetUp() override {
        folder.folder("/hypr");
        folder.folder("/hypr/instance");
        qunsetenv("SWAYSOCK");
        qputenv("HYPRLAND_INSTANCE_SIGNATURE", "instance");
        qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(folder.path()));
        start();
        auto made = waylandWindowDoors("");
        ASSERT_TRUE(made);
        doors = *std::move(made);
    }

    void TearDown() override {
        qputenv("SWAYSOCK", socket);
        qunsetenv("HYPRLAND_INSTANCE_SIGNATURE");
        qputenv("XDG_RUNTIME_DIR", runtime);
    }

    void start() {
        hyprland = std::make_unique<FakeHyprland>(
            folder.path("/hypr/instance"), [this](const std::string& request) {
                return isSilent ? std::nullopt : std::optional(answer(request));
            });
    }

    std::string answer(const std::string& request) const {
        if (isDropping || isRubbish)
            return isDropping ? "" : "[";
        if (request == "j/clients")
            return isEmpty ? "[]" : clients;
        if (request == "j/monitors")
            return monitors;
        return isOld && request == "dispatch fullscreenstate 0 0" ? "Invalid dispatcher" : "ok";
    }

    /// What it was ordered, questions left out.
    std::vector<std::string> orders() {
        auto all = hyprland->asked();
        std::erase_if(all, [](const std::string& each) { return each.starts_with("j/"); });
        return all;
    }

    const QByteArray socket = qgetenv("SWAYSOCK");
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    ScratchFolder folder;
    std::atomic<bool> isSilent = false;
    std::atomic<bool> isEmpty = false;
    std::atomic<bool> isDropping = false;
    std::atomic<bool> isRubbish = false;
    std::atomic<bool> isOld = false;
    std::unique_ptr<FakeHyprland> hyprland;
    WindowDoors doors;
};

TEST_F(HyprlandTest, windowsAndMonitorsAreToldAsTheyAre) {
    ASSERT_EQ(doors.list->ability(), Ability{});
    const auto windows = doors.list->windows();
    ASSERT_THAT(windows, SizeIs(3));
    EXPECT_EQ(windows[0].id, first);
    EXPECT_EQ(windows[0].applicationID, "foot");
    EXPECT_FALSE(windows[1].hidden); // a workspace with a name instead of a number
    EXPECT_TRUE(windows[2].hidden);  // one that is put away
    EXPECT_EQ(doors.list->active(), windows[0]);
    EXPECT_EQ(doors.control->frame(first), (Rectangle{10, 40, 940, 1030}));
    const auto screens = doors.control->screens();
    ASSERT_THAT(screens, SizeIs(2));
    EXPECT_EQ(screens[0].frame, (Rectangle{0, 0, 1920, 1080}));
    EXPECT_EQ(screens[0].workArea, (Rectangle{0, 30, 1920, 1050}));
    EXPECT_EQ(screens[1].frame, (Rectangle{1920, 0, 1024, 1280})); // on its side
    EXPECT_EQ(screens[1].workArea, (Rectangle{1920, 0, 1024, 1256}));
    EXPECT_FALSE(doors.control->kill(first)); // the system's first process
}

TEST_F(HyprlandTest, ordersNameTheWindow) {
    doors.list->activate(first);
    doors.list->unhide(first); // is there
    doors.list->unhide(0x20);
    doors.control->restore(first);
    doors.control->resize(first, 960, 1050);
    doors.control->move(first, {.x = 0, .y = 30});
    doors.control->close(first);
    EXPECT_THAT(orders(),
                ElementsAre("dispatch focuswindow address:0x55d0c8a4b2c0",
                            "dispatch focuswindow address:0x20",
                            "dispatch setfloating address:0x55d0c8a4b2c0",
                            "[[BATCH]]dispatch resizewindowpixel exact 960 1050,"
                            "address:0x55d0c8a4b2c0;dispatch movewindowpixel exact 10 40,"
                            "address:0x55d0c8a4b2c0",
                            "[[BATCH]]dispatch resizewindowpixel exact 960 1050,"
                            "address:0x55d0c8a4b2c0;dispatch movewindowpixel exact 0 30,"
                            "address:0x55d0c8a4b2c0",
                            "dispatch closewindow address:0x55d0c8a4b2c0"));
}

TEST_F(HyprlandTest, anOldVersionLeavesFullScreenItsOwnWay) {
    isOld = true;
    doors.control->restore(0x1f);
    EXPECT_THAT(orders(),
                ElementsAre("dispatch focuswindow address:0x1f",
                            "dispatch fullscreenstate 0 0",
                            "dispatch fullscreen 0"));
}

TEST_F(HyprlandTest, changesAreTold) {
    ASSERT_THAT(doors.list->windows(), SizeIs(3));
    spinFor(50);
    int changes = 0;
    const auto subscription = doors.list->onActiveChanged([&] { ++changes; });
    hyprland->tell("windowtitle>>55d0c8a4b2c0\n");
    const auto before = hyprland->asked().size();
    spinFor(50);
    EXPECT_EQ(hyprland->asked().size(), before); // a title concerns nobody
    isEmpty = true;
    hyprland->tell("closewin");
    hyprland->tell("dow>>55d0c8a4b2c0\nactivewindowv2>>\n");
    EXPECT_TRUE(spinUntil([&] { return changes == 1; }));
    EXPECT_THAT(doors.list->windows(), IsEmpty());
    EXPECT_FALSE(doors.list->active());
}

TEST_F(HyprlandTest, silenceAndTheEndAreToldInWords) {
    ASSERT_THAT(doors.list->windows(), SizeIs(3));
    isSilent = true;
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(doors.control->frame(first), std::nullopt);
    doors.control->restore(first);
    EXPECT_THAT(doors.control->screens(), IsEmpty());
    EXPECT_LT(clock.elapsed(), 3 * CompositorIpc::patience.count()); // as three would take
    EXPECT_THAT(doors.control->ability().reason, HasSubstr("doesn't answer"));
    EXPECT_THAT(doors.list->windows(), SizeIs(3));
    hyprland.reset();
    EXPECT_THAT(doors.control->ability().reason, HasSubstr("lost"));
    EXPECT_THAT(doors.list->ability().reason, HasSubstr("lost"));
    EXPECT_THAT(doors.list->windows(), IsEmpty());
    EXPECT_FALSE(doors.list->active());
    doors.list->activate(first);
    spinFor(50);
}

TEST_F(HyprlandTest, windowsThatWereNotToldAreAskedForAgain) {
    ASSERT_THAT(doors.list->windows(), SizeIs(3));
    spinFor(50);
    isEmpty = true;
    isDropping = true;
    const auto before = hyprland->asked().size();
    hyprland->tell("closewindow>>55d0c8a4b2c0\n");
    ASSERT_TRUE(spinUntil([&] { return hyprland->asked().size() == before + 2; }));
    isDropping = false;
    EXPECT_TRUE(spinUntil([&] { return doors.list->windows().empty(); }));
    EXPECT_EQ(doors.list->ability(), Ability{});

    isRubbish = true;
    hyprland->tell("openwindow>>1\n");
    EXPECT_TRUE(spinUntil([&] { return !doors.list->ability().available; }));
    EXPECT_THAT(doors.list->ability().reason, HasSubstr("can't be read"));
    isRubbish = false;
    hyprland->tell("openwindow>>1\n");
    EXPECT_TRUE(spinUntil([&] { return doors.list->ability().available; }));
}

TEST_F(HyprlandTest, aLostConnectionIsMadeAgain) {
    ASSERT_THAT(doors.list->windows(), SizeIs(3));
    int changes = 0;
    const auto subscription = doors.list->onActiveChanged([&] { ++changes; });
    spinFor(50);
    changes = 0;
    hyprland.reset();
    EXPECT_TRUE(spinUntil([&] { return changes == 1; })) << "nobody has asked";
    EXPECT_THAT(doors.list->windows(), IsEmpty());
    start();
    EXPECT_TRUE(spinUntil([&] { return changes == 2; })) << "nobody has asked";
    EXPECT_THAT(doors.list->windows(), SizeIs(3));
    EXPECT_EQ(doors.list->ability(), Ability{});
    doors.list->activate(first);
    EXPECT_TRUE(spinUntil([&] { return doors.control->ability() == Ability{}; }));
    doors.control->close(first);
    EXPECT_THAT(orders(),
                ElementsAre("dispatch focuswindow address:0x55d0c8a4b2c0",
                            "dispatch closewindow address:0x55d0c8a4b2c0"));
}

} // namespace
} // namespace tessarine
