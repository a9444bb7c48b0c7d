#pragma once

#include <string_view>

namespace tessarine {

/// The value of environment variables that this process sets for itself and whose value nobody
/// reads: what it starts doesn't get them.
inline constexpr std::string_view ownVariableValue = "for-tessarine-alone";

} // namespace tessarine
