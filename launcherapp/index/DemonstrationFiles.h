#pragma once

#include "launcherapp/index/IndexRebuild.h"

#include <vector>

namespace tessarine {

/// Invented files and folders for pictures and trials, below a folder that exists nowhere. Pure;
/// any thread.
std::vector<SharedItems> demonstrationFiles();

} // namespace tessarine
