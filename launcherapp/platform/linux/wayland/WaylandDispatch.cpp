#include "launcherapp/platform/linux/wayland/WaylandDispatch.h"

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <poll.h>

namespace tessarine {

bool dispatchWayland(wl_display* display, std::chrono::steady_clock::time_point end) {
    while (wl_display_prepare_read(display) != 0) {
        if (wl_display_dispatch_pending(display) < 0)
            return false;
    }
    wl_display_flush(display);
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now())
            .count();
    pollfd wanted{.fd = wl_display_get_fd(display), .events = POLLIN, .revents = 0};
    const int ready = ::poll(&wanted, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
    if (ready <= 0) {
        wl_display_cancel_read(display);
        return ready == 0 || errno == EINTR;
    }
    return wl_display_read_events(display) == 0 && wl_display_dispatch_pending(display) >= 0;
}

} // namespace tessarine
