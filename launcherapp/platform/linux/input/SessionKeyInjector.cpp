#include "launcherapp/platform/linux/input/SessionKeyInjector.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/input/NoKeyInjector.h"
#include "launcherapp/platform/linux/input/WaylandKeyInjector.h"
#include "launcherapp/platform/linux/input/X11InputDevices.h"
#include "launcherapp/platform/linux/input/X11KeyInjector.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

namespace tessarine {

namespace {

std::unique_ptr<KeyInjector> none(MainQueue& queue, const char* reason) {
    return std::make_unique<NoKeyInjector>(queue, reason);
}

} // namespace

std::unique_ptr<KeyInjector> keyInjector(MainQueue& queue, const Environment& environment) {
    if (environment.hasWayland) {
        auto wayland = std::make_unique<WaylandKeyInjector>(queue);
        if (wayland->isConnected())
            return wayland;
    }
    if (!environment.hasX11)
        return none(queue, "there is no display");
    // A program that was kept off the compositor sees its display for X11 programs alone.
    const X11Connection display;
    if (display.answers() && isWaylandsDisplay(display.xcb()))
        return none(queue,
                    "this program was kept off the Wayland compositor, and the display that it has "
                    "for X11 programs reaches no others");
    return std::make_unique<X11KeyInjector>(queue);
}

} // namespace tessarine
