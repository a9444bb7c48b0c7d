#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

#include <vector>

namespace tessarine::ScreenSavers {

/// The screen savers on the session bus, which lock too; empty when none is there. Pure.
std::vector<BusTarget> present(const DesktopFacts& facts);

} // namespace tessarine::ScreenSavers
