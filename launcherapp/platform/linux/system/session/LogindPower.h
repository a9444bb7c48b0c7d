#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// The machine's power, through logind (org.freedesktop.login1). Main thread only.
namespace tessarine::LogindPower {

Effect restart(const EffectContext& context);
Effect powerOff(const EffectContext& context);
Effect sleep(const EffectContext& context);

} // namespace tessarine::LogindPower
