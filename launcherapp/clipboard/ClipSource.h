#pragma once

#include "launcherapp/platform/WindowList.h"

#include <optional>
#include <string>

namespace tessarine {

/// The application that was in front at a copy.
struct ClipSource {
    std::optional<std::string> bundleID;  ///< its desktop-file id; nothing when it isn't installed
    std::optional<std::string> name;      ///< as the user's language has it
    std::optional<AppWindow> window = {}; ///< the one in front; nothing where none is known
};

} // namespace tessarine
