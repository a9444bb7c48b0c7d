#pragma once

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/wayland/windows/WaylandWindowDoors.h"

#include <string>

namespace tessarine {

/// Those of the session: of the Wayland compositor, else of the X11 display, which has some of a
/// compositor's windows at least and says which are missing; where neither is, ones with the
/// reasons that the table of abilities has. `ownApplicationID` is what this program's windows call
/// themselves. Waits as `waylandWindowDoors` does. Main thread only.
WindowDoors sessionWindowDoors(const DesktopSurroundings& desktop,
                               const std::string& ownApplicationID);

} // namespace tessarine
