#pragma once

#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/linux/wayland/WaylandRegistry.h"

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

class QScreen;
class QWindow;
struct wl_display;
struct wl_output;
struct wl_surface;

namespace tessarine {

/// Qt's own connection to the Wayland compositor, for what is done to the surfaces that Qt draws
/// on. What is bound here is dispatched by Qt's event loop. Main thread only, with Qt connected to
/// Wayland.
class QtWayland {
public:
    /// Longest wait for what a compositor answers at once. Somebody has pressed a key and waits.
    static constexpr std::chrono::milliseconds patience{250};

    /// Waits until the compositor has told its globals, `patience` at most.
    QtWayland();
    ~QtWayland();
    QtWayland(const QtWayland&) = delete;
    QtWayland& operator=(const QtWayland&) = delete;

    /// Whether Qt has such a connection.
    static bool isThere();

    /// As far as the compositor told it in time.
    const WaylandRegistry& registry() const { return *registry_; }

    /// Calls `added` with each that it tells later.
    Subscription onAdded(std::function<void(const WaylandRegistry::Global& global)> added) {
        return added_.add(std::move(added));
    }

    /// Calls `removed` with each that it takes back; what was bound of it does nothing any more.
    Subscription onRemoved(std::function<void(const WaylandRegistry::Global& global)> removed) {
        return removed_.add(std::move(removed));
    }

    /// Whether it did; one that is busy, as at a log-in, may not have.
    bool isTold() const { return isTold_; }

    /// Waits until `holds` and calls the listeners meanwhile. False when it doesn't within the
    /// limit, or the connection is broken.
    bool waitUntil(const std::function<bool()>& holds,
                   std::chrono::milliseconds limit = patience) const;

    /// Waits until the compositor has seen all that was asked for. False as above.
    bool roundTrip(std::chrono::milliseconds limit = patience) const;

    static wl_display* display();
    /// Null for a window without a native one.
    static wl_surface* surface(QWindow& window);
    /// Null for the stand-in that Qt has while there is no output.
    static wl_output* output(QScreen& screen);
    /// Null for one that Qt doesn't know, or that has left.
    static QScreen* screen(wl_output* output);

private:
    Observers<WaylandRegistry::Global> added_;
    Observers<WaylandRegistry::Global> removed_;
    std::unique_ptr<WaylandRegistry> registry_;
    bool isTold_;
};

} // namespace tessarine
