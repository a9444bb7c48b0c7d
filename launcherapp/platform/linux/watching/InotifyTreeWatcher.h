#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/TreeWatcher.h"

#include <cstddef>
#include <memory>

namespace tessarine {

/// Trees watched through the kernel's inotify, each root by a thread of its own, so that a drive
/// that hangs costs no other root anything. Beyond the budget of watches directories are looked
/// at in turns.
///
/// Not noticed are: changes that another machine makes on a network share; a root that moves
/// because a folder above it was renamed; and what happens in a hidden directory or to a name
/// that begins with a full stop, though a directory that is merely looked at is reported for it.
/// Main thread only.
class InotifyTreeWatcher : public TreeWatcher {
public:
    struct Limits {
        std::size_t watches = 0; ///< the most to place, over all trees
        /// In which all that is polled is looked at once, where 1000 looks a second do it.
        Seconds pollRound{30};
        /// Between the first of some events and their reading: a burst is read in one go, and a
        /// directory that never rests costs ten wake-ups a second.
        Seconds gathering{0.1};
    };

    /// Half of what the system grants the user.
    static Limits systemLimits();

    explicit InotifyTreeWatcher(MainQueue& queue, Limits limits = systemLimits());
    /// Streams that are left fall silent.
    ~InotifyTreeWatcher() override;
    InotifyTreeWatcher(const InotifyTreeWatcher&) = delete;
    InotifyTreeWatcher& operator=(const InotifyTreeWatcher&) = delete;

    std::unique_ptr<TreeStream>
    watch(const std::vector<std::string>& roots, Seconds latency, Changed changed) override;

    TreeWatchCounts counts() const override;

private:
    class State;
    class Stream;
    std::shared_ptr<State> state_;
};

} // namespace tessarine
