#pragma once

#include <optional>
#include <string>

namespace tessarine {

/// The application that was in front at a copy.
struct ClipSource {
    std::optional<std::string> bundleID; ///< its desktop-file id; nothing when it isn't installed
    std::optional<std::string> name;     ///< as the user's language has it
};

} // namespace tessarine
