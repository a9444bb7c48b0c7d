#include "launcherapp/platform/linux/pasteboard/SessionPasteboard.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/pasteboard/NoPasteboard.h"
#include "launcherapp/platform/linux/pasteboard/wayland/WaylandPasteboard.h"
#include "launcherapp/platform/linux/pasteboard/x11/X11Pasteboard.h"

namespace tessarine {

std::unique_ptr<Pasteboard> pasteboard(MainQueue& queue, const DesktopSurroundings& desktop) {
    // A compositor that is only late is asked again later.
    if (desktop.hasWayland &&
        (DesktopTable::showsClipboard(desktop) || DesktopTable::isSilent(desktop)))
        return std::make_unique<WaylandPasteboard>(queue);
    if (desktop.hasX11)
        return std::make_unique<X11Pasteboard>(queue);
    return std::make_unique<NoPasteboard>(
        queue, DesktopTable::reason(desktop, DesktopAbility::clipboardHistory));
}

} // namespace tessarine
