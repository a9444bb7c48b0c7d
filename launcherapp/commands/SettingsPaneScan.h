#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"

#include <optional>
#include <string>
#include <vector>

/// The settings panes among the installed desktop entries. Pure but for reading files; any thread.
namespace tessarine::SettingsPaneScan {

struct Result {
    std::vector<CommandSpec> panes; ///< in the user's alphabet
    /// The folder of the system's own entries, when no folder of entries at all can be listed.
    std::optional<std::string> unreadable;
};

/// Reads again those entries of the catalog's scan that open a page of a control centre: the scan
/// has settled which of several files of one id counts, but not for which desktops each is.
Result scan(const FileStore& files, const Environment& environment, const AppRegistry& registry);

} // namespace tessarine::SettingsPaneScan
