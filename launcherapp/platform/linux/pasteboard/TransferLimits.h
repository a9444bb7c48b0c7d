#pragma once

#include <chrono>

namespace tessarine {

/// How long another program is waited for when something goes over the clipboard.
struct TransferLimits {
    std::chrono::milliseconds silence{5000}; ///< between two signs of life
    std::chrono::milliseconds whole{60000};  ///< of one reading, however lively
};

using TransferClock = std::chrono::steady_clock;

} // namespace tessarine
