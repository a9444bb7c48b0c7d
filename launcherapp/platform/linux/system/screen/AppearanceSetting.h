#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// Light or dark, through the setting of the running desktop. Main thread only.
namespace tessarine::AppearanceSetting {

Effect dark(const EffectContext& context);
Effect light(const EffectContext& context);

/// To whichever it is not now.
Effect toggle(const EffectContext& context);

/// With the time of day; missing everywhere, as each desktop that has it keeps its switch to
/// itself.
Effect automatic(const EffectContext& context);

} // namespace tessarine::AppearanceSetting
