#pragma once

#include "LauncherCore/index/NameIndex.h"
#include "launcherapp/index/IndexRebuild.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/platform/TreeWatcher.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class Diagnostics;
class FileStore;
class IndexWalker;
class MountedVolumes;
class UsageLog;
class WorkQueues;

/// The program's own index of files and folders: what is below the user's search folders and
/// drives, found by name within a keystroke, and kept current by watching. A search reads one
/// published generation that never changes; walks and builds run in the background on copies, and
/// a whole new generation takes the place of the old one. Main thread only.
class FileIndex {
public:
    // Seconds, each for the reason beside it.
    static constexpr Seconds streamLatency{5};        ///< events are reported together
    static constexpr Seconds shortestCoalesce{20};    ///< from a first change to its rebuild
    static constexpr Seconds longestCoalesce{600};    ///< under sustained change
    static constexpr Seconds longestWhenIdle{3600};   ///< when rebuilds keep changing nothing
    static constexpr Seconds fullWalkInterval{21600}; ///< a safety net under the deltas
    static constexpr Seconds driveNotice{5}; ///< until a drive that doesn't open is told of

    enum class Run {
        resident,
        headless,     ///< serves the cache without walking: its answers stay the same
        demonstration ///< a fixed list of items; nothing is read or watched
    };

    enum class Force { no, yes };

    struct Doors {
        MainQueue& queue;
        WorkQueues& work;
        FileStore& files;
        TreeWatcher& watcher;
        Diagnostics& diagnostics;
    };

    /// What the user chose, as it is now.
    struct Settings {
        std::function<std::vector<std::string>()> searchFolders;
        std::function<std::vector<std::string>()> foldersOnlyRoots; ///< of the search folders
    };

    /// `cachePath` is where the index outlives the program. Any thread may use the walker.
    FileIndex(Doors doors,
              std::shared_ptr<IndexWalker> walker,
              MountedVolumes& volumes,
              Settings settings,
              std::string cachePath,
              Run run);
    ~FileIndex();
    FileIndex(const FileIndex&) = delete;
    FileIndex& operator=(const FileIndex&) = delete;

    /// Once. Reads the cache in the background, then walks and watches.
    void start();

    /// Brings the index up to date: all roots with `Force::yes`, else those that need it. One that
    /// is asked for while another runs happens after it.
    void rebuild(Force force);

    /// Drives came, went, or were included or left out.
    void volumesChanged(std::string_view reason);

    /// The user's search folders changed: what is watched follows.
    void rootsChanged();

    /// The generation in use; never null.
    const std::shared_ptr<const NameIndex>& items() const { return index_; }

    /// Search folders that are full paths, then the drives that are indexed.
    std::vector<std::string> roots() const;

    /// What was found, best first; see `NameIndex::search`.
    std::vector<NameIndex::Found> search(const NameIndex::Question& question,
                                         const UsageLog& usage) const;

    /// When the generation in use was published, in seconds since 1970, UTC; that of the cache
    /// when it was loaded from there.
    std::optional<double> lastBuild() const { return lastBuild_; }

    /// How long the last rebuild took that walked a root whole; 0 before the first.
    double lastBuildMillis() const { return lastBuildMillis_; }

    bool isBuilding() const { return building_; }

    /// How many rebuilds have been published.
    std::uint64_t published() const { return published_; }

    /// Calls `published` after each time a generation took the place of another.
    Subscription onPublished(std::function<void()> published);

private:
    struct Cached {
        std::shared_ptr<const NameIndex> index; ///< null when there is no usable cache
        double modified = 0;
        std::optional<std::string> problem; ///< why it could not be read
    };

    /// What is trusted of a cache, which may be older than the drives that are there.
    struct Trusted {
        std::vector<std::string> mountedDrives;
        std::vector<std::string> searchFolders;
    };

    static Cached
    loadCache(const FileStore& files, const std::string& path, const Trusted& trusted);
    void adoptCache(const Cached& cached);
    void adopt(std::shared_ptr<const NameIndex> index);
    void writeCache();
    void tellOfPolling();
    void tellOfSkippedFolders();

    /// Those of the user's that are full paths.
    std::vector<std::string> searchFolders() const;

    // Watching.
    void watch();
    void takeChanges(const TreeChanges& changes);
    void noteChanges(const std::vector<TreeChanges::Event>& events);

    // Scheduling.
    void scheduleRebuild();
    void scheduleReset(Seconds wait);
    std::vector<std::string> rootsToWalk(const std::vector<std::string>& roots, Force force) const;
    bool isHeld(const std::vector<std::string>& shared, Force force);
    IndexRebuild::Input takeJobs(std::vector<std::string> roots,
                                 std::vector<std::string> shared,
                                 const std::vector<std::string>& deltaRoots);

    // Publication.
    struct Expectation {
        bool republish = false;
        bool rootsChanged = false;
        std::map<std::string, std::uint64_t> digests; ///< as they were before the run
    };

    void publish(IndexRebuild::Output output, const Expectation& expected);
    void noteOutcome(const IndexRebuild::Output& output);
    void forgetOtherRoots();
    void decideOnCache(const IndexRebuild::Output& output, const Expectation& expected);
    void goOn();
    std::map<std::string, std::uint64_t> digests() const;

    // Drives on their own.
    struct DriveWalk;
    struct DriveJob;
    void walkDrive(const std::string& path);
    void repairDrive(const std::string& path);
    void runApart(DriveJob job);
    void publishDrive(const DriveJob& job, DriveWalk walk);
    void noteUnreadableDrive(const DriveJob& job);
    void forgetDrivesThatLeft();

    Doors doors_;
    const std::shared_ptr<IndexWalker> walker_;
    MountedVolumes& volumes_;
    const Settings settings_;
    const std::string cachePath_;
    const Run run_;

    std::shared_ptr<const NameIndex> index_;
    std::optional<double> lastBuild_;
    double lastBuildMillis_ = 0;
    bool building_ = false;
    std::uint64_t published_ = 0;

    std::unique_ptr<TreeStream> stream_;
    bool pending_ = false;      ///< a rebuild was asked for while one ran
    bool pendingForce_ = false; ///< and it was to walk everything
    std::map<std::string, SharedItems> perRoot_;
    std::map<std::string, std::uint64_t> drivesInFlight_; ///< and which of their walks it is
    std::uint64_t lastDriveWalk_ = 0;
    std::map<std::string, std::string> driveSources_; ///< what is mounted where, as last known
    bool republishNeeded_ = false;                    ///< `perRoot_` changed outside a rebuild
    std::set<std::string> dirtyRoots_;
    std::map<std::string, std::set<std::string>> dirtyDirs_;
    std::map<std::string, double> lastFullWalk_; ///< seconds since 1970, UTC
    std::map<std::string, double> readAt_;       ///< when that walk began
    bool rebuildScheduled_ = false;
    bool holdScheduled_ = false;             ///< a full walk waits until it may run; deltas don't
    std::optional<Seconds> lastWalkEndedAt_; ///< uptime
    Seconds coalesce_ = shortestCoalesce;
    std::int64_t unchangedRuns_ = 0;

    bool cacheIsWritten_ = false; ///< right now, in the background
    bool cacheIsStale_ = false;   ///< a newer generation waits to be written
    std::size_t polledBefore_ = 0;
    std::vector<std::string> skippedBefore_; ///< search folders that were told of
    Observers<> observers_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(); ///< for what comes back later
};

} // namespace tessarine
