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

inline constexpr double emptyHeight = 97; ///< of the panel without rows
inline constexpr double fieldHeight = 58; ///< of the row that holds the field
inline constexpr double margin = 8;       ///< kept to the edges of a screen

/// What the panel's height is made of.
struct Contents {
    std::size_t rows = 0;
    std::size_t mostRows = 0; ///< that are shown at a time
    double rowHeight = 0;     ///< live: it follows the text's size
    double previewBelow = 0;  ///< of a clipping's preview below the list; 0 for none
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

/// As much of the height as there is room for below `top`, so that a list which grows scrolls
/// before it leaves the screen; at least `emptyHeight`.
double fittingHeight(const Rectangle& workArea, double top, double height);

} // namespace tessarine::PanelPlacement
