#include "launcherapp/platform/linux/pasteboard/SessionPasteboard.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/pasteboard/NoPasteboard.h"
#include "launcherapp/platform/linux/pasteboard/wayland/WaylandPasteboard.h"
#include "launcherapp/platform/linux/pasteboard/x11/X11Pasteboard.h"

#include <string>

namespace tessarine {

std::unique_ptr<Pasteboard> pasteboard(MainQueue& queue, const Environment& environment) {
    std::string reason = "there is no display";
    if (environment.hasWayland) {
        auto wayland = std::make_unique<WaylandPasteboard>(queue);
        if (wayland->ability().available)
            return wayland;
        reason = wayland->ability().reason;
    }
    if (environment.hasX11)
        return std::make_unique<X11Pasteboard>(queue);
    return std::make_unique<NoPasteboard>(queue, reason);
}

} // namespace tessarine
