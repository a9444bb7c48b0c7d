#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// Pictures of the screen, which end in the clipboard. Main thread only.
namespace tessarine::Screenshots {

/// Through the desktop's own program, else through one that is installed, else through the desktop
/// portal. A picture that the user takes back is no problem.
Effect selection(const EffectContext& context);

/// The same, but one that lets the user click the window comes first. The manner says which window
/// is taken where that is another.
Effect window(const EffectContext& context);

} // namespace tessarine::Screenshots
