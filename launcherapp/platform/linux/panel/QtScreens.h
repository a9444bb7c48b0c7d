#pragma once

#include "launcherapp/platform/Screen.h"

#include <vector>

namespace tessarine {

/// The monitors as Qt knows them, in its order; the stand-in without a size that it has while there
/// is none is left out. Main thread only.
std::vector<Screen> qtScreens();

} // namespace tessarine
