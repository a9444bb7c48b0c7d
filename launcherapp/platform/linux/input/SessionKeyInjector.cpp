#include "launcherapp/platform/linux/input/SessionKeyInjector.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/input/NoKeyInjector.h"
#include "launcherapp/platform/linux/input/WaylandKeyInjector.h"
#include "launcherapp/platform/linux/input/X11KeyInjector.h"

namespace tessarine {

std::unique_ptr<KeyInjector> keyInjector(MainQueue& queue, const DesktopSurroundings& desktop) {
    const auto cell = DesktopTable::cell(desktop, DesktopAbility::typing);
    const bool works = cell.state == DesktopCell::State::works;
    if (desktop.hasWayland && (works || DesktopTable::isSilent(desktop)))
        return std::make_unique<WaylandKeyInjector>(queue);
    if (works)
        return std::make_unique<X11KeyInjector>(queue);
    return std::make_unique<NoKeyInjector>(queue, cell.reason);
}

} // namespace tessarine
