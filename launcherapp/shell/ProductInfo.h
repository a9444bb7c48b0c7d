#pragma once

#include <string_view>

/// What this program is. `version` and `build` come from the build.
namespace tessarine::ProductInfo {

inline constexpr std::string_view name = "Tessarine";
inline constexpr std::string_view version = TESSARINE_VERSION;
inline constexpr std::string_view build = TESSARINE_BUILD;
/// What the desktop, the session bus and other copies know the program by.
inline constexpr std::string_view bundleID = "com.corvane.tessarine";

} // namespace tessarine::ProductInfo
