#pragma once

#include "launcherapp/index/IndexRebuild.h"
#include "launcherapp/platform/DirectoryReader.h"

#include <memory>
#include <vector>

namespace tessarine {

/// Invented files and folders for pictures and trials, below a folder that exists nowhere. Pure;
/// any thread.
std::vector<SharedItems> demonstrationFiles();

/// What these folders hold, for whoever goes into one. No disk is read; any thread.
std::shared_ptr<const DirectoryReader> demonstrationFolders();

} // namespace tessarine
