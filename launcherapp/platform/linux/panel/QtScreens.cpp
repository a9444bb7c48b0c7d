#include "launcherapp/platform/linux/panel/QtScreens.h"

#include "launcherapp/platform/linux/panel/QtGeometry.h"

#include <QGuiApplication>
#include <QScreen>

namespace tessarine {

std::vector<Screen> qtScreens() {
    std::vector<Screen> result;
    for (const auto* screen : QGuiApplication::screens()) {
        if (screen->geometry().isEmpty())
            continue;
        result.push_back({.name = screen->name().toStdString(),
                          .frame = QtGeometry::rectangle(screen->geometry()),
                          .workArea = QtGeometry::rectangle(screen->availableGeometry()),
                          .isMain = screen == QGuiApplication::primaryScreen()});
    }
    return result;
}

} // namespace tessarine
