#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include "launcherapp/platform/linux/wayland/WaylandDispatch.h"

#include <wayland-client.h>

namespace tessarine {

namespace {

using Clock = std::chrono::steady_clock;

} // namespace

void WaylandConnection::Close::operator()(wl_display* display) const {
    wl_display_disconnect(display);
}

WaylandConnection::WaylandConnection(WaylandRegistry::Events events)
    : display_(wl_display_connect(nullptr)) {
    if (!display_)
        return;
    registry_ = std::make_unique<WaylandRegistry>(display_.get(), nullptr, std::move(events));
    answered_ = roundTrip();
}

WaylandConnection::~WaylandConnection() = default;

bool WaylandConnection::answers() const {
    return answered_ && wl_display_get_error(display_.get()) == 0;
}

int WaylandConnection::descriptor() const {
    return wl_display_get_fd(display_.get());
}

bool WaylandConnection::dispatchWhatCame() {
    return display_ && dispatchWayland(display_.get(), Clock::now());
}

void WaylandConnection::flush() {
    if (display_)
        wl_display_flush(display_.get());
}

bool WaylandConnection::roundTrip(std::chrono::milliseconds limit) {
    return display_ && roundTripWayland(display_.get(), Clock::now() + limit);
}

} // namespace tessarine
