#include "launcherapp/index/MountedVolumes.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/shell/Prefs.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

/// File systems of the kernel's own, and those that live in memory or mount others on demand: what
/// desktops and containers put beside the drives.
constexpr auto pseudoTypes = std::to_array<std::string_view>({
    "autofs",     "binfmt_misc", "bpf",      "cgroup",   "cgroup2", "configfs",
    "debugfs",    "devpts",      "devtmpfs", "efivarfs", "fusectl", "hugetlbfs",
    "mqueue",     "nfsd",        "nsfs",     "proc",     "pstore",  "ramfs",
    "rpc_pipefs", "securityfs",  "sysfs",    "tmpfs",    "tracefs",
});

/// A folder in which drives are mounted, and how many names below it a drive's path has at least
/// and at most.
struct Place {
    std::string_view folder;
    std::ptrdiff_t least;
    std::ptrdiff_t most;
};

constexpr auto places = std::to_array<Place>({
    {.folder = "/media", .least = 1, .most = 2},
    {.folder = "/run/media", .least = 2, .most = 2},
    {.folder = "/mnt", .least = 0, .most = 1},
});

bool isDrivePath(std::string_view path) {
    return std::ranges::any_of(places, [path](const Place& place) {
        if (!path.starts_with(place.folder))
            return false;
        const auto below = path.substr(place.folder.size());
        // "/media2" is beside it, not below.
        if (!below.empty() && below.front() != '/')
            return false;
        const auto names = std::ranges::count(below, '/');
        return names >= place.least && names <= place.most;
    });
}

/// "A, B mounted; C left"
std::string reasonFor(const std::vector<MountedDrive>& arrived,
                      const std::vector<MountedDrive>& departed) {
    std::string reason;
    const auto add = [&reason](const std::vector<MountedDrive>& drives, std::string_view what) {
        std::string names;
        for (const auto& drive : drives)
            names += (names.empty() ? "" : ", ") + drive.name;
        if (!names.empty())
            reason.append(reason.empty() ? "" : "; ").append(names).append(what);
    };
    add(arrived, " mounted");
    add(departed, " left");
    return reason;
}

std::vector<MountedDrive> without(const std::vector<MountedDrive>& drives,
                                  const std::vector<MountedDrive>& known) {
    std::vector<MountedDrive> rest;
    for (const auto& drive : drives) {
        if (std::ranges::find(known, drive) == known.end())
            rest.push_back(drive);
    }
    return rest;
}

} // namespace

std::vector<MountedDrive> MountedVolumes::drivesAmong(std::span<const Mount> mounts) {
    std::map<std::string, MountedDrive> byPath;
    for (const auto& mount : mounts) {
        if (!isDrivePath(mount.path))
            continue;
        byPath.erase(mount.path); // hidden by this one, whatever this one is
        if (std::ranges::find(pseudoTypes, mount.type) == pseudoTypes.end())
            byPath[mount.path] = {.path = mount.path,
                                  .name = std::string(Paths::lastPart(mount.path)),
                                  .source = mount.source};
    }
    std::vector<MountedDrive> drives;
    drives.reserve(byPath.size());
    for (auto& [path, drive] : byPath)
        drives.push_back(std::move(drive));
    return drives;
}

bool MountedVolumes::isExcluded(const MountedDrive& drive, std::span<const std::string> excluded) {
    return std::ranges::any_of(excluded, [&drive](std::string_view entry) {
        const auto named = Paths::withoutEndSlashes(entry);
        return named == drive.path || named == drive.name;
    });
}

MountedVolumes::MountedVolumes(MountTable& mounts,
                               Prefs& prefs,
                               IndexWalker& walker,
                               Diagnostics& diagnostics)
    : mounts_(mounts), prefs_(prefs), walker_(walker), diagnostics_(diagnostics),
      drives_(drivesAmong(mounts.mounts())) {}

void MountedVolumes::start(std::function<void(std::string_view)> changed) {
    changed_ = std::move(changed);
    mountChanges_ = mounts_.onChange([this] { refresh(); });
    preferenceChanges_ = prefs_.onChange([this](std::string_view key) {
        if (key == prefs_.indexExternalDrives.key() || key == prefs_.excludedDrives.key())
            changed_("the settings of drives");
    });
    if (mounts_.mounts().empty())
        diagnostics_.log("drives: the system names no mounts, so no drive is indexed");
    refresh(); // what came or left since we were made
}

void MountedVolumes::refresh() {
    auto drives = drivesAmong(mounts_.mounts());
    const auto arrived = without(drives, drives_);
    const auto departed = without(drives_, drives);
    if (arrived.empty() && departed.empty())
        return; // the mounts of others: containers, the system's own
    drives_ = std::move(drives);
    for (const auto& drive : departed)
        leave(drive);
    std::vector<std::string> here;
    here.reserve(arrived.size());
    for (const auto& drive : arrived)
        here.push_back(drive.path);
    walker_.readmit(here);
    changed_(reasonFor(arrived, departed));
    std::vector<std::string> left;
    left.reserve(departed.size());
    for (const auto& drive : departed)
        left.push_back(drive.path);
    // A folder of the user's may stand where the drive was mounted, and is walked like any other.
    walker_.readmitWhenIdle(left);
}

void MountedVolumes::leave(const MountedDrive& drive) {
    walker_.abort(drive.path);
    statuses_.erase(drive.path);
    unreadable_.erase(drive.path);
}

std::vector<std::string> MountedVolumes::mountedDrivePaths() const {
    std::vector<std::string> paths;
    paths.reserve(drives_.size());
    for (const auto& drive : drives_)
        paths.push_back(drive.path);
    return paths;
}

std::map<std::string, std::string> MountedVolumes::indexedNames() const {
    std::map<std::string, std::string> names;
    if (!prefs_.indexExternalDrives())
        return names;
    for (const auto& drive : drives_) {
        if (!isExcluded(drive, prefs_.excludedDrives()))
            names.emplace(drive.path, drive.name);
    }
    return names;
}

std::vector<std::string> MountedVolumes::indexRoots() const {
    std::vector<std::string> roots;
    for (const auto& [path, name] : indexedNames())
        roots.push_back(path);
    return roots;
}

std::string MountedVolumes::status(const std::string& path) const {
    const auto found = statuses_.find(path);
    return found == statuses_.end() ? std::string() : found->second;
}

void MountedVolumes::setStatus(const std::string& path, std::string status) {
    statuses_[path] = std::move(status);
}

void MountedVolumes::noteReadable(const std::string& path) {
    unreadable_.erase(path);
}

void MountedVolumes::noteUnreadable(const std::string& path) {
    unreadable_.insert(path);
}

} // namespace tessarine
