#include "LauncherCore/commands/WindowVerb.h"

#include "tests/fakes/RectanglePrinting.h"

#include <gmock/gmock.h>

#include <cmath>
#include <set>

namespace tessarine {
namespace {

Rectangle placed(WindowVerb verb, const Rectangle& workArea) {
    return WindowVerbs::frame(verb, workArea, {.x = 5, .y = 5, .width = 301, .height = 200});
}

TEST(WindowVerb, eachHasOneKeywordATitleAndASymbol) {
    const struct {
        BuiltinKeyword keyword;
        const char* name;
        const char* title;
        const char* symbol;
    } cases[] = {
        {BuiltinKeyword::windowLeft, "left", "Left half", "rectangle.lefthalf.filled"},
        {BuiltinKeyword::windowRight, "right", "Right half", "rectangle.righthalf.filled"},
        {BuiltinKeyword::windowTop, "top", "Top half", "rectangle.tophalf.filled"},
        {BuiltinKeyword::windowBottom, "bottom", "Bottom half", "rectangle.bottomhalf.filled"},
        {BuiltinKeyword::windowMax, "max", "Maximize", "rectangle.fill"},
        {BuiltinKeyword::windowCenter, "center", "Center", "rectangle.center.inset.filled"},
        {BuiltinKeyword::windowDisplay, "display", "Next display", "macwindow.on.rectangle"},
    };

    std::set<WindowVerb> found;
    for (const auto& [keyword, name, title, symbol] : cases) {
        SCOPED_TRACE(name);
        const auto verb = windowVerb(keyword);
        ASSERT_TRUE(verb);
        found.insert(*verb);
        EXPECT_EQ(WindowVerbs::name(*verb), name);
        EXPECT_EQ(WindowVerbs::title(*verb), title);
        EXPECT_EQ(WindowVerbs::symbol(*verb), symbol);
    }
    EXPECT_EQ(found.size(), allWindowVerbs.size());
    EXPECT_EQ(windowVerb(BuiltinKeyword::forceQuit), std::nullopt);
}

TEST(WindowVerb, fillsItsPartOfTheWorkArea) {
    const Rectangle area{.x = 100, .y = 30, .width = 800, .height = 600};

    const struct {
        WindowVerb verb;
        Rectangle frame;
    } cases[] = {
        {WindowVerb::left, {.x = 100, .y = 30, .width = 400, .height = 600}},
        {WindowVerb::right, {.x = 500, .y = 30, .width = 400, .height = 600}},
        {WindowVerb::top, {.x = 100, .y = 30, .width = 800, .height = 300}},
        {WindowVerb::bottom, {.x = 100, .y = 330, .width = 800, .height = 300}},
        {WindowVerb::max, area},
        {WindowVerb::center, {.x = 350, .y = 230, .width = 301, .height = 200}},
        {WindowVerb::display, {.x = 350, .y = 230, .width = 301, .height = 200}},
    };

    for (const auto& [verb, frame] : cases) {
        SCOPED_TRACE(WindowVerbs::name(verb));
        EXPECT_EQ(placed(verb, area), frame);
    }
}

TEST(WindowVerb, halvesMeetWithoutGapOrOverlap) {
    for (const double origin : {-1921.0, 0.0, 33.0, 0.25}) {
        for (const double length : {799.0, 800.0, 801.0, 1279.5}) {
            SCOPED_TRACE(testing::Message() << origin << " and " << length);
            const Rectangle area{.x = origin, .y = origin, .width = length, .height = length};
            const auto all = placed(WindowVerb::max, area);
            const auto left = placed(WindowVerb::left, area);
            const auto right = placed(WindowVerb::right, area);
            EXPECT_EQ(left.right(), right.x);
            EXPECT_EQ(left.x, all.x);
            EXPECT_EQ(right.right(), all.right());
            EXPECT_LE(std::abs(left.width - right.width), 1);
            const auto top = placed(WindowVerb::top, area);
            const auto bottom = placed(WindowVerb::bottom, area);
            EXPECT_EQ(top.bottom(), bottom.y);
            EXPECT_EQ(top.y, all.y);
            EXPECT_EQ(bottom.bottom(), all.bottom());
            for (const auto& frame : {all, left, right, top, bottom})
                EXPECT_EQ(frame,
                          (Rectangle{std::round(frame.x),
                                     std::round(frame.y),
                                     std::round(frame.width),
                                     std::round(frame.height)}));
        }
    }
}

} // namespace
} // namespace tessarine
