#pragma once

#include "launcherapp/operations/Selftest.h"

namespace tessarine {

/// Whether every text and mark of every preset can be told from what it is drawn on. Pure; any
/// thread.
SelftestResult appearanceSelftest();

} // namespace tessarine
