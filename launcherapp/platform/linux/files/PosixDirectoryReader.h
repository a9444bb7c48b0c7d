#pragma once

#include "launcherapp/platform/DirectoryReader.h"

namespace tessarine {

/// Directories of the machine's file systems, through the kernel's own call for them. Paths are
/// absolute and may be of any length. Without state; any thread.
class PosixDirectoryReader : public DirectoryReader {
public:
    std::optional<DirectoryListing> list(const std::string& path) const override;
    bool isLink(const std::string& path) const override;
    bool isGone(const std::string& path) const override;
};

} // namespace tessarine
