#pragma once

#include <cstddef>

namespace tessarine {

/// How often this process has asked for heap memory so far.
std::size_t allocationCount();

} // namespace tessarine
