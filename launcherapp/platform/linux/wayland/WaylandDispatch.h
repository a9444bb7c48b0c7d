#pragma once

#include <chrono>

struct wl_display;

namespace tessarine {

/// Calls the listeners of what has come on a connection's own queue, having waited for something
/// until `end` at most, and sends what was asked for. False once the connection is broken. The
/// thread that dispatches that queue; others may read the connection at the same time.
bool dispatchWayland(wl_display* display, std::chrono::steady_clock::time_point end);

} // namespace tessarine
