#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// Hidden files in the file manager, and the file manager itself. Main thread only.
namespace tessarine::FileManagerEffects {

/// Turns the setting of the program that opens folders; its windows follow by themselves.
Effect toggleHiddenFiles(const EffectContext& context);

/// Ends it with all its windows, and then starts it again with a window of its own.
Effect restart(const EffectContext& context);

} // namespace tessarine::FileManagerEffects
