#include "launcherapp/platform/linux/panel/X11Screens.h"

#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QScreen>

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

} // namespace

std::vector<Screen> X11Screens::all() {
    const auto found = monitors();
    std::vector<Rectangle> native;
    native.reserve(found.size());
    for (const auto& monitor : found)
        native.push_back(monitor.native);
    const auto workAreas = workAreas_.within(native);
    std::vector<Screen> result;
    result.reserve(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto& monitor = found[i];
        result.push_back({.name = monitor.screen->name().toStdString(),
                          .frame = monitor.logical(monitor.native),
                          .workArea = monitor.logical(workAreas[i]),
                          .isMain = monitor.screen == QGuiApplication::primaryScreen()});
    }
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
