#pragma once

#include "launcherapp/platform/Environment.h"

#include <string>

namespace tessarine {

/// A run on canned data has no private stores: nothing of the user's is read or written.
namespace Demonstration {

/// The surroundings of a run whose settings, state and own folders all lie below `folder`.
Environment surroundings(Environment environment, const std::string& folder);

} // namespace Demonstration
} // namespace tessarine
