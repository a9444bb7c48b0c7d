#include "launcherapp/platform/linux/wayland/WaylandDispatch.h"

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <poll.h>

namespace tessarine {

namespace {

using Clock = std::chrono::steady_clock;

int prepareRead(wl_display* display, wl_event_queue* queue) {
    return queue ? wl_display_prepare_read_queue(display, queue) : wl_display_prepare_read(display);
}

int dispatchPending(wl_display* display, wl_event_queue* queue) {
    return queue ? wl_display_dispatch_queue_pending(display, queue)
                 : wl_display_dispatch_pending(display);
}

/// Null without memory. Its answer comes on the queue whichever thread reads it.
wl_callback* asked(wl_display* display, wl_event_queue* queue) {
    if (!queue)
        return wl_display_sync(display);
    auto* const wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
    if (!wrapper)
        return nullptr;
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
    auto* const callback = wl_display_sync(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    return callback;
}

void noteDone(void* data, wl_callback*, std::uint32_t) {
    *static_cast<bool*>(data) = true;
}

constexpr wl_callback_listener doneListener{.done = noteDone};

} // namespace

bool dispatchWayland(wl_display* display, Clock::time_point end, wl_event_queue* queue) {
    // Another thread may have read what the caller waits for: nothing else need come after it.
    while (prepareRead(display, queue) != 0) {
        if (dispatchPending(display, queue) < 0)
            return false;
        end = Clock::now();
    }
    wl_display_flush(display);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd wanted{.fd = wl_display_get_fd(display), .events = POLLIN, .revents = 0};
    const int ready = ::poll(&wanted, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
    if (ready <= 0) {
        wl_display_cancel_read(display);
        return ready == 0 || errno == EINTR;
    }
    return wl_display_read_events(display) == 0 && dispatchPending(display, queue) >= 0;
}

bool roundTripWayland(wl_display* display, Clock::time_point end, wl_event_queue* queue) {
    auto* const callback = asked(display, queue);
    if (!callback)
        return false;
    bool isDone = false;
    wl_callback_add_listener(callback, &doneListener, &isDone);
    while (!isDone && dispatchWayland(display, end, queue)) {
        if (Clock::now() >= end)
            break;
    }
    wl_callback_destroy(callback);
    return isDone;
}

} // namespace tessarine
