#include "launcherapp/platform/linux/x11/X11WorkAreas.h"

#include "launcherapp/platform/linux/x11/WorkArea.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <iterator>

namespace tessarine {

namespace {

std::vector<Rectangle> rectangles(const std::vector<std::uint32_t>& numbers) {
    std::vector<Rectangle> result;
    for (std::size_t i = 0; i + 4 <= numbers.size(); i += 4)
        result.push_back({.x = static_cast<double>(numbers[i]),
                          .y = static_cast<double>(numbers[i + 1]),
                          .width = static_cast<double>(numbers[i + 2]),
                          .height = static_cast<double>(numbers[i + 3])});
    return result;
}

using Property = X11Connection::Property;
using Numbers = std::vector<std::vector<std::uint32_t>>;

/// Two of each window: the hint by parts, and the older whole one.
std::vector<Property> strutsOf(const X11Connection& display,
                               const std::vector<std::uint32_t>& windows) {
    const auto partial = display.atom("_NET_WM_STRUT_PARTIAL");
    const auto whole = display.atom("_NET_WM_STRUT");
    std::vector<Property> properties;
    for (const auto window : windows) {
        properties.push_back({window, partial});
        properties.push_back({window, whole});
    }
    return properties;
}

/// Of the answers from `first` on.
std::vector<Strut> struts(const Numbers& numbers, std::size_t first) {
    std::vector<Strut> result;
    for (std::size_t i = first; i + 1 < numbers.size(); i += 2) {
        // The hint by parts wins where a window sets both.
        const auto& chosen = numbers[i].empty() ? numbers[i + 1] : numbers[i];
        for (const auto& strut : WorkArea::struts(chosen))
            result.push_back(strut);
    }
    return result;
}

} // namespace

/// What the display says of room that is taken.
struct X11WorkAreas::Room {
    double desktopWidth = 0;
    double desktopHeight = 0;
    std::vector<Strut> struts;
    /// Work areas that the window manager tells itself, of single monitors or of the only one.
    std::vector<Rectangle> told;
};

X11WorkAreas::Room X11WorkAreas::room(std::size_t monitorCount) {
    Room room;
    if (!display_.answers())
        return room;
    const auto size = xcb_get_geometry(display_.xcb(), display_.root());
    const auto root = display_.root();
    // Mutter's own bars are no windows; it tells each monitor's area of the first desktop and of
    // all alike.
    std::vector<Property> asked{{root, display_.atom("_NET_CLIENT_LIST")},
                                {root, display_.atom("_NET_CURRENT_DESKTOP")},
                                {root, display_.atom("_NET_WORKAREA")},
                                {root, display_.atom("_GTK_WORKAREAS_D0")}};
    const auto ofRoot = asked.size();
    std::ranges::copy(strutsOf(display_, clients_), std::back_inserter(asked));
    const auto numbers = display_.numbers(asked);
    const XcbOwned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(display_.xcb(), size, nullptr));
    if (geometry) {
        room.desktopWidth = geometry->width;
        room.desktopHeight = geometry->height;
    }
    if (numbers[0] == clients_) {
        room.struts = struts(numbers, ofRoot);
    } else {
        clients_ = numbers[0];
        room.struts = struts(display_.numbers(strutsOf(display_, clients_)), 0);
    }
    room.told = rectangles(numbers[3]);
    // One rectangle for the whole desktop is exact where there is one monitor only.
    const auto areas = rectangles(numbers[2]);
    const auto desktop = numbers[1].empty() ? 0 : numbers[1].front();
    if (room.told.empty() && monitorCount == 1 && desktop < areas.size())
        room.told.push_back(areas[desktop]);
    return room;
}

std::vector<Rectangle> X11WorkAreas::within(const std::vector<Rectangle>& monitors) {
    const auto taken = room(monitors.size());
    std::vector<Rectangle> result;
    result.reserve(monitors.size());
    for (const auto& monitor : monitors) {
        auto work =
            WorkArea::within(monitor, taken.desktopWidth, taken.desktopHeight, taken.struts);
        for (const auto& told : taken.told)
            work = WorkArea::common(work, told).value_or(work);
        result.push_back(work);
    }
    return result;
}

} // namespace tessarine
