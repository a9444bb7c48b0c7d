#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Pasteboard.h"

#include <memory>

namespace tessarine {

struct Environment;

/// That of the session: the Wayland compositor's where it shows the clipboard to programs without
/// the focus; else that of the X11 display, which a compositor may keep the same for its X11
/// programs; where neither is, one that says why. Waits for the compositor's first answers. Throws
/// std::system_error when there is no descriptor or no thread to be had. Main thread; `queue`
/// outlives it.
std::unique_ptr<Pasteboard> pasteboard(MainQueue& queue, const Environment& environment);

} // namespace tessarine
