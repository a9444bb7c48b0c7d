#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// The user's session: its lock, and the shell that draws its panel. Main thread only.
namespace tessarine::SessionEffects {

/// Through whatever locks here. logind alone locks nothing: it only tells lockers to.
Effect lock(const EffectContext& context);

/// Starts the desktop's shell or panel anew, where the session surely survives that.
Effect restartShell(const EffectContext& context);

} // namespace tessarine::SessionEffects
