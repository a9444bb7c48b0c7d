#pragma once

#include "launcherapp/platform/Environment.h"

#include <mutex>
#include <string>

namespace tessarine {

class FileStore;

/// The program's folder in the user's data, where its state files and its log lie. The first read
/// makes it, the others touch no file system. Any thread.
class SupportDirectory {
public:
    SupportDirectory(FileStore& files, const Environment& environment);

    /// The same path each time, also when the folder could not be made: whoever writes there then
    /// meets the failure and reports it.
    const std::string& path() const;

    /// The path alone: makes nothing.
    const std::string& location() const { return path_; }

private:
    FileStore& files_;
    const std::string path_;
    mutable std::once_flag made_; ///< several threads may be the first
};

} // namespace tessarine
