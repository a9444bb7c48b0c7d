#pragma once

#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <string>
#include <vector>

namespace tessarine {

/// One file system of the machine where it is mounted.
struct Mount {
    std::string path;   ///< of the mount point
    std::string source; ///< the device or share, as the system names it
    std::string type;   ///< of the file system

    bool operator==(const Mount&) const = default;
};

/// What is mounted where. Main thread only; no call touches a mounted file system, so that one
/// that hangs delays nobody.
class MountTable {
public:
    virtual ~MountTable() = default;

    /// All mounts, in the order in which they were made; empty when the system tells none.
    virtual std::vector<Mount> mounts() const = 0;

    /// Calls `changed` soon after a file system was mounted or left.
    virtual Subscription onChange(std::function<void()> changed) = 0;
};

} // namespace tessarine
