#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"
#include "launcherapp/platform/linux/system/files/UDisksTree.h"

namespace tessarine {

/// Ejects every external drive and every disk image of the user's, one after the other, through
/// UDisks2. A drive that is in use stays as it is, and is named in the problem. Main thread only.
namespace UDisksEject {

Effect ejectAll(const EffectContext& context);

} // namespace UDisksEject
} // namespace tessarine
