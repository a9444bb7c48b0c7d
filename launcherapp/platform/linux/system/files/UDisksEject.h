#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

namespace tessarine {

/// Ejects every external drive and every disk image of the user's, one after the other, through
/// UDisks2. A drive that is in use, or may be, stays as it is, and is named in the problem; those
/// that the system itself plainly runs on are passed over without a word. Main thread only.
namespace UDisksEject {

Effect ejectAll(const EffectContext& context);

} // namespace UDisksEject
} // namespace tessarine
