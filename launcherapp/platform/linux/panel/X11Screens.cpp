#include "launcherapp/platform/linux/panel/X11Screens.h"

#include "launcherapp/platform/linux/panel/WorkArea.h"
#include "launcherapp/platform/linux/panel/X11Connection.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <iterator>
#include <string>

namespace tessarine {

namespace {

/// A monitor in the display's own pixels. Qt leaves its top left where the display has it and
/// scales its size alone.
struct Monitor {
    const QScreen* screen;
    Rectangle native;
    double scale;

    Point logical(const Point& at) const {
        return {.x = native.x + (at.x - native.x) / scale,
                .y = native.y + (at.y - native.y) / scale};
    }

    Rectangle logical(const Rectangle& area) const {
        const auto topLeft = logical(Point{.x = area.x, .y = area.y});
        return {.x = topLeft.x,
                .y = topLeft.y,
                .width = area.width / scale,
                .height = area.height / scale};
    }
};

std::vector<Monitor> monitors() {
    std::vector<Monitor> result;
    for (const auto* screen : QGuiApplication::screens()) {
        const auto geometry = screen->geometry();
        const double scale = screen->devicePixelRatio();
        result.push_back({.screen = screen,
                          .native = {.x = static_cast<double>(geometry.x()),
                                     .y = static_cast<double>(geometry.y()),
                                     .width = geometry.width() * scale,
                                     .height = geometry.height() * scale},
                          .scale = scale});
    }
    return result;
}

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
struct X11Screens::Room {
    double desktopWidth = 0;
    double desktopHeight = 0;
    std::vector<Strut> struts;
    /// Work areas that the window manager tells itself, of single monitors or of the only one.
    std::vector<Rectangle> told;
};

X11Screens::Room X11Screens::room(std::size_t monitorCount) {
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

std::vector<Screen> X11Screens::all() {
    const auto found = monitors();
    const auto taken = room(found.size());
    const auto workArea = [&](const Monitor& monitor) {
        auto work =
            WorkArea::within(monitor.native, taken.desktopWidth, taken.desktopHeight, taken.struts);
        for (const auto& told : taken.told)
            work = WorkArea::common(work, told).value_or(work);
        return work;
    };
    std::vector<Screen> result;
    result.reserve(found.size());
    for (const auto& monitor : found)
        result.push_back({.name = monitor.screen->name().toStdString(),
                          .frame = monitor.logical(monitor.native),
                          .workArea = monitor.logical(workArea(monitor)),
                          .isMain = monitor.screen == QGuiApplication::primaryScreen()});
    return result;
}

std::optional<Point> X11Screens::pointer() const {
    if (!display_.answers())
        return std::nullopt;
    const auto cookie = xcb_query_pointer(display_.xcb(), display_.root());
    const XcbOwned<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(display_.xcb(), cookie, nullptr));
    if (!reply || !reply->same_screen)
        return std::nullopt;
    const Point at{.x = static_cast<double>(reply->root_x),
                   .y = static_cast<double>(reply->root_y)};
    for (const auto& monitor : monitors()) {
        if (monitor.native.contains(at))
            return monitor.logical(at);
    }
    return at;
}

} // namespace tessarine
