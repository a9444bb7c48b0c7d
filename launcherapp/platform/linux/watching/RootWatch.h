#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/TreeWatcher.h"
#include "launcherapp/platform/linux/watching/WatchBudget.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tessarine {

/// The watch on one root, by a thread of its own. Since the thread asks the root's disk, it hangs
/// when a drive does: then this root's changes wait, at worst until the kernel's queue is full and
/// says so, and no other root and no caller does. Main thread only.
class RootWatch {
public:
    /// The times are those of InotifyTreeWatcher::Limits.
    struct Setup {
        std::string root; ///< with no slash at its end
        Seconds latency{0};
        Seconds pollRound{0};
        Seconds gathering{0};
        std::shared_ptr<WatchBudget> budget;
    };

    /// `report` is called by the watch's own thread, never after this object has gone. Throws
    /// std::system_error when the system gives no thread.
    RootWatch(Setup setup, std::function<void(TreeChanges)> report);
    /// Doesn't wait for the thread, which may hang.
    ~RootWatch();
    RootWatch(const RootWatch&) = delete;
    RootWatch& operator=(const RootWatch&) = delete;

    void cover(std::vector<std::string> directories, double readAt);

    TreeWatchCounts counts() const;

private:
    class Thread;
    std::shared_ptr<Thread> thread_;
};

} // namespace tessarine
