#pragma once

#include "LauncherCore/catalog/AppRegistry.h"

#include <string_view>

/// Rows credit the parts of a desktop by fixed identifiers; this says which of the installed
/// applications each of them is here. Pure; any thread.
namespace tessarine::StandInApps {

/// The application of this id: one installed under it, else what takes its part on this desktop
/// (for the file manager, who opens folders), one that this desktop lists before another desktop's.
/// Null when neither is installed.
const InstalledApp* application(const AppRegistry& registry, std::string_view bundleID);

} // namespace tessarine::StandInApps
