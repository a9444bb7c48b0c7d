#pragma once

#include "LauncherCore/geometry/Rectangle.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tessarine {

/// Room that a dock or a bar keeps along an edge of the whole desktop, in the display's own pixels.
struct Strut {
    enum class Edge { left, right, top, bottom };
    Edge edge = Edge::left;
    double thickness = 0; ///< from the desktop's edge, not from the monitor's
    double begin = 0;     ///< along the edge
    double end = 0;       ///< the first pixel that is free again

    bool operator==(const Strut&) const = default;
};

/// What docks and bars leave of a monitor. Qt's own answer intersects every monitor with one
/// rectangle for the whole desktop, which takes a bar of one monitor from all of them. Pure; any
/// thread.
namespace WorkArea {

/// The struts that a window's property tells (Extended Window Manager Hints 1.5): twelve numbers of
/// _NET_WM_STRUT_PARTIAL, or four of _NET_WM_STRUT, which run along whole edges. None for any other
/// count.
std::vector<Strut> struts(std::span<const std::uint32_t> property);

/// What is free of a monitor on a desktop of that size. Never nothing: struts that would leave less
/// than half of the monitor's width or height are not meant for it.
Rectangle within(const Rectangle& monitor,
                 double desktopWidth,
                 double desktopHeight,
                 std::span<const Strut> struts);

/// The part that both have in common; nothing for none.
std::optional<Rectangle> common(const Rectangle& one, const Rectangle& other);

} // namespace WorkArea
} // namespace tessarine
