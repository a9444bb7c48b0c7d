#include "launcherapp/platform/linux/x11/WorkArea.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tessarine {

namespace {

constexpr std::array edges{
    Strut::Edge::left, Strut::Edge::right, Strut::Edge::top, Strut::Edge::bottom};

/// The part of the desktop that a strut keeps.
Rectangle area(const Strut& strut, double desktopWidth, double desktopHeight) {
    const double length = strut.end - strut.begin;
    switch (strut.edge) {
    case Strut::Edge::left:
        return {.x = 0, .y = strut.begin, .width = strut.thickness, .height = length};
    case Strut::Edge::right:
        return {.x = desktopWidth - strut.thickness,
                .y = strut.begin,
                .width = strut.thickness,
                .height = length};
    case Strut::Edge::top:
        return {.x = strut.begin, .y = 0, .width = length, .height = strut.thickness};
    case Strut::Edge::bottom:
        return {.x = strut.begin,
                .y = desktopHeight - strut.thickness,
                .width = length,
                .height = strut.thickness};
    }
    return {};
}

/// What is left of the work area beside a part that is taken.
Rectangle beside(const Rectangle& work, Strut::Edge edge, const Rectangle& taken) {
    auto left = work;
    switch (edge) {
    case Strut::Edge::left:
        left.x = std::max(work.x, taken.right());
        left.width = work.right() - left.x;
        return left;
    case Strut::Edge::right:
        left.width = std::min(work.right(), taken.x) - work.x;
        return left;
    case Strut::Edge::top:
        left.y = std::max(work.y, taken.bottom());
        left.height = work.bottom() - left.y;
        return left;
    case Strut::Edge::bottom:
        left.height = std::min(work.bottom(), taken.y) - work.y;
        return left;
    }
    return left;
}

} // namespace

std::vector<Strut> WorkArea::struts(std::span<const std::uint32_t> property) {
    const bool isPartial = property.size() == 12;
    if (!isPartial && property.size() != 4)
        return {};
    std::vector<Strut> result;
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (property[i] == 0)
            continue;
        Strut strut{.edge = edges[i],
                    .thickness = static_cast<double>(property[i]),
                    .end = std::numeric_limits<std::uint32_t>::max()};
        if (isPartial) {
            strut.begin = property[4 + 2 * i];
            strut.end = static_cast<double>(property[5 + 2 * i]) + 1; // the hint's is the last
        }
        result.push_back(strut);
    }
    return result;
}

Rectangle WorkArea::within(const Rectangle& monitor,
                           double desktopWidth,
                           double desktopHeight,
                           std::span<const Strut> struts) {
    auto work = monitor;
    for (const auto& strut : struts) {
        const auto taken = area(strut, desktopWidth, desktopHeight);
        if (!common(monitor, taken))
            continue;
        const auto left = beside(work, strut.edge, taken);
        // A bar at a monitor's inner edge keeps all that lies between it and the desktop's edge,
        // the whole of another monitor included.
        if (left.width < monitor.width / 2 || left.height < monitor.height / 2)
            continue;
        work = left;
    }
    return work;
}

std::optional<Rectangle> WorkArea::common(const Rectangle& one, const Rectangle& other) {
    const double x = std::max(one.x, other.x);
    const double y = std::max(one.y, other.y);
    const double width = std::min(one.right(), other.right()) - x;
    const double height = std::min(one.bottom(), other.bottom()) - y;
    if (width <= 0 || height <= 0)
        return std::nullopt;
    return Rectangle{.x = x, .y = y, .width = width, .height = height};
}

} // namespace tessarine
