#include "launcherapp/platform/linux/x11/WorkArea.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum Strut::Edge;

// Two monitors side by side, the right one taller: the desktop is 1700 × 900.
constexpr Rectangle leftMonitor{.x = 0, .y = 0, .width = 800, .height = 800};
constexpr Rectangle rightMonitor{.x = 800, .y = 0, .width = 900, .height = 900};

TEST(WorkArea, takesBarsFromTheMonitorTheyStandOn) {
    const struct {
        const char* reason;
        Strut strut;
        Rectangle left;
        Rectangle right;
    } cases[] = {
        {"a bar above the left monitor",
         {.edge = top, .thickness = 30, .begin = 0, .end = 800},
         {.x = 0, .y = 30, .width = 800, .height = 770},
         rightMonitor},
        {"a bar below the shorter monitor counts from the desktop's edge",
         {.edge = bottom, .thickness = 140, .begin = 0, .end = 800},
         {.x = 0, .y = 0, .width = 800, .height = 760},
         rightMonitor},
        {"a dock at the right edge",
         {.edge = right, .thickness = 50, .begin = 0, .end = 900},
         leftMonitor,
         {.x = 800, .y = 0, .width = 850, .height = 900}},
        {"a dock at the inner edge reaches over all of the other monitor",
         {.edge = left, .thickness = 860, .begin = 0, .end = 900},
         leftMonitor,
         {.x = 860, .y = 0, .width = 840, .height = 900}},
        {"a bar of the old hint runs along the whole edge",
         {.edge = top, .thickness = 30, .begin = 0, .end = 4294967295.0},
         {.x = 0, .y = 30, .width = 800, .height = 770},
         {.x = 800, .y = 30, .width = 900, .height = 870}},
        {"a bar that ends where the monitor begins",
         {.edge = top, .thickness = 30, .begin = 800, .end = 800},
         leftMonitor,
         rightMonitor},
    };

    for (const auto& [reason, strut, left, right] : cases) {
        SCOPED_TRACE(reason);
        EXPECT_EQ(WorkArea::within(leftMonitor, 1700, 900, {{strut}}), left);
        EXPECT_EQ(WorkArea::within(rightMonitor, 1700, 900, {{strut}}), right);
    }
}

TEST(WorkArea, addsUpBarsOfSeveralWindows) {
    const std::vector<Strut> struts{{.edge = top, .thickness = 20, .begin = 0, .end = 800},
                                    {.edge = top, .thickness = 30, .begin = 0, .end = 800},
                                    {.edge = left, .thickness = 60, .begin = 0, .end = 800}};
    EXPECT_EQ(WorkArea::within(leftMonitor, 1700, 900, struts),
              (Rectangle{.x = 60, .y = 30, .width = 740, .height = 770}));
}

TEST(WorkArea, readsBothHints) {
    const std::vector<std::uint32_t> partial{0, 0, 30, 0, 0, 0, 0, 0, 800, 1699, 0, 0};
    EXPECT_THAT(WorkArea::struts(partial),
                ElementsAre(Strut{.edge = top, .thickness = 30, .begin = 800, .end = 1700}));
    const std::vector<std::uint32_t> whole{0, 50, 0, 0};
    EXPECT_THAT(WorkArea::struts(whole),
                ElementsAre(Strut{.edge = right, .thickness = 50, .end = 4294967295.0}));
    EXPECT_THAT(WorkArea::struts({}), IsEmpty());
    const std::vector<std::uint32_t> broken{1, 2, 3};
    EXPECT_THAT(WorkArea::struts(broken), IsEmpty());
}

} // namespace
} // namespace tessarine
