#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

/// The trash, all of the user's. Main thread only.
namespace tessarine::TrashEffects {

/// Empties the home trash and those of every mounted file system, each apart, so that a drive that
/// hangs delays no other; it is named in the problem. It takes as long as files go.
Effect empty(const EffectContext& context);

/// Opens it in the file manager, or, where that knows no trash, the folder that holds the files.
Effect show(const EffectContext& context);

} // namespace tessarine::TrashEffects
