#include "launcherapp/platform/linux/wayland/windows/kwin/KWinScene.h"

#include "tests/fakes/RectanglePrinting.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace tessarine {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

std::optional<WindowScene> read(const std::string& text) {
    return KWinScene::read(nlohmann::json::parse(text, nullptr, false));
}

TEST(KWinScene, whatIsNoSceneIsNothing) {
    for (const auto* text : {"",
                             "7",
                             "[]",
                             "{}",
                             R"({"windows": []})",
                             R"({"screens": []})",
                             R"({"windows": {}, "screens": []})"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(read(text));
    }
}

TEST(KWinScene, partsOfAnotherKindCountAsAbsent) {
    const auto told = read(R"({"active": "00000000000000ff", "screens": [7, {"name": "flat",
        "frame": {"x": 0, "y": 0, "width": 0, "height": 9}}, {"frame": "wide"}], "windows": [
        null, {}, {"window": 3}, {"window": "12"}, {"window": "000000000000000g"},
        {"window": "0000000000000000"}, {"window": "-00000000000000f"},
        {"window": "00000000000000fe", "process": -4, "frame": [1], "class": 7, "x11Window": -1},
        {"window": "00000000000000fe", "process": 9},
        {"window": "00000000000000fd", "process": 4294967295}]})");
    ASSERT_TRUE(told);
    EXPECT_THAT(told->screens, IsEmpty());
    ASSERT_THAT(told->windows, SizeIs(2)) << "one has a number that is taken";
    EXPECT_EQ(told->windows.back().window.processID, 0) << "as -1 it would be every process";
    EXPECT_EQ(told->windows.front(),
              (WindowScene::Window{.window = {.id = 0xfe, .ordinary = false}}));
    EXPECT_FALSE(told->active) << "there is no such window";
}

TEST(KWinScene, x11WindowsAndFractionsAreToldAsTheyAre) {
    const auto told = read(R"({"active": "9b05030a18cf4bef", "screens": [{"name": "DP-1",
        "isMain": true, "frame": {"x": 0, "y": 0, "width": 1706.5, "height": 960},
        "workArea": {"x": 0, "y": 0, "width": 1706.5, "height": 916}}], "windows": [
        {"window": "9b05030a18cf4bef", "process": 41, "application": "xterm", "class": "xterm",
         "instance": "old", "isOrdinary": true, "isHidden": true, "isTiled": true,
         "isFullScreen": true, "x11Window": 4194310,
         "frame": {"x": -10.5, "y": 50, "width": 300, "height": 200}}]})");
    ASSERT_TRUE(told);
    constexpr std::uint64_t id = 0x9b05030a18cf4bef;
    EXPECT_EQ(told->active, id);
    EXPECT_EQ(KWinScene::key(id), "9b05030a18cf4bef");
    ASSERT_THAT(told->screens, SizeIs(1));
    EXPECT_EQ(told->screens.front().workArea, (Rectangle{0, 0, 1706.5, 916}));
    EXPECT_EQ(*told->find(id),
              (WindowScene::Window{.window = {.id = id,
                                              .applicationID = "xterm",
                                              .className = "xterm",
                                              .instanceName = "old",
                                              .processID = 41,
                                              .hidden = true},
                                   .frame = {-10.5, 50, 300, 200},
                                   .isTiled = true,
                                   .isFullScreen = true,
                                   .isX11 = true,
                                   .x11Window = 4194310}));
}

} // namespace
} // namespace tessarine
