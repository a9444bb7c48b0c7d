#include "launcherapp/platform/linux/panel/PanelSurface.h"

#include "launcherapp/platform/linux/panel/PlainPanelSurface.h"
#include "launcherapp/platform/linux/panel/X11PanelSurface.h"

#include <QGuiApplication>

namespace tessarine {

std::unique_ptr<PanelSurface> makePanelSurface() {
    if (qApp->nativeInterface<QNativeInterface::QX11Application>())
        return std::make_unique<X11PanelSurface>();
    return std::make_unique<PlainPanelSurface>();
}

} // namespace tessarine
