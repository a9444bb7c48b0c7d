#include "tests/desktop/panel/PanelDesktop.h"

namespace tessarine {
namespace {

/// Two monitors of uneven size side by side, the left one the main one: 800x800 and 480x600, the
/// smaller one lower.
class PanelScreensTest : public PanelDesktop {
protected:
    PanelScreensTest() {
        run("xrandr --setmonitor TestLeft 800/211x800/211+0+0 screen");
        run("xrandr --setmonitor TestRight 480/127x600/158+800+200 none");
    }

    ~PanelScreensTest() override {
        run("xrandr --delmonitor TestLeft");
        if (isPlugged)
            run("xrandr --delmonitor TestRight");
    }

    bool isWithin(int left, int top, int right, int bottom) {
        const auto frame = panelFrame();
        return frame && frame->x >= left && frame->y >= top && frame->x + frame->width <= right &&
               frame->y + frame->height <= bottom;
    }

    bool isPlugged = true;
};

TEST_F(PanelScreensTest, itComesUpOnTheMonitorOfThePointer) {
    start();
    neighbour.movePointer(1270, 790);
    summon();
    EXPECT_TRUE(isWithin(800, 200, 1280, 800));
    keys("type --delay 10 ze");
    EXPECT_EQ(fieldText(), "ze");
    EXPECT_TRUE(isWithin(800, 200, 1280, 800)) << "with its list";
    keys("key Escape");
    EXPECT_TRUE(becomes(1, hidden));
    neighbour.movePointer(20, 790);
    summon();
    EXPECT_TRUE(isWithin(0, 0, 800, 800));
}

TEST_F(PanelScreensTest, aMonitorUnpluggedUnderItLeavesItReachable) {
    start();
    neighbour.movePointer(1270, 790);
    summon();
    ASSERT_TRUE(isWithin(800, 200, 1280, 800));
    run("xrandr --delmonitor TestRight");
    isPlugged = false;
    // Where the pointer is there is no screen any more.
    EXPECT_TRUE(waitUntil(patience, [&] { return isWithin(0, 0, 800, 800); }));
    keys("type --delay 10 zeal");
    keys("key Return");
    EXPECT_TRUE(started("zeal")) << "it has kept the keyboard";
    EXPECT_TRUE(goesAway());
    summon();
    EXPECT_TRUE(isWithin(0, 0, 800, 800));
}

} // namespace
} // namespace tessarine
