#pragma once

#include "launcherapp/operations/Selftest.h"

namespace tessarine {

// Both run on pasteboards in memory: nothing of the desktop's is read or changed. Any thread.

/// Requires that nothing that is marked secret is read or kept, whatever rides along, and that what
/// is pinned outlives retention, cap and clearing; each with a control that must be kept or go.
SelftestResult clipSacredSelftest();

/// Requires that file lists are kept as files, come back as they were, and that a picture that two
/// clippings share outlives one of them.
SelftestResult clipFileSelftest();

} // namespace tessarine
