#pragma once

#include "LauncherCore/catalog/CatalogApp.h"

#include <vector>

namespace tessarine {

/// Invented applications for pictures and trials, in alphabetical order. Pure; any thread.
std::vector<CatalogApp> demonstrationApps();

} // namespace tessarine
