// The walks of drives, each on a thread of its own: one may stand for minutes or for ever, and must
// hold up nothing else.

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

/// What is to be done on a drive, as values for its thread.
struct FileIndex::DriveJob {
    std::string path;
    std::string name;
    std::uint64_t number = 0;         ///< of this walk: a later one's result counts alone
    std::vector<std::string> changed; ///< directories to look at again; none: a whole walk
    SharedItems items;                ///< what is known of the drive, for those
    bool isKnown = false;             ///< its files were read before
    IndexWalker::Policy policy;
    double startedAt = 0; ///< seconds since 1970, UTC
    std::shared_ptr<std::atomic<bool>> opened = std::make_shared<std::atomic<bool>>(false);
};

struct FileIndex::DriveWalk {
    SharedItems items; ///< null when the drive could not be opened
    IndexRebuild::DriveCounts counts;
    std::vector<std::string> directories; ///< to be watched
    bool fullWalkNeeded = false;
    double millis = 0;
};

void FileIndex::noteUnreadableDrive(const DriveJob& job) {
    volumes_.noteUnreadable(job.path);
    volumes_.setStatus(job.path, "Tessarine needs permission to read this drive");
    doors_.diagnostics.log(
        fmt::format("file index: drive {} could not be opened (Removable Volumes "
                    "access not granted, or the drive left)",
                    job.name));
}

void FileIndex::walkDrive(const std::string& path) {
    if (drivesInFlight_.contains(path))
        return;
    dirtyRoots_.erase(path);
    dirtyDirs_.erase(path);
    const auto known = perRoot_.find(path);
    const auto held = known == perRoot_.end() ? 0 : known->second->size();
    const auto others = index_->size() - std::min(index_->size(), held);
    const auto budget = IndexRoots::totalCap - static_cast<std::int64_t>(others);
    volumes_.setStatus(path, "indexing…");
    DriveJob job{.path = path,
                 .name = volumes_.indexedNames().at(path),
                 .isKnown = held > 0,
                 .policy = IndexRoots::policy(IndexRoots::Kind::drive, budget)};
    doors_.queue.postAfter(
        driveNotice,
        [this, path, name = job.name, opened = job.opened, alive = std::weak_ptr(alive_)] {
            if (alive.expired() || !drivesInFlight_.contains(path) || *opened)
                return;
            volumes_.setStatus(path, "waiting for you to allow access in the macOS dialog");
            doors_.diagnostics.log(
                fmt::format("file index: drive {} has not opened after 5 s; macOS is most likely "
                            "asking for Removable Volumes access",
                            name));
        });
    runApart(std::move(job));
}

void FileIndex::repairDrive(const std::string& path) {
    if (drivesInFlight_.contains(path))
        return;
    const auto dirty = dirtyDirs_.extract(path);
    const auto known = perRoot_.at(path);
    const auto others = index_->size() - std::min(index_->size(), known->size());
    const auto budget = IndexRoots::totalCap - static_cast<std::int64_t>(others);
    runApart({.path = path,
              .name = volumes_.indexedNames().at(path),
              .changed = {dirty.mapped().begin(), dirty.mapped().end()},
              .items = known,
              .isKnown = true,
              .policy = IndexRoots::policy(IndexRoots::Kind::drive, budget)});
}

void FileIndex::runApart(DriveJob job) {
    job.number = ++lastDriveWalk_;
    job.startedAt = doors_.queue.now();
    drivesInFlight_[job.path] = job.number;
    doors_.work.runApart(
        [walker = walker_, job] {
            DriveWalk walk;
            if (job.items) {
                auto repaired = walker->reconcile(
                    job.path, job.changed, job.policy, *job.items, IndexRebuild::largestBatch);
                walk.fullWalkNeeded = repaired.fullWalkNeeded;
                walk.millis = repaired.millis;
                walk.items = std::make_shared<const ItemList>(std::move(repaired.items));
            } else {
                *job.opened = walker->opens(job.path);
                const auto walked = walker->walkTree(job.path, 1, job.policy);
                // A part of the files must not take the place of all.
                if (!walked.opened || (walked.partial && job.isKnown))
                    return walk;
                walk.millis = walked.millis;
                walk.items = IndexRebuild::withDriveItself(job.path, job.name, walked.items);
            }
            walk.counts = IndexRebuild::driveCounts(*walk.items);
            walk.directories = IndexRoots::openedDirectories(job.path, *walk.items, job.policy);
            return walk;
        },
        [this, job, alive = std::weak_ptr(alive_)](DriveWalk walk) {
            if (!alive.expired())
                publishDrive(job, std::move(walk));
        });
}

void FileIndex::publishDrive(const DriveJob& job, DriveWalk walk) {
    // The drive may have left, and another may stand in its place by now.
    const auto flight = drivesInFlight_.find(job.path);
    if (flight == drivesInFlight_.end() || flight->second != job.number)
        return;
    drivesInFlight_.erase(flight);
    if (std::ranges::count(roots(), job.path) == 0)
        return;
    if (!walk.items) {
        noteUnreadableDrive(job);
        return;
    }
    if (walk.fullWalkNeeded)
        dirtyRoots_.insert(job.path);
    volumes_.noteReadable(job.path);
    volumes_.setStatus(
        job.path,
        fmt::format("{} folders and {} files indexed", walk.counts.folders, walk.counts.files));
    perRoot_[job.path] = walk.items;
    if (!job.items) {
        lastFullWalk_[job.path] = doors_.queue.now();
        readAt_[job.path] = job.startedAt;
        lastBuildMillis_ = std::max(lastBuildMillis_, walk.millis);
        lastWalkEndedAt_ = doors_.queue.uptime();
        doors_.diagnostics.log(
            fmt::format("file index: drive {}: {} folders + {} files in {:.0f} ms",
                        job.name,
                        walk.counts.folders,
                        walk.counts.files,
                        walk.millis));
    }
    if (stream_)
        stream_->cover(job.path, std::move(walk.directories), job.startedAt);
    republishNeeded_ = true;
    if (building_)
        pending_ = true;
    else
        rebuild(Force::no);
}

/// Nothing that was known of a drive holds for the next one in its place, not even that a walk of
/// it is under way: the thread of one that hangs may never come back.
void FileIndex::forgetDrivesThatLeft() {
    std::map<std::string, std::string> sources;
    for (const auto& drive : volumes_.drives())
        sources.emplace(drive.path, drive.source);
    for (const auto& [path, source] : driveSources_) {
        const auto now = sources.find(path);
        if (now != sources.end() && now->second == source)
            continue;
        drivesInFlight_.erase(path);
        dirtyRoots_.erase(path);
        dirtyDirs_.erase(path);
        lastFullWalk_.erase(path);
        readAt_.erase(path);
        if (perRoot_.erase(path) > 0)
            republishNeeded_ = true;
    }
    driveSources_ = std::move(sources);
}

} // namespace tessarine
