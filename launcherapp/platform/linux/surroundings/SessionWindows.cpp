#include "launcherapp/platform/linux/surroundings/SessionWindows.h"

#include "launcherapp/platform/linux/desktop/NoWindowControl.h"
#include "launcherapp/platform/linux/desktop/NoWindowList.h"
#include "launcherapp/platform/linux/desktop/X11WindowControl.h"
#include "launcherapp/platform/linux/desktop/X11WindowList.h"

#include <memory>
#include <optional>
#include <utility>

namespace tessarine {

WindowDoors sessionWindowDoors(const DesktopSurroundings& desktop,
                               const std::string& ownApplicationID) {
    using enum DesktopAbility;
    std::optional<std::string> gap;
    if (desktop.hasWayland) {
        if (auto doors = waylandWindowDoors(ownApplicationID))
            return *std::move(doors);
        gap = DesktopTable::reason(desktop, runningApplications);
    }
    if (desktop.hasX11)
        return {.list = std::make_unique<X11WindowList>(gap),
                .control = std::make_unique<X11WindowControl>()};
    return {
        .list = std::make_unique<NoWindowList>(DesktopTable::reason(desktop, runningApplications)),
        .control = std::make_unique<NoWindowControl>(DesktopTable::reason(desktop, windowVerbs))};
}

} // namespace tessarine
