#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Removing what is in a folder, by its open descriptor, so that no link and no renamed parent can
/// lead elsewhere. Waits for the disk; any thread but the main one.
namespace tessarine::TreeRemoval {

/// What is in a folder.
struct Listing {
    std::vector<std::string> names;
    int error = 0; ///< errno's; when it isn't 0, there may be more than `names`
};

/// All names in an open folder.
Listing names(int folder);

/// A folder that was opened.
struct OpenedFolder {
    FileDescriptor folder; ///< none when it could not be opened
    int error = 0;         ///< errno's, why not; EXDEV for a mounted file system
};

/// Opens the folder of this name in an open one: never a link, never what is mounted there.
OpenedFolder openFolder(int parent, const std::string& name);

/// Removes what has this name in an open folder, with all that it holds, however deep. Nothing on
/// success, and when it was gone already; else the first thing that was in the way, in words. A
/// link is removed as such; a file system mounted below is left alone, with the folders above it,
/// and so is a folder that can't be listed whole. `removed` is moved on by each thing that goes.
std::optional<std::string>
remove(int parent, const std::string& name, std::atomic<std::size_t>& removed);

} // namespace tessarine::TreeRemoval
