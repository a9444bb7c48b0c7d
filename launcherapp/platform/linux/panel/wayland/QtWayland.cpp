#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"

#include "launcherapp/platform/linux/wayland/WaylandDispatch.h"

#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

namespace tessarine {

QtWayland::QtWayland()
    : registry_(std::make_unique<WaylandRegistry>(
          display(),
          nullptr,
          WaylandRegistry::Events{
              .added = [this](const WaylandRegistry::Global& global) { added_.tell(global); },
              .removed =
                  [this](const WaylandRegistry::Global& global) { removed_.tell(global); }})),
      isTold_(roundTrip()) {}

QtWayland::~QtWayland() = default;

bool QtWayland::isThere() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

bool QtWayland::waitUntil(const std::function<bool()>& holds,
                          std::chrono::milliseconds limit) const {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!holds()) {
        if (!dispatchWayland(display(), end) || std::chrono::steady_clock::now() >= end)
            return holds();
    }
    return true;
}

bool QtWayland::roundTrip(std::chrono::milliseconds limit) const {
    return roundTripWayland(display(), std::chrono::steady_clock::now() + limit);
}

wl_display* QtWayland::display() {
    return static_cast<wl_display*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
}

wl_surface* QtWayland::surface(QWindow& window) {
    if (!window.handle())
        return nullptr;
    return static_cast<wl_surface*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window));
}

wl_output* QtWayland::output(QScreen& screen) {
    return static_cast<wl_output*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForScreen("output", &screen));
}

QScreen* QtWayland::screen(wl_output* output) {
    for (auto* screen : QGuiApplication::screens()) {
        if (output && QtWayland::output(*screen) == output)
            return screen;
    }
    return nullptr;
}

} // namespace tessarine
