#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/catalog/CatalogApp.h"
#include "LauncherCore/catalog/DesktopEntry.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One pass over the folders of desktop entries. Pure but for reading files; any thread.
namespace tessarine::AppScan {

/// How many folders below a root an application may sit.
inline constexpr int maximumDepth = 3;

/// Where applications are looked for, in order of precedence: the user's data folder, the
/// system's, Flatpak's and Snap's exports, then `extraFolders`. Each once; they need not exist.
std::vector<std::string> roots(const Environment& environment,
                               const std::vector<std::string>& extraFolders);

/// The entry in a file; nothing when it can't be read or is none.
std::optional<DesktopEntry>
entryAt(const FileStore& files, const std::string& path, const std::vector<std::string>& languages);

/// Whether a program, a path or a name on PATH, can be executed.
bool canExecute(const FileStore& files, const Environment& environment, std::string_view program);

struct Result {
    std::shared_ptr<const AppRegistry> registry; ///< everything found; never null
    std::vector<CatalogApp> apps;                ///< what is listed, in the user's alphabet
    std::vector<std::string> directories; ///< roots, and every folder opened below them, sorted
};

/// Reads every entry below `roots` once, however many ways lead to it. An entry, folder or link
/// that can't be read is passed over. Of equal desktop-file ids the first root's counts, also when
/// that one is hidden; but one that can't be used at all claims no id.
Result
scan(const FileStore& files, const Environment& environment, const std::vector<std::string>& roots);

} // namespace tessarine::AppScan
