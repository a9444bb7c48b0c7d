#include "launcherapp/index/FileIndex.h"

#include "LauncherCore/query/UsageLog.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/index/DemonstrationFiles.h"
#include "launcherapp/index/IndexCache.h"
#include "launcherapp/index/IndexRoots.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

/// Where drives are mounted: what the cache holds of one that has left is not trusted.
constexpr auto driveFolders = std::to_array<std::string_view>({"/media/", "/run/media/", "/mnt/"});

bool isBelowAny(std::string_view id, std::span<const std::string> folders) {
    return std::ranges::any_of(
        folders, [&](const std::string& folder) { return Paths::isAtOrBelow(id, folder); });
}

/// An empty path would be taken for "/", and a relative one for a place below wherever the program
/// was started.
bool isFullPath(const std::string& path) {
    return path.starts_with('/');
}

} // namespace

FileIndex::FileIndex(Doors doors,
                     std::shared_ptr<IndexWalker> walker,
                     MountedVolumes& volumes,
                     Settings settings,
                     std::string cachePath,
                     Run run)
    : doors_(doors), walker_(std::move(walker)), volumes_(volumes), settings_(std::move(settings)),
      cachePath_(std::move(cachePath)), run_(run), index_(std::make_shared<const NameIndex>()) {}

FileIndex::~FileIndex() = default;

void FileIndex::start() {
    requireMainThread(doors_.queue);
    if (run_ == Run::demonstration) {
        adopt(std::make_shared<const NameIndex>(demonstrationFiles()));
        return;
    }
    forgetDrivesThatLeft();
    doors_.work.run(
        WorkPriority::userInitiated,
        [&files = std::as_const(doors_.files),
         path = cachePath_,
         trusted = Trusted{.mountedDrives = volumes_.mountedDrivePaths(),
                           .searchFolders = searchFolders()}] {
            return loadCache(files, path, trusted);
        },
        [this, alive = std::weak_ptr(alive_)](const Cached& cached) {
            if (!alive.expired())
                adoptCache(cached);
        });
}

FileIndex::Cached
FileIndex::loadCache(const FileStore& files, const std::string& path, const Trusted& trusted) {
    const auto isTrusted = [&](std::string_view id) {
        const bool mayHaveLeft = std::ranges::any_of(
            driveFolders, [&](std::string_view folder) { return Paths::isAtOrBelow(id, folder); });
        return !mayHaveLeft || isBelowAny(id, trusted.mountedDrives) ||
               isBelowAny(id, trusted.searchFolders);
    };
    Cached cached;
    try {
        bool holdsItems = false;
        IndexCache::Reader reader([&](std::string_view id) {
            holdsItems = true;
            return isTrusted(id);
        });
        const bool exists = files.readPieces(
            path, [&reader](std::string_view piece) { return reader.take(piece); });
        auto items = exists ? reader.finish() : std::nullopt;
        if (!items || !holdsItems)
            return cached;
        const auto info = files.info(path);
        cached.modified = info ? info->modified : 0;
        cached.index = std::make_shared<const NameIndex>(
            std::vector{std::make_shared<const ItemList>(*std::move(items))});
    } catch (const FileError& error) {
        cached.problem = error.what();
    }
    return cached;
}

void FileIndex::adoptCache(const Cached& cached) {
    if (cached.problem)
        doors_.diagnostics.log(fmt::format("file index: {}; walking instead", *cached.problem));
    if (!cached.index) {
        // Also for a run that otherwise would not walk: it has nothing to serve.
        rebuild(Force::yes);
        watch();
        return;
    }
    if (index_->size() == 0) {
        adopt(cached.index);
        lastBuild_ = cached.modified;
    }
    doors_.diagnostics.log(fmt::format("file index: loaded {} cached items", cached.index->size()));
    if (run_ == Run::headless)
        doors_.diagnostics.log("file index: headless run, serving the cache without walking");
    else
        rebuild(Force::yes);
    watch();
}

void FileIndex::adopt(std::shared_ptr<const NameIndex> index) {
    auto old = std::exchange(index_, std::move(index));
    // Letting go of so much must not take the main thread's time.
    doors_.work.run(WorkPriority::utility, [held = std::move(old)]() mutable { held.reset(); });
    ++published_;
    observers_.tell();
}

/// One write at a time, so that an older generation never lands last.
void FileIndex::writeCache() {
    cacheIsStale_ = cacheIsWritten_;
    if (cacheIsWritten_)
        return;
    cacheIsWritten_ = true;
    doors_.work.run(
        WorkPriority::utility,
        [&files = doors_.files, path = cachePath_, index = index_] {
            // A failure costs only time: the next start walks instead.
            try {
                IndexCache::Writer writer(*index);
                files.savePieces(path, [&writer] { return writer.next(); });
            } catch (const FileError&) {
                return false;
            }
            return true;
        },
        [this, alive = std::weak_ptr(alive_)](bool) {
            if (alive.expired())
                return;
            cacheIsWritten_ = false;
            if (cacheIsStale_)
                writeCache();
        });
}

