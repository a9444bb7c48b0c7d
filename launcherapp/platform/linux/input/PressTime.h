#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <cstdint>

namespace tessarine {

/// When a key went down, of which a display says `time`. A display on this machine counts
/// milliseconds by the same clock as the main queue, in 32 bits; any other's clock tells nothing,
/// and then `now` stands in, the main queue's uptime at the event's arrival. Pure; any thread.
Seconds pressedAt(std::uint32_t time, Seconds now);

} // namespace tessarine
