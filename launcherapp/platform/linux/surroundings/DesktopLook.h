#pragma once

#include "launcherapp/platform/DesktopTable.h"

#include <chrono>

namespace tessarine {

struct Environment;

/// Finding out what the running desktop has, for the table of abilities. Main thread only.
namespace DesktopLook {

/// What the environment, the disk, the display and Qt tell: enough for every ability but the hotkey
/// and the appearance, which are the portal's. A Wayland display where nobody listens counts as
/// none where there is an X11 display. Waits for the compositor, a millisecond ordinarily,
/// `WaylandConnection::patience` at worst, for KWin on the session bus as `KWinScripts::areTaken`
/// does, and for the X11 display's first answers. Asked once the application object is made, as Qt
/// may be on either display.
DesktopSurroundings display(const Environment& environment);

/// The same with what the session bus and the desktop's portal tell. What is not answered within
/// `patience` in all counts as not there; the portal may have to be started first.
DesktopSurroundings withBus(DesktopSurroundings surroundings, std::chrono::milliseconds patience);

} // namespace DesktopLook
} // namespace tessarine
