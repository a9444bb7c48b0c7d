#pragma once

#include "launcherapp/platform/Environment.h"

#include <string>

namespace tessarine {

/// The program's folder in the user's data, where its state files and its log lie. It need not
/// exist: whoever saves the first file makes it.
inline std::string supportDirectory(const Environment& environment) {
    return environment.dataHome + "/tessarine";
}

} // namespace tessarine
