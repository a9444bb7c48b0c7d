#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/PanelWindow.h"

#include <optional>
#include <vector>

namespace tessarine {

class X11Connection;

/// Monitors and places on an X11 display, in Qt's logical pixels. Main thread only; each waits for
/// the display's answers.
namespace X11Screens {

std::vector<Screen> all(const X11Connection& display);

/// Nothing when the display doesn't answer.
std::optional<Point> pointer(const X11Connection& display);

} // namespace X11Screens
} // namespace tessarine
