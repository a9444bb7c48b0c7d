#pragma once

#include <chrono>

struct wl_display;
struct wl_event_queue;

namespace tessarine {

/// Calls the listeners of what has come on a queue, having waited for something until `end` at
/// most where nothing had been read yet, and sends what was asked for. False once the connection is
/// broken. `queue` is the connection's own when it is null. The thread that dispatches that queue;
/// others may read the connection at the same time.
bool dispatchWayland(wl_display* display,
                     std::chrono::steady_clock::time_point end,
                     wl_event_queue* queue = nullptr);

/// Waits until the compositor has seen all that was asked for on the connection, and its answers
/// on the queue have been dispatched. False when it doesn't by `end`, or the connection is broken.
/// Thread and `queue` as above.
bool roundTripWayland(wl_display* display,
                      std::chrono::steady_clock::time_point end,
                      wl_event_queue* queue = nullptr);

} // namespace tessarine
