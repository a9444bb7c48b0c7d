#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// The end of the user's session through the desktop's session manager, which asks the apps, and on
/// some desktops the user. Where none is known for an action, it is the immediate one, and the
/// effect's manner says that nobody is asked. Main thread only.
namespace tessarine::SessionEnd {

Effect askingRestart(const EffectContext& context);
Effect askingShutDown(const EffectContext& context);
Effect askingLogOut(const EffectContext& context);

/// Without a question to the user; else logind ends the session.
Effect logOut(const EffectContext& context);

} // namespace tessarine::SessionEnd
