#pragma once

#include "launcherapp/platform/TreeWatcher.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/watching/WatchBudget.h"
#include "launcherapp/platform/linux/watching/WatchedDirectories.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct inotify_event;

namespace tessarine {

class ChangeFold;

/// The kernel's watches on one tree, and the looks at what they don't reach. What it finds goes
/// into the fold. One thread only; any call may wait for the tree's disk, which for a drive that
/// hangs may be for ever, so none is longer than some hundred questions to it but for the taking
/// over of a whole tree that moved away.
class TreeWatches {
public:
    /// Nanoseconds since 1970, UTC, as file systems have it.
    using Stamp = std::int64_t;

    /// `since` is when somebody began to rely on the root's being watched.
    TreeWatches(std::string root,
                Stamp since,
                std::shared_ptr<WatchBudget> budget,
                ChangeFold& fold);
    ~TreeWatches();
    TreeWatches(const TreeWatches&) = delete;
    TreeWatches& operator=(const TreeWatches&) = delete;

    static Stamp now();

    /// What to poll for events; nothing when the kernel refused, and then all is looked at.
    std::optional<int> events() const;

    void cover(std::vector<std::string> directories, Stamp readAt);

    /// Places some of the watches that are due; false when none is left.
    bool placeSome();

    /// Takes what the kernel has to tell, without waiting for it.
    void readEvents();

    /// Something else may stand at and below this path than did before.
    void mountChanged(const std::string& path);

    /// Looks at the next few of those that are polled.
    void pollSome(std::size_t count);

    std::size_t polled() const;

    /// Looks at those that rest, and watches those again that were quiet since the last look.
    void lookAtResting();

    std::size_t resting() const;

    TreeWatchCounts counts() const;

private:
    using Index = WatchedDirectories::Index;
    using State = WatchedDirectories::State;

    bool isRoot(Index index) const { return root_ == directories_.path(index); }

    std::optional<Stamp> lastChange(Index index) const;
    void place(Index index, Stamp since);
    void poll(Index index, Stamp since);
    void pollOnce(Index index);
    void release(Index index);
    void drop(int descriptor);
    void waitSince(Stamp since);
    void checkRoot(Stamp readAt);
    void handle(const inotify_event& event, std::string_view name);
    void noteName(Index directory, const inotify_event& event, std::string_view name);
    void doubt(std::string_view path);
    void loseRoot();
    void rest(int descriptor);
    void note(Index index);

    std::string root_;
    std::shared_ptr<WatchBudget> budget_;
    ChangeFold& fold_;
    FileDescriptor kernel_;
    WatchedDirectories directories_;
    std::vector<char> buffer_;
    Stamp waitingSince_;     ///< what changed since then in a directory that waits is news
    Stamp rootWatchedSince_; ///< changes before it are for the first `cover` to find
    std::size_t nextToPlace_ = 0;
    std::size_t nextToPoll_ = 0;
};

} // namespace tessarine
