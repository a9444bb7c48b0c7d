#pragma once

#include "launcherapp/platform/MountTable.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class Diagnostics;
class IndexWalker;
class Prefs;

/// A drive of the user's: a file system mounted below /media, /run/media or /mnt.
struct MountedDrive {
    std::string path;   ///< of the mount point
    std::string name;   ///< to show: the last part of the path
    std::string source; ///< the device or share; another one at the same place is another drive

    bool operator==(const MountedDrive&) const = default;
};

/// The drives that come and go, which of them the index takes in, and what there is to say of
/// each. Main thread only; asks no drive anything, since one that hangs would hang us.
class MountedVolumes {
public:
    MountedVolumes(MountTable& mounts, Prefs& prefs, IndexWalker& walker, Diagnostics& diagnostics);

    /// Which of the mounts are drives, by path: those at "/media/X", "/media/USER/X",
    /// "/run/media/USER/X", "/mnt" and "/mnt/X", but for file systems that hold no files of the
    /// user's. Of two with one path, the later.
    static std::vector<MountedDrive> drivesAmong(std::span<const Mount> mounts);

    /// Whether the user left the drive out; `excluded` holds paths and names.
    static bool isExcluded(const MountedDrive& drive, std::span<const std::string> excluded);

    /// Once. From then on `changed` is called, with a reason in a few words, within seconds of
    /// each arrival and departure, and when the user includes or excludes drives. The walks of a
    /// drive that has left are aborted first.
    void start(std::function<void(std::string_view reason)> changed);

    /// All drives of the user's that are mounted, by path.
    const std::vector<MountedDrive>& drives() const { return drives_; }

    std::vector<std::string> mountedDrivePaths() const;

    /// The drives that are to be indexed, by path: none when drives are off altogether, and none
    /// that the user left out (by path or name).
    std::vector<std::string> indexRoots() const;

    /// Display names of `indexRoots`, by path.
    std::map<std::string, std::string> indexedNames() const;

    /// What to say of a drive: its index is being made, how much it holds, why it can't be read.
    /// Empty when there is nothing to say yet.
    std::string status(const std::string& path) const;
    void setStatus(const std::string& path, std::string status);

    const std::set<std::string>& unreadable() const { return unreadable_; }

    void noteReadable(const std::string& path);
    void noteUnreadable(const std::string& path);

private:
    void refresh();
    void leave(const MountedDrive& drive);

    MountTable& mounts_;
    Prefs& prefs_;
    IndexWalker& walker_;
    Diagnostics& diagnostics_;
    std::vector<MountedDrive> drives_;
    std::map<std::string, std::string> statuses_;
    std::set<std::string> unreadable_;
    std::function<void(std::string_view)> changed_;
    Subscription mountChanges_;
    Subscription preferenceChanges_;
};

} // namespace tessarine
