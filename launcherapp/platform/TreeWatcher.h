#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tessarine {

/// Directories in which names came, went or changed.
struct TreeChanges {
    /// Changes were lost: anything below any root may have changed. The value is that of the flag
    /// word in which it is reported to the log.
    static constexpr std::uint32_t droppedFlag = 0x4;

    struct Event {
        std::string path; ///< of the directory; never ends in "/" but for the root of all
        std::uint32_t flags = 0;

        bool operator==(const Event&) const = default;
    };

    std::vector<Event> events; ///< each path once
    std::size_t folded = 0;    ///< how many single changes they stand for

    bool operator==(const TreeChanges&) const = default;
};

/// A watch on whole trees, as long as it lives. Main thread only.
class TreeStream {
public:
    virtual ~TreeStream() = default;

    /// Says which directories of one root are to be watched from now on, the root among them:
    /// those that a walk has opened. `readAt` is when the walk began, in seconds since 1970, UTC:
    /// a directory that is watched for the first time and has changed since then is reported.
    /// Returns at once; the directories are taken over in the background.
    virtual void
    cover(const std::string& root, std::vector<std::string> directories, double readAt) = 0;
};

/// What of the watched directories the system tells by itself; the rest is looked at in turns.
struct TreeWatchCounts {
    std::size_t watched = 0;
    std::size_t polled = 0; ///< beyond the budget of watches, or refused by the system

    bool operator==(const TreeWatchCounts&) const = default;
};

/// Watches trees of directories for names that come, go or change. Main thread only; nothing waits
/// for a disk there.
class TreeWatcher {
public:
    using Changed = std::function<void(const TreeChanges&)>;

    virtual ~TreeWatcher() = default;

    /// Watches the roots, each alone at first, and what is below it once `cover` has told of it;
    /// one that isn't there is reported when it comes. A stream that takes the place of one that
    /// ended in the same turn of the main queue takes over what that one covered of the same roots.
    /// Changes are reported on the main thread: the first at once after a quiet period, later ones
    /// together, `latency` after the report before; each root for itself. A change in a directory
    /// of which nobody told yet is reported with its nearest watched ancestor's next change, or
    /// found when it is covered. Null when the system can't watch at all.
    virtual std::unique_ptr<TreeStream>
    watch(const std::vector<std::string>& roots, Seconds latency, Changed changed) = 0;

    virtual TreeWatchCounts counts() const = 0;
};

} // namespace tessarine
