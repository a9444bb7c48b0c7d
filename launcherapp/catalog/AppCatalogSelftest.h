#pragma once

#include "launcherapp/operations/Selftest.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"

namespace tessarine {

/// Writes desktop entries into a folder of its own below the temporary one, reads them back with
/// the catalog's own code and requires their classification; then removes the folder. Nothing is
/// measured when the folder can't be written. Any thread.
SelftestResult appCatalogSelftest(FileStore& files, const Environment& environment);

} // namespace tessarine
