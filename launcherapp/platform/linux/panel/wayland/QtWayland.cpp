#include "launcherapp/platform/linux/panel/wayland/QtWayland.h"

#include "launcherapp/platform/linux/wayland/WaylandDispatch.h"

#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

namespace tessarine {

namespace {

wl_display* qtDisplay() {
    return static_cast<wl_display*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
}

void noteDone(void* data, wl_callback*, std::uint32_t) {
    *static_cast<bool*>(data) = true;
}

constexpr wl_callback_listener doneListener{.done = noteDone};

} // namespace

QtWayland::QtWayland()
    : display_(qtDisplay()),
      registry_(std::make_unique<WaylandRegistry>(
          display_,
          nullptr,
          WaylandRegistry::Events{
              .added = [this](const WaylandRegistry::Global& global) { added_.tell(global); },
              .removed = {}})),
      isTold_(roundTrip()) {}

QtWayland::~QtWayland() = default;

bool QtWayland::isThere() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

bool QtWayland::waitUntil(const std::function<bool()>& holds,
                          std::chrono::milliseconds limit) const {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!holds()) {
        if (!dispatchWayland(display_, end) || std::chrono::steady_clock::now() >= end)
            return holds();
    }
    return true;
}

bool QtWayland::roundTrip(std::chrono::milliseconds limit) const {
    bool isDone = false;
    auto* const callback = wl_display_sync(display_);
    wl_callback_add_listener(callback, &doneListener, &isDone);
    waitUntil([&] { return isDone; }, limit);
    wl_callback_destroy(callback);
    return isDone;
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
