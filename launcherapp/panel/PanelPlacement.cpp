#include "launcherapp/panel/PanelPlacement.h"

#include <algorithm>
#include <cmath>

namespace tessarine {

namespace {

/// Below these a list is no list: kept free under a remembered place.
constexpr std::size_t fewRows = 3;

constexpr double upperShare = 0.2;  ///< of the work area, above the panel
constexpr double centerSink = 0.25; ///< of the height beyond the field's, below the middle

/// Between the two edges with their margin; at the first of them where there is no room.
double within(double value, double low, double high, double size) {
    return std::max(low + PanelPlacement::margin,
                    std::min(value, high - PanelPlacement::margin - size));
}

} // namespace

double PanelPlacement::width(PanelWidth width) {
    switch (width) {
    case PanelWidth::compact:
        return 600;
    case PanelWidth::standard:
        return 720;
    case PanelWidth::wide:
        return 860;
    }
    return 720;
}

double PanelPlacement::desiredHeight(const Contents& contents) {
    const auto& heights = contents.heights;
    const auto part = [](double height) { return height > 0 ? height + separatorHeight : 0; };
    double height = emptyHeight;
    if (contents.rows > 0) {
        const auto shown = static_cast<double>(std::min(contents.rows, contents.mostRows));
        const double list = std::max(heights.row * shown + 2 * listPadding, heights.previewBeside);
        height = headerHeight + list + separatorHeight + footerHeight + part(heights.previewBelow);
    }
    height += part(heights.headAbove);
    // A menu opens over an empty list too.
    const double open = heights.overlay > 0 ? headerHeight + heights.overlay + footerHeight : 0;
    return std::max(height, open);
}

std::optional<Screen> PanelPlacement::screen(std::span<const Screen> screens,
                                             const std::optional<Point>& pointer) {
    if (screens.empty())
        return std::nullopt;
    const auto holdsPointer = [&](const Screen& each) {
        return pointer && each.frame.contains(*pointer);
    };
    auto found = std::ranges::find_if(screens, holdsPointer);
    if (found == screens.end())
        found = std::ranges::find_if(screens, &Screen::isMain);
    return found == screens.end() ? screens.front() : *found;
}

Rectangle PanelPlacement::frame(const Rectangle& workArea,
                                PanelPosition position,
                                double width,
                                double height,
                                const std::vector<double>& remembered) {
    Rectangle frame{.width = std::min(width, workArea.width - 2 * margin), .height = height};
    frame.x = workArea.x + workArea.width / 2 - frame.width / 2;
    if (position == PanelPosition::remembered && remembered.size() == 2) {
        frame.x = within(remembered[0], workArea.x, workArea.right(), frame.width);
        frame.y = within(remembered[1], workArea.y, workArea.bottom(), height);
    } else if (position == PanelPosition::center) {
        // A long list would lift the field far up; sinking by a part of its height keeps the field
        // about where it is with a short one.
        frame.y =
            workArea.y + workArea.height / 2 - height / 2 + centerSink * (height - fieldHeight);
    } else {
        frame.y = workArea.y + upperShare * workArea.height;
    }
    frame.x = std::round(frame.x);
    frame.y = std::round(frame.y);
    return frame;
}

double PanelPlacement::heightToKeepFree(const Contents& contents) {
    auto few = contents;
    few.rows = std::max(contents.rows, fewRows);
    few.mostRows = std::min(contents.mostRows, fewRows);
    return std::max(desiredHeight(contents), desiredHeight(few));
}

double
PanelPlacement::fittingHeight(const Rectangle& workArea, double top, const Contents& contents) {
    const double room = workArea.bottom() - margin - top;
    auto fitted = contents;
    fitted.mostRows = std::min(contents.rows, contents.mostRows);
    while (fitted.mostRows > 1 && desiredHeight(fitted) > room)
        --fitted.mostRows;
    return std::max(emptyHeight, std::min(desiredHeight(fitted), room));
}

} // namespace tessarine
