#pragma once

#include "launcherapp/operations/Selftest.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"

namespace tessarine {

/// Requires of the built-in commands that every action is reached and explained, that a user's own
/// command takes a built-in's place and words and no more, and of invented desktop entries that
/// the panes alone are told from them; each with something that must fail. What this machine has
/// is counted beside. Any thread; reads the machine's desktop entries.
SelftestResult systemCommandsSelftest(const FileStore& files, const Environment& environment);

} // namespace tessarine
