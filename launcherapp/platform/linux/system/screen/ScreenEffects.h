#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// What the screens show when nobody looks. Main thread only.
namespace tessarine::ScreenEffects {

/// Turns the screens off, where the next key or movement turns them on again.
Effect sleepDisplays(const EffectContext& context);

Effect startScreenSaver(const EffectContext& context);

} // namespace tessarine::ScreenEffects
