#pragma once

#include "launcherapp/platform/MountTable.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

/// The trash as the freedesktop standard for it (1.0) lays it out. Waits for disks: any thread but
/// the main one. No link is followed below a trash folder's parent, no mounted file system entered,
/// and nothing outside of the trash folders touched. What is thrown away while it is being emptied
/// stays, and so does the note of everything that stays, which can then still be put back. Where
/// not all that a folder holds can be told, nothing of it goes.
namespace tessarine::FreedesktopTrash {

/// Moved on by each thing that goes, so that whoever waits can tell a slow disk from a dead one.
using Progress = std::shared_ptr<std::atomic<std::size_t>>;

/// One wish to empty.
struct Order {
    uid_t user;                                ///< whose trash it must be
    std::chrono::system_clock::time_point now; ///< when it is wished
    Progress progress = std::make_shared<std::atomic<std::size_t>>(0);
};

/// What emptying some trash folders came to.
struct Emptied {
    std::size_t items = 0;             ///< things that were thrown away and are gone now
    std::vector<std::string> problems; ///< each a sentence; at most a few a folder
    bool isBusy = false;               ///< somebody empties it already, and it was left to them

    bool operator==(const Emptied&) const = default;
};

/// Empties the user's home trash, "Trash" in the data folder. One that isn't there is empty.
Emptied emptyHome(const std::string& dataHome, const Order& order);

/// Empties the user's two trash folders at the top of a mounted file system: ".Trash/1000", where
/// the administrator made a ".Trash" for all, and ".Trash-1000".
Emptied emptyMount(const std::string& mountPath, const Order& order);

/// Whether things can be thrown away on file systems of this type: not on the kernel's own, on
/// images that can't be written, or on what would only be mounted by a look.
bool mayHaveTrash(const Mount& mount);

} // namespace tessarine::FreedesktopTrash
