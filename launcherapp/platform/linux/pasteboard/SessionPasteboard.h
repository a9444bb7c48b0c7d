#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Pasteboard.h"

#include <memory>

namespace tessarine {

struct DesktopSurroundings;

/// That of the session, as the table of abilities has it: the Wayland compositor's where it shows
/// the clipboard to programs without the focus, or has not said yet what it does; else that of the
/// X11 display, which a compositor may keep the same for its X11 programs; where neither is, one
/// with the table's reason. Waits for the compositor's first answers. Throws
/// std::system_error when there is no descriptor or no thread to be had. Main thread; `queue`
/// outlives it.
std::unique_ptr<Pasteboard> pasteboard(MainQueue& queue, const DesktopSurroundings& desktop);

} // namespace tessarine
