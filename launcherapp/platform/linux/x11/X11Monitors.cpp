#include "launcherapp/platform/linux/x11/X11Monitors.h"

#include "launcherapp/platform/linux/x11/X11Connection.h"
#include "launcherapp/platform/linux/x11/X11Extension.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace tessarine {

namespace {

bool tellsMonitors(xcb_connection_t* connection) {
    if (!x11Extension(connection, xcb_randr_id))
        return false;
    const XcbOwned<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
        connection, xcb_randr_query_version(connection, 1, 5), nullptr));
    return version && std::pair(version->major_version, version->minor_version) >=
                          std::pair<std::uint32_t, std::uint32_t>(1, 5);
}

} // namespace

X11Monitors::X11Monitors(const X11Connection& display)
    : display_(display), areTold_(tellsMonitors(display.xcb())) {}

std::vector<Screen> X11Monitors::all() {
    if (!display_.answers())
        return {};
    std::vector<Screen> screens;
    std::vector<Rectangle> frames;
    for (auto& screen : told()) {
        if (std::ranges::count(frames, screen.frame) > 0)
            continue;
        frames.push_back(screen.frame);
        screens.push_back(std::move(screen));
    }
    const auto workAreas = workAreas_.within(frames);
    for (std::size_t i = 0; i < screens.size(); ++i)
        screens[i].workArea = workAreas[i];
    if (!screens.empty() && std::ranges::none_of(screens, &Screen::isMain))
        screens.front().isMain = true;
    return screens;
}

/// Without their work areas.
std::vector<Screen> X11Monitors::told() const {
    auto* xcb = display_.xcb();
    std::vector<Screen> screens;
    std::vector<xcb_get_atom_name_cookie_t> names;
    const XcbOwned<xcb_randr_get_monitors_reply_t> reply(
        areTold_ ? xcb_randr_get_monitors_reply(
                       xcb, xcb_randr_get_monitors(xcb, display_.root(), 1), nullptr)
                 : nullptr);
    if (reply) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
             xcb_randr_monitor_info_next(&it)) {
            names.push_back(xcb_get_atom_name(xcb, it.data->name));
            screens.push_back({.frame = {.x = static_cast<double>(it.data->x),
                                         .y = static_cast<double>(it.data->y),
                                         .width = static_cast<double>(it.data->width),
                                         .height = static_cast<double>(it.data->height)},
                               .isMain = it.data->primary != 0});
        }
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        const XcbOwned<xcb_get_atom_name_reply_t> name(
            xcb_get_atom_name_reply(xcb, names[i], nullptr));
        if (name)
            screens[i].name.assign(xcb_get_atom_name_name(name.get()), name->name_len);
    }
    if (!screens.empty())
        return screens;
    const XcbOwned<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(xcb, xcb_get_geometry(xcb, display_.root()), nullptr));
    if (root)
        screens.push_back({.name = "screen",
                           .frame = {.width = static_cast<double>(root->width),
                                     .height = static_cast<double>(root->height)}});
    return screens;
}

} // namespace tessarine
