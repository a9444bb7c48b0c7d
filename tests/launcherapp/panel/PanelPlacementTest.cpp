#include "launcherapp/panel/PanelPlacement.h"

#include "tests/fakes/RectanglePrinting.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

// Two monitors side by side, the right one smaller and lower, with a bar at its top.
const Screen left{.name = "left", .frame = {0, 0, 1920, 1080}, .workArea = {0, 0, 1920, 1040}};
const Screen right{.name = "right",
                   .frame = {1920, 200, 1280, 800},
                   .workArea = {1920, 230, 1280, 770},
                   .isMain = true};

TEST(PanelPlacement, comesUpWhereThePointerIs) {
    const std::vector<Screen> both{left, right};
    const std::vector<Screen> noMain{left, Screen{.name = "other", .frame = {1920, 0, 10, 10}}};
    const std::vector<Screen> none;
    using Pointer = std::optional<Point>;

    const struct {
        const std::vector<Screen>& screens;
        Pointer pointer;
        const char* name;
    } cases[] = {
        {both, Point{10, 10}, "left"},
        {both, Point{1919, 500}, "left"},   // the last pixel of the left one
        {both, Point{1920, 500}, "right"},  // the first of the right one
        {both, Point{2000, 210}, "right"},  // on its bar, outside the work area
        {both, Point{2000, 100}, "right"},  // above the right one, on no screen: the main one
        {both, std::nullopt, "right"},      // a desktop that doesn't tell
        {noMain, Point{-5, -5}, "left"},    // the first
        {none, Point{10, 10}, "(nothing)"}, // a display without monitors
    };

    for (const auto& [screens, pointer, name] : cases) {
        const auto found = PanelPlacement::screen(screens, pointer);
        EXPECT_EQ(found ? found->name : "(nothing)", name) << name;
    }
}

TEST(PanelPlacement, standsWhereItsPositionSays) {
    constexpr auto upper = PanelPosition::upper;
    constexpr auto center = PanelPosition::center;
    constexpr auto remembered = PanelPosition::remembered;
    const Rectangle area{1920, 230, 1280, 770};
    const Rectangle odd{0, 0, 1365, 767};
    const Rectangle narrow{0, 0, 800, 900};

    const struct {
        const char* reason;
        Rectangle area;
        PanelPosition position;
        double width;
        double height;
        std::vector<double> origin;
        Rectangle expected;
    } cases[] = {
        {"a fifth below the top", area, upper, 720, 97, {}, {2200, 384, 720, 97}},
        {"of any height", area, upper, 720, 500, {}, {2200, 384, 720, 500}},
        {"the middle, for a short panel", area, center, 600, 98, {}, {2260, 576, 600, 98}},
        {"sinking by a quarter", area, center, 600, 498, {}, {2260, 476, 600, 498}},
        {"whole pixels", odd, upper, 720, 97, {}, {323, 153, 720, 97}},
        {"no wider than the screen", narrow, upper, 860, 97, {}, {8, 180, 784, 97}},
        {"where it was left", area, remembered, 720, 97, {2000, 300}, {2000, 300, 720, 97}},
        {"left on a display now gone",
         area,
         remembered,
         720,
         97,
         {-4000, 9000},
         {1928, 895, 720, 97}},
        {"beyond the other edges", area, remembered, 720, 97, {9000, -9000}, {2472, 238, 720, 97}},
        {"taller than the screen", area, remembered, 720, 900, {2000, 300}, {2000, 238, 720, 900}},
        {"never left anywhere", area, remembered, 720, 97, {}, {2200, 384, 720, 97}},
        {"half a place", area, remembered, 720, 97, {2000}, {2200, 384, 720, 97}},
    };

    for (const auto& [reason, workArea, position, width, height, origin, expected] : cases)
        EXPECT_EQ(PanelPlacement::frame(workArea, position, width, height, origin), expected)
            << reason;
}

TEST(PanelPlacement, isAsTallAsItsRows) {
    const struct {
        const char* reason;
        PanelPlacement::Contents contents;
        double height;
    } cases[] = {
        {"the field alone", {0, 9, {.row = 48}}, 97},
        {"one row", {1, 9, {.row = 48}}, 158},
        {"as many as are shown", {60, 9, {.row = 48}}, 542},
        {"a larger text", {2, 9, {.row = 57.5}}, 225},
        {"a preview and its line", {1, 9, {.row = 48, .previewBelow = 200}}, 359},
        {"no row to preview", {0, 9, {.row = 48, .previewBelow = 200}}, 97},
        {"a setting of no rows", {5, 0, {.row = 48}}, 110},
        {"a head and its line", {1, 9, {.row = 48, .headAbove = 40}}, 199},
        {"a head over no rows", {0, 9, {.row = 48, .headAbove = 40}}, 138},
        {"a menu over no rows", {0, 9, {.row = 48, .overlay = 300}}, 397},
        {"a menu over a longer list", {9, 9, {.row = 48, .overlay = 300}}, 542},
    };

    for (const auto& [reason, contents, height] : cases)
        EXPECT_EQ(PanelPlacement::desiredHeight(contents), height) << reason;
}

TEST(PanelPlacement, aGrowingListStaysOnTheScreen) {
    const Rectangle area{0, 0, 1280, 800};
    const PanelPlacement::Contents nine{60, 9, {.row = 48}};
    const PanelPlacement::Contents menu{0, 9, {.row = 48, .overlay = 300}};
    using PanelPlacement::fittingHeight;
    EXPECT_EQ(fittingHeight(area, 160, nine), 542);
    EXPECT_EQ(fittingHeight(area, 250, nine), 542); // eight below it
    EXPECT_EQ(fittingHeight(area, 251, nine), 494); // a row less, and none cut in two
    EXPECT_EQ(fittingHeight(area, 400, nine), 350);
    EXPECT_EQ(fittingHeight(area, 780, nine), 97); // parked at the very bottom
    EXPECT_EQ(fittingHeight(area, 500, menu), 292);
    EXPECT_EQ(PanelPlacement::heightToKeepFree({0, 9, {.row = 48}}), 254);
    EXPECT_EQ(PanelPlacement::heightToKeepFree({0, 2, {.row = 48}}),
              206); // never more than is shown
    EXPECT_EQ(PanelPlacement::heightToKeepFree(nine), 542);
}

} // namespace
} // namespace tessarine
