#include "launcherapp/platform/linux/wayland/windows/ForeignToplevels.h"

#include "tests/linux/EventLoop.h"
#include "tests/wayland/standin/StandInWindows.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(ForeignToplevels, aCompositorThatTellsNoMoreTakesItsWindowsAlong) {
    StandInCompositor compositor;
    StandInWindows shown(compositor);
    ForeignToplevels toplevels(std::make_unique<WaylandConnection>(), "org.example.own");
    shown.show("org.example.first");
    ASSERT_TRUE(spinUntil([&] { return toplevels.active().has_value(); }));
    const auto window = toplevels.active()->id;
    toplevels.activate(window);
    EXPECT_TRUE(spinUntil([&] { return compositor.heard().size() == 1; }));
    spinFor(20);
    int changes = 0;
    const auto subscription = toplevels.activeChange.add([&] { ++changes; });

    shown.finish();
    EXPECT_TRUE(spinUntil([&] { return changes == 1; })) << "by itself";
    EXPECT_FALSE(toplevels.active());
    EXPECT_THAT(toplevels.windows(), IsEmpty());
    toplevels.unhide(window);
    toplevels.activate(window);
    toplevels.close(window);
    shown.show("org.example.second");
    spinFor(20);
    EXPECT_THAT(compositor.heard(), ElementsAre("activate"));
    EXPECT_THAT(toplevels.ability().reason, HasSubstr("no more")) << "and the connection stands";
}

} // namespace
} // namespace tessarine
