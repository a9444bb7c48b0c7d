#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// Removing what is in a folder, by its open descriptor, so that no link and no renamed parent can
/// lead elsewhere. Waits for the disk; any thread but the main one.
namespace tessarine::TreeRemoval {

/// The names in an open folder. Empty when it can't be read.
std::vector<std::string> names(int folder);

/// Opens the folder of this name in an open one: never a link, never another file system mounted
/// there. A negative number and errno when that isn't so; EXDEV for a mounted one.
int openFolder(int parent, const std::string& name);

/// Removes what has this name in an open folder, with all that it holds. Nothing on success, and
/// when it was gone already; else the first thing that was in the way, in words. A link is removed
/// as such; a file system mounted below is left alone, with the folders above it.
std::optional<std::string> remove(int parent, const std::string& name);

} // namespace tessarine::TreeRemoval
