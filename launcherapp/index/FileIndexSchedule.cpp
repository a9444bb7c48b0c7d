// When the file index is rebuilt, what of it, and how the result takes its place.

#include "launcherapp/index/FileIndex.h"
#include "launcherapp/index/IndexRoots.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// On the clock that only goes forward, in seconds.
std::function<double()> clockOf(const MainQueue& queue) {
    return [&queue] { return queue.uptime().count(); };
}

} // namespace

void FileIndex::scheduleRebuild() {
    if (rebuildScheduled_)
        return;
    rebuildScheduled_ = true;
    const auto wait = coalesce_;
    const auto ceiling = unchangedRuns_ > 1 ? longestWhenIdle : longestCoalesce;
    coalesce_ = std::min(wait * 2, ceiling);
    doors_.queue.postAfter(wait, [this, wait, alive = std::weak_ptr(alive_)] {
        if (alive.expired())
            return;
        rebuildScheduled_ = false;
        rebuild(Force::no);
        scheduleReset(wait);
    });
}

void FileIndex::scheduleReset(Seconds wait) {
    doors_.queue.postAfter(wait, [this, alive = std::weak_ptr(alive_)] {
        if (alive.expired())
            return;
        const bool stillIdle = rebuildScheduled_ && unchangedRuns_ != 0;
        if (!stillIdle)
            coalesce_ = shortestCoalesce;
    });
}

std::vector<std::string> FileIndex::rootsToWalk(const std::vector<std::string>& roots,
                                                Force force) const {
    if (force == Force::yes)
        return roots;
    const auto now = doors_.queue.now();
    std::vector<std::string> full;
    for (const auto& root : roots) {
        const auto walked = lastFullWalk_.find(root);
        if (dirtyRoots_.contains(root) || !perRoot_.contains(root) ||
            walked == lastFullWalk_.end() || now - walked->second > fullWalkInterval.count())
            full.push_back(root);
    }
    return full;
}

bool FileIndex::isHeld(const std::vector<std::string>& shared, Force force) {
    const bool walkedBefore = std::ranges::any_of(shared, [&](const std::string& root) {
        return perRoot_.contains(root) || lastFullWalk_.contains(root);
    });
    if (force == Force::yes || !walkedBefore || !lastWalkEndedAt_)
        return false;
    const double walkSeconds = lastBuildMillis_ / 1000;
    const Seconds hold{IndexRoots::holdSeconds(walkSeconds)};
    const Seconds left = *lastWalkEndedAt_ + hold - doors_.queue.uptime();
    if (left <= Seconds{0})
        return false;
    if (holdScheduled_)
        return true;
    holdScheduled_ = true;
    doors_.diagnostics.log(fmt::format("file index: walk held for {:.0f}s more (last walk {:.0f}s; "
                                       "holding the index under a tenth of a core)",
                                       left.count(),
                                       walkSeconds));
    doors_.queue.postAfter(left, [this, alive = std::weak_ptr(alive_)] {
        if (alive.expired())
            return;
        holdScheduled_ = false;
        rebuild(Force::no);
    });
    return true;
}

void FileIndex::rebuild(Force force) {
    requireMainThread(doors_.queue);
    if (run_ == Run::demonstration)
        return;
    if (building_) {
        pending_ = true;
        pendingForce_ = pendingForce_ || force == Force::yes;
        return;
    }
    const auto current = roots();
    const auto drives = volumes_.indexedNames();
    Expectation expected{.digests = digests()};
    std::set<std::string> walked;
    for (const auto& [root, items] : perRoot_) {
        walked.insert(root);
        expected.rootsChanged = expected.rootsChanged || std::ranges::count(current, root) == 0;
    }
    auto [shared, onTheirOwn] =
        IndexRoots::splitFirstDriveWalks(rootsToWalk(current, force), drives, walked);
    for (const auto& path : onTheirOwn)
        walkDrive(path);

    std::vector<std::string> deltaRoots;
    for (const auto& root : current) {
        const auto dirty = dirtyDirs_.find(root);
        if (std::ranges::count(shared, root) == 0 && perRoot_.contains(root) &&
            dirty != dirtyDirs_.end() && !dirty->second.empty())
            deltaRoots.push_back(root);
    }
    // A drive that hangs must delay nothing: what is looked at again of one has a thread of its
    // own as well.
    std::erase_if(deltaRoots, [&](const std::string& root) {
        if (drives.contains(root))
            repairDrive(root);
        return drives.contains(root);
    });
    expected.republish = std::exchange(republishNeeded_, false);
    if (shared.empty() && deltaRoots.empty() && !expected.rootsChanged && !expected.republish) {
        // But for the drives that are being walked: what changed there meanwhile comes after.
        std::erase_if(dirtyRoots_,
                      [&](const std::string& root) { return !drivesInFlight_.contains(root); });
        return;
    }
    // Only the walks wait; what is cheap goes on, and the roots that are held stay dirty.
    if (!shared.empty() && isHeld(shared, force))
        shared.clear();
    std::erase_if(shared, [&](const std::string& root) {
        if (drives.contains(root))
            walkDrive(root);
        return drives.contains(root);
    });
    if (shared.empty() && deltaRoots.empty() && !expected.rootsChanged && !expected.republish)
        return;

    auto input = takeJobs(current, std::move(shared), deltaRoots);
    building_ = true;
    const auto priority =
        index_->size() == 0 || !lastBuild_ ? WorkPriority::userInitiated : WorkPriority::utility;
    doors_.work.run(
        priority,
        [input = std::move(input), walker = walker_, clock = clockOf(doors_.queue)] {
            return IndexRebuild::run(input, *walker, clock);
        },
        [this, expected, alive = std::weak_ptr(alive_)](IndexRebuild::Output output) {
            if (!alive.expired())
                publish(std::move(output), expected);
        });
}

