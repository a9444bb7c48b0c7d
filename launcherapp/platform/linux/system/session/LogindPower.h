#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// The machine's power, through logind (org.freedesktop.login1). Main thread only.
namespace tessarine::LogindPower {

/// Each at once; whoever runs apps has asked them before. logind may ask for a password.
Effect restart(const EffectContext& context);
Effect powerOff(const EffectContext& context);
Effect sleep(const EffectContext& context);

/// Why logind refuses it; nothing where it doesn't, or isn't there.
std::optional<std::string> whyNoRestart(const DesktopFacts& facts);
std::optional<std::string> whyNoPowerOff(const DesktopFacts& facts);

} // namespace tessarine::LogindPower
