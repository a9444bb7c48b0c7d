#pragma once

#include "launcherapp/platform/KeyInjector.h"
#include "launcherapp/platform/MainQueue.h"

#include <memory>

namespace tessarine {

struct DesktopSurroundings;

/// That of the session: through the Wayland compositor, or through the display of an X11 session;
/// where neither lets programs press keys in other programs' windows, one with the reason that the
/// table of abilities has. Waits for
/// the display's first answers. Main thread; `queue` outlives it.
std::unique_ptr<KeyInjector> keyInjector(MainQueue& queue, const DesktopSurroundings& desktop);

} // namespace tessarine