/// Copies for the background; what arrives from now on is for the next run.
IndexRebuild::Input FileIndex::takeJobs(std::vector<std::string> roots,
                                        std::vector<std::string> shared,
                                        const std::vector<std::string>& deltaRoots) {
    for (const auto& root : shared) {
        dirtyRoots_.erase(root);
        dirtyDirs_.erase(root);
    }
    IndexRebuild::Input input{.roots = std::move(roots),
                              .shared = std::move(shared),
                              .perRoot = perRoot_,
                              .foldersOnly = settings_.foldersOnlyRoots(),
                              .now = doors_.queue.now()};
    for (const auto& root : deltaRoots) {
        const auto dirty = dirtyDirs_.extract(root);
        input.deltaJobs.emplace(
            root, std::vector<std::string>(dirty.mapped().begin(), dirty.mapped().end()));
    }
    return input;
}

std::map<std::string, std::uint64_t> FileIndex::digests() const {
    std::map<std::string, std::uint64_t> digests;
    for (const auto& [root, items] : perRoot_)
        digests.emplace(root, items->digest());
    return digests;
}

void FileIndex::publish(IndexRebuild::Output output, const Expectation& expected) {
    doors_.diagnostics.log(fmt::format("file index roots ({} of {} walked, {} by delta): {}",
                                       output.walked.size(),
                                       roots().size(),
                                       output.fresh.size() - output.walked.size(),
                                       output.report));
    for (auto& [root, items] : output.fresh)
        perRoot_[root] = items;
    noteOutcome(output);
    forgetOtherRoots();
    for (auto& coverage : output.coverage) {
        if (stream_)
            stream_->cover(coverage.root, std::move(coverage.directories), output.startedAt);
    }
    adopt(output.index);
    lastBuild_ = doors_.queue.now();
    if (!output.walked.empty()) {
        lastBuildMillis_ = output.millis;
        lastWalkEndedAt_ = doors_.queue.uptime();
    }
    building_ = false;
    doors_.diagnostics.log(
        fmt::format("file index: {} items in {:.0f} ms", index_->size(), output.millis));
    decideOnCache(output, expected);
    tellOfPolling();
    goOn();
}

void FileIndex::noteOutcome(const IndexRebuild::Output& output) {
    for (const auto& root : output.walked) {
        lastFullWalk_[root] = doors_.queue.now();
        readAt_[root] = output.startedAt;
    }
    dirtyRoots_.insert(output.marked.begin(), output.marked.end());
}

void FileIndex::forgetOtherRoots() {
    const auto current = roots();
    const auto isGone = [&](const auto& entry) {
        return std::ranges::count(current, entry.first) == 0;
    };
    // The generation of this run still holds what belonged to them.
    if (std::erase_if(perRoot_, isGone) > 0)
        republishNeeded_ = true;
    std::erase_if(lastFullWalk_, isGone);
    std::erase_if(readAt_, isGone);
    std::erase_if(dirtyDirs_, isGone);
    std::erase_if(dirtyRoots_,
                  [&](const std::string& root) { return std::ranges::count(current, root) == 0; });
}

void FileIndex::decideOnCache(const IndexRebuild::Output& output, const Expectation& expected) {
    const auto now = digests();
    const bool unchanged = !now.empty() && now == expected.digests && !output.capped &&
                           !expected.republish && !expected.rootsChanged;
    if (unchanged) {
        ++unchangedRuns_;
        doors_.diagnostics.log(
            fmt::format("file index: unchanged at {} items (run {}); cache write skipped",
                        index_->size(),
                        unchangedRuns_));
        return;
    }
    unchangedRuns_ = 0;
    writeCache();
}

void FileIndex::goOn() {
    const bool dirty =
        !dirtyRoots_.empty() ||
        std::ranges::any_of(dirtyDirs_, [](const auto& entry) { return !entry.second.empty(); });
    if (!pending_ && !dirty && !republishNeeded_)
        return;
    pending_ = false;
    if (std::exchange(pendingForce_, false))
        rebuild(Force::yes);
    else if (unchangedRuns_ != 0 && !republishNeeded_)
        scheduleRebuild();
    else
        rebuild(Force::no);
}

} // namespace tessarine
