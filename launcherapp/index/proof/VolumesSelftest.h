#pragma once

#include "launcherapp/operations/Selftest.h"

namespace tessarine {

/// Reads a made-up list of mounts and requires which of them are the user's drives, under which
/// names, and which the user's exclusions take out. Touches no drive. Any thread.
SelftestResult volumesSelftest();

} // namespace tessarine
