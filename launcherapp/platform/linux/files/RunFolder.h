#pragma once

#include "launcherapp/platform/Environment.h"

#include <string>
#include <string_view>

namespace tessarine {

/// A folder of this run of the program alone, for its owner alone, and gone with it. It lies in
/// the session's run-time folder, or among the temporary files where there is no session.
class RunFolder {
public:
    /// An empty one. What runs of the same `name` left in the run-time folder because they were
    /// killed is removed. Throws std::runtime_error when there can be none.
    RunFolder(const Environment& environment, std::string_view name);
    ~RunFolder();
    RunFolder(const RunFolder&) = delete;
    RunFolder& operator=(const RunFolder&) = delete;

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

} // namespace tessarine