std::vector<std::string> FileIndex::searchFolders() const {
    std::vector<std::string> folders;
    for (const auto& folder : settings_.searchFolders()) {
        if (isFullPath(folder))
            folders.push_back(Paths::normalized(folder));
    }
    return folders;
}

std::vector<std::string> FileIndex::roots() const {
    return IndexRoots::joined(searchFolders(), volumes_.indexRoots());
}

/// Once for each list of them.
void FileIndex::tellOfSkippedFolders() {
    auto skipped = settings_.searchFolders();
    std::erase_if(skipped, isFullPath);
    if (skipped == skippedBefore_)
        return;
    if (!skipped.empty())
        doors_.diagnostics.log(fmt::format("file index: search folders that are no full path are "
                                           "skipped: \"{}\"",
                                           fmt::join(skipped, "\", \"")));
    skippedBefore_ = std::move(skipped);
}

std::vector<NameIndex::Found> FileIndex::search(const NameIndex::Question& question,
                                                const UsageLog& usage) const {
    requireMainThread(doors_.queue);
    return index_->search(question, usage, doors_.queue.now());
}

void FileIndex::volumesChanged(std::string_view reason) {
    requireMainThread(doors_.queue);
    const auto current = roots();
    walker_->readmit(current);
    forgetDrivesThatLeft();
    doors_.diagnostics.log(
        fmt::format("file index: drives changed ({}): {} roots", reason, current.size()));
    rootsChanged();
}

void FileIndex::rootsChanged() {
    requireMainThread(doors_.queue);
    if (run_ == Run::demonstration)
        return;
    watch();
    if (run_ != Run::headless)
        rebuild(Force::no);
}

Subscription FileIndex::onPublished(std::function<void()> published) {
    return observers_.add(std::move(published));
}

void FileIndex::watch() {
    tellOfSkippedFolders();
    stream_.reset();
    const auto current = roots();
    if (current.empty())
        return;
    stream_ = doors_.watcher.watch(
        current, streamLatency, [this](const TreeChanges& changes) { takeChanges(changes); });
    if (!stream_) {
        doors_.diagnostics.log("file index: changes can't be watched here; the index is brought up "
                               "to date at each start");
        return;
    }
    // The new stream knows the roots alone; what was walked of them is told again.
    for (const auto& root : current) {
        const auto items = perRoot_.find(root);
        const auto readAt = readAt_.find(root);
        if (items == perRoot_.end() || readAt == readAt_.end())
            continue;
        const auto policy = IndexRoots::policy(
            IndexRoots::kindOf(root, volumes_.indexedNames(), settings_.foldersOnlyRoots()),
            IndexRoots::totalCap);
        doors_.work.run(
            WorkPriority::utility,
            [root, list = items->second, policy] {
                return IndexRoots::openedDirectories(root, *list, policy);
            },
            [this, root, list = items->second, at = readAt->second, alive = std::weak_ptr(alive_)](
                std::vector<std::string> directories) {
                if (alive.expired() || !stream_)
                    return;
                // A rebuild that ended meanwhile has told of a newer list.
                const auto latest = perRoot_.find(root);
                if (latest != perRoot_.end() && latest->second == list)
                    stream_->cover(root, std::move(directories), at);
            });
    }
}

/// Once each time that more directories must be looked at in turns: the user can raise the limit.
void FileIndex::tellOfPolling() {
    const auto counts = doors_.watcher.counts();
    if (counts.polled > polledBefore_)
        doors_.diagnostics.log(fmt::format(
            "file index: {} directories are watched and {} looked at in turns, since no "
            "more watches may be taken (fs.inotify.max_user_watches)",
            counts.watched,
            counts.polled));
    polledBefore_ = counts.polled;
}

void FileIndex::takeChanges(const TreeChanges& changes) {
    constexpr std::size_t worthALine = 200;
    if (changes.events.size() >= worthALine)
        doors_.diagnostics.log(
            fmt::format("file index: {} filesystem events in one batch", changes.events.size()));
    noteChanges(changes.events);
    if (run_ != Run::headless)
        scheduleRebuild();
}

void FileIndex::noteChanges(const std::vector<TreeChanges::Event>& events) {
    const auto current = roots();
    // Dropped by the user's side, by the kernel, or the events' numbers began anew.
    constexpr std::uint32_t lossFlags = 0x2 | 0x4 | 0x8;
    const auto loss = std::ranges::find_if(
        events, [](const TreeChanges::Event& event) { return (event.flags & lossFlags) != 0; });
    if (loss != events.end()) {
        dirtyRoots_.insert(current.begin(), current.end());
        doors_.diagnostics.log(fmt::format("file index: an event batch was dropped by the daemon "
                                           "(flags {:#x}); every root marked dirty",
                                           loss->flags));
        return;
    }
    for (const auto& event : events) {
        const auto root = IndexRoots::rootOf(event.path, current);
        if (!root)
            continue;
        const auto path = Paths::normalized(event.path);
        if (path == *root)
            dirtyRoots_.insert(*root);
        else
            dirtyDirs_[*root].insert(path);
    }
}

} // namespace tessarine
