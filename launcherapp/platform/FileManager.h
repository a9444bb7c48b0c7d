#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

/// What the desktop does with files on its own. Main thread only.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// Shows the file in its folder, selected. `done` is called once, later, with nothing on
    /// success, else with the problem in words; at the latest after `timeout`.
    virtual void reveal(const std::string& path,
                        Seconds timeout,
                        std::function<void(std::optional<std::string> problem)> done) = 0;

    /// Moves the file or folder into the user's trash, from where it can be put back. Nothing on
    /// success, else the problem in words. Waits for the disk.
    virtual std::optional<std::string> trash(const std::string& path) = 0;
};

} // namespace tessarine
