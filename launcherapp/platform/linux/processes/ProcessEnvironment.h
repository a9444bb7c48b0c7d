#pragma once

#include "launcherapp/platform/Environment.h"

namespace tessarine {

/// The environment of this process. Main thread only, before anything changes a variable.
Environment processEnvironment();

} // namespace tessarine
