#include "launcherapp/platform/linux/panel/PanelSurface.h"

#include "launcherapp/platform/linux/panel/PlainPanelSurface.h"
#include "launcherapp/platform/linux/panel/X11PanelSurface.h"
#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"
#include "launcherapp/platform/linux/panel/wayland/WaylandPanelSurface.h"

#include <QGuiApplication>

namespace tessarine {

std::unique_ptr<PanelSurface> makePanelSurface() {
    // By its name: Qt's offscreen platform offers the interface of X11 too, without a display.
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        return std::make_unique<X11PanelSurface>();
    if (QtWayland::isThere())
        return std::make_unique<WaylandPanelSurface>();
    return std::make_unique<PlainPanelSurface>();
}

} // namespace tessarine
