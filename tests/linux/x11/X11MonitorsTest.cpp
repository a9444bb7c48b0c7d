#include "launcherapp/platform/linux/x11/X11Monitors.h"

#include "tests/fakes/RectanglePrinting.h"
#include "tests/linux/BareDisplay.h"
#include "tests/linux/x11/X11Neighbour.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tessarine {
namespace {

/// One monitor on a display that doesn't tell its monitors.
class X11MonitorsTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(bare.answers); }

    BareDisplay bare{{QStringLiteral("-extension"),
                      QStringLiteral("RANDR"),
                      QStringLiteral("-screen"),
                      QStringLiteral("0"),
                      QStringLiteral("800x600x24")}};
    X11Neighbour manager;
    X11Connection display;
    X11Monitors monitors{display};
};

TEST_F(X11MonitorsTest, theWholeDesktopStandsForMonitorsThatAreNotTold) {
    const Rectangle whole{.width = 800, .height = 600};
    EXPECT_THAT(monitors.all(),
                testing::ElementsAre(
                    Screen{.name = "screen", .frame = whole, .workArea = whole, .isMain = true}));
    bare.stop();
    monitors.all(); // notices
    EXPECT_THAT(monitors.all(), testing::IsEmpty());
}

TEST_F(X11MonitorsTest, whatIsFreeIsToldInAnyOfTheWays) {
    const auto bar = manager.open(0, 0, 40, 600);
    const auto root = manager.root();

    const struct {
        const char* what;
        X11Neighbour::Window window;
        std::string property;
        std::vector<std::uint32_t> value;
        Rectangle free;
    } cases[] = {
        {"by the window manager, of this desktop",
         root,
         "_NET_WORKAREA",
         {0, 0, 800, 600, 0, 20, 800, 580},
         {0, 20, 800, 580}},
        {"by the window manager, of each monitor, which counts for more",
         root,
         "_GTK_WORKAREAS_D0",
         {0, 30, 800, 500},
         {0, 30, 800, 500}},
        {"by a bar, in the older way", bar, "_NET_WM_STRUT", {40, 0, 0, 0}, {40, 30, 760, 500}},
    };

    manager.set(root, "_NET_CURRENT_DESKTOP", {1});
    manager.set(root, "_NET_CLIENT_LIST", {bar}, XCB_ATOM_WINDOW);
    for (const auto& [what, window, property, value, free] : cases) {
        SCOPED_TRACE(what);
        manager.set(window, property, value);
        EXPECT_EQ(monitors.all().at(0).workArea, free);
    }
}

} // namespace
} // namespace tessarine
