#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/PanelWindow.h"
#include "launcherapp/shell/Prefs.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

/// Where the panel stands and how tall it is. Pure; any thread. Logical pixels.
namespace tessarine::PanelPlacement {

inline constexpr double fieldHeight = 58;  ///< of the row that holds the field
inline constexpr double headerHeight = 67; ///< of that row and the air around it
inline constexpr double separatorHeight = 1;
inline constexpr double listPadding = 6; ///< above the first row and below the last one
inline constexpr double footerHeight = 30;
inline constexpr double emptyHeight = headerHeight + footerHeight; ///< of the panel without rows
inline constexpr double margin = 8;                                ///< kept to a screen's edges

/// What the view says of its parts, each 0 for none.
struct Heights {
    double row = 0;          ///< live: it follows the text's size
    double headAbove = 0;    ///< of what stands between the field and the list
    double previewBelow = 0; ///< of a clipping's preview below the list; it is nothing without rows
    double previewBeside = 0; ///< least height of the list for a preview beside it
    double overlay = 0;       ///< that an open menu or the sheet wants between field row and footer

    bool operator==(const Heights&) const = default;
};

/// What the panel's height is made of.
struct Contents {
    std::size_t rows = 0;
    std::size_t mostRows = 0; ///< that are shown at a time
    Heights heights;
};

double width(PanelWidth width);

double desiredHeight(const Contents& contents);

/// The screen to come up on: the pointer's, else the main one, else the first. Nothing for none.
std::optional<Screen> screen(std::span<const Screen> screens, const std::optional<Point>& pointer);

/// The panel's frame on a screen's work area, in whole pixels and no wider than the area.
/// `remembered` holds the top left that a drag left, two numbers or none; without them the panel
/// stands as at `upper`. Only `remembered` is pulled into the area.
Rectangle frame(const Rectangle& workArea,
                PanelPosition position,
                double width,
                double height,
                const std::vector<double>& remembered);

/// The height that a remembered place is to have free below it: that of a few rows at least. With
/// the field's alone, a panel that was left at the lower edge would never have room for a list.
double heightToKeepFree(const Contents& contents);

/// The height for as many of the rows as there is room for below `top`, so that a list which grows
/// scrolls before it leaves the screen; at least `emptyHeight`.
double fittingHeight(const Rectangle& workArea, double top, const Contents& contents);

} // namespace tessarine::PanelPlacement
