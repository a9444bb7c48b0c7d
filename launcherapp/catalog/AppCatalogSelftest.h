#pragma once

#include "launcherapp/operations/Selftest.h"
#include "launcherapp/platform/FileStore.h"

#include <string>

namespace tessarine {

/// Writes desktop entries into a folder of its own below `scratch`, reads them back with the
/// catalog's own code and requires their classification; then removes the folder. Any thread.
SelftestResult appCatalogSelftest(FileStore& files, const std::string& scratch);

} // namespace tessarine
