#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <poll.h>

namespace tessarine {

namespace {

using Clock = std::chrono::steady_clock;

void noteDone(void* data, wl_callback*, std::uint32_t) {
    *static_cast<bool*>(data) = true;
}

constexpr wl_callback_listener doneListener{.done = noteDone};

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
    return display_ && dispatchUntil(Clock::now());
}

void WaylandConnection::flush() {
    if (display_)
        wl_display_flush(display_.get());
}

bool WaylandConnection::roundTrip(std::chrono::milliseconds limit) {
    if (!display_)
        return false;
    bool isDone = false;
    auto* const callback = wl_display_sync(display_.get());
    wl_callback_add_listener(callback, &doneListener, &isDone);
    const auto end = Clock::now() + limit;
    while (!isDone && dispatchUntil(end)) {
        if (Clock::now() >= end)
            break;
    }
    wl_callback_destroy(callback);
    return isDone;
}

/// Dispatches once, having waited for something until `end` at most. False when it is broken.
bool WaylandConnection::dispatchUntil(Clock::time_point end) {
    while (wl_display_prepare_read(display_.get()) != 0) {
        if (wl_display_dispatch_pending(display_.get()) < 0)
            return false;
    }
    wl_display_flush(display_.get());
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd wanted{.fd = descriptor(), .events = POLLIN, .revents = 0};
    const int ready = ::poll(&wanted, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
    if (ready <= 0) {
        wl_display_cancel_read(display_.get());
        return ready == 0 || errno == EINTR;
    }
    return wl_display_read_events(display_.get()) == 0 &&
           wl_display_dispatch_pending(display_.get()) >= 0;
}

} // namespace tessarine
