#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <string>
#include <vector>

namespace tessarine {

/// What changed since the last report.
struct DirectoryChanges {
    std::vector<std::string> directories; ///< as they were asked for, sorted, without repeats
    bool dropped = false; ///< changes were lost: everything watched may have changed

    bool operator==(const DirectoryChanges&) const = default;
};

/// Tells when entries of directories come, go, are renamed or rewritten. Main thread only; no call
/// waits for more than the kernel's answer.
class DirectoryWatcher {
public:
    virtual ~DirectoryWatcher() = default;

    /// Watches each directory itself, not those below it. One that doesn't exist is watched for
    /// through the nearest folder above it that does, and counts as changed when it appears.
    /// The first change is reported at once, later ones together, `latency` after the report
    /// before. What the system won't watch (its limit, no permission) is left out silently.
    virtual Subscription watch(const std::vector<std::string>& directories,
                               Seconds latency,
                               std::function<void(const DirectoryChanges&)> changed) = 0;
};

} // namespace tessarine
