#pragma once

#include <cstdint>

namespace tessarine {

/// The kernel's key ("linux/input-event-codes.h") that types a lower-case letter, a digit, a space
/// or a line end as keys are laid out in the United States. Throws std::out_of_range for any other.
std::uint32_t keyOf(char character);

} // namespace tessarine
