#pragma once

#include "launcherapp/platform/MountTable.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The trash as the freedesktop Trash specification (1.0) lays it out. Waits for disks: any thread
/// but the main one. No link is followed below a trash folder's parent, no mounted file system
/// entered, and nothing outside of the trash folders touched.
namespace tessarine::FreedesktopTrash {

/// What emptying some trash folders came to.
struct Emptied {
    std::size_t items = 0;             ///< things that were thrown away and are gone now
    std::vector<std::string> problems; ///< each a sentence; at most a few a folder

    bool operator==(const Emptied&) const = default;
};

/// Empties the user's home trash, "Trash" in the data folder. One that isn't there is empty.
Emptied emptyHome(const std::string& dataHome, unsigned user);

/// Empties the user's two trash folders at the top of a mounted file system: ".Trash/1000", where
/// the administrator made a ".Trash" for all, and ".Trash-1000".
Emptied emptyMount(const std::string& mountPath, unsigned user);

/// Whether things can be thrown away on file systems of this type: not on the kernel's own, on
/// images that can't be written, or on what would only be mounted by a look.
bool mayHaveTrash(const Mount& mount);

} // namespace tessarine::FreedesktopTrash
