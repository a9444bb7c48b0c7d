#pragma once

#include "launcherapp/operations/Selftest.h"

namespace tessarine {

/// Whether key presses, as the toolkit reports them, are told to be chords of the panel or not.
SelftestResult shortcutSelftest();

} // namespace tessarine
