// A drive's first walk, which may stand for minutes and must hold up nothing else.

#include "launcherapp/index/FileIndex.h"
#include "launcherapp/index/IndexRoots.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <utility>

namespace tessarine {

struct FileIndex::DriveWalk {
    SharedItems items; ///< null when the drive could not be opened
    IndexRebuild::DriveCounts counts;
    std::vector<std::string> directories; ///< to be watched
    double millis = 0;
    double startedAt = 0;
};

void FileIndex::noteDrive(const std::string& path, const IndexRebuild::DriveCounts& counts) {
    volumes_.setReadable(path, true);
    volumes_.setStatus(
        path, fmt::format("{} folders and {} files indexed", counts.folders, counts.files));
}

void FileIndex::noteUnreadableDrive(const std::string& path) {
    volumes_.setReadable(path, false);
    volumes_.setStatus(path, "Tessarine needs permission to read this drive");
}

void FileIndex::walkDrive(const std::string& path, const std::string& name) {
    if (!drivesInFlight_.insert(path).second)
        return;
    volumes_.setStatus(path, "indexing…");
    const auto opened = std::make_shared<std::atomic<bool>>(false);
    doors_.queue.postAfter(driveNotice, [this, path, name, opened, alive = std::weak_ptr(alive_)] {
        if (alive.expired() || !drivesInFlight_.contains(path) || *opened)
            return;
        volumes_.setStatus(path, "waiting for you to allow access in the macOS dialog");
        doors_.diagnostics.log(
            fmt::format("file index: drive {} has not opened after 5 s; macOS is "
                        "most likely asking for Removable Volumes access",
                        name));
    });
    const auto budget = IndexRoots::totalCap - static_cast<std::int64_t>(index_->size());
    doors_.work.runApart(
        [walker = walker_, path, name, opened, budget, now = doors_.queue.now()] {
            DriveWalk walk{.startedAt = now};
            *opened = walker->opens(path);
            const auto policy = IndexRoots::policy(IndexRoots::Kind::drive, budget);
            const auto result = walker->walkTree(path, 1, policy);
            if (!result.opened)
                return walk;
            walk.items = IndexRebuild::withDriveItself(path, name, result.items);
            walk.counts = IndexRebuild::driveCounts(*walk.items);
            walk.directories = IndexRoots::openedDirectories(path, *walk.items, policy);
            walk.millis = result.millis;
            return walk;
        },
        [this, path, name, alive = std::weak_ptr(alive_)](DriveWalk walk) {
            if (!alive.expired())
                publishDrive(path, name, std::move(walk));
        });
}

void FileIndex::publishDrive(const std::string& path, const std::string& name, DriveWalk walk) {
    drivesInFlight_.erase(path);
    if (std::ranges::count(roots(), path) == 0)
        return;
    if (!walk.items) {
        noteUnreadableDrive(path);
        doors_.diagnostics.log(fmt::format("file index: drive {} could not be opened (Removable "
                                           "Volumes access not granted, or the drive left)",
                                           name));
        return;
    }
    noteDrive(path, walk.counts);
    perRoot_[path] = walk.items;
    lastFullWalk_[path] = doors_.queue.now();
    readAt_[path] = walk.startedAt;
    doors_.diagnostics.log(fmt::format("file index: drive {}: {} folders + {} files in {:.0f} ms",
                                       name,
                                       walk.counts.folders,
                                       walk.counts.files,
                                       walk.millis));
    if (stream_)
        stream_->cover(path, std::move(walk.directories), walk.startedAt);
    republishNeeded_ = true;
    if (building_)
        pending_ = true;
    else
        rebuild(Force::no);
}

} // namespace tessarine
