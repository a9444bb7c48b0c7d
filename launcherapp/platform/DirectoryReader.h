#pragma once

#include "LauncherCore/index/DirectoryListing.h"

#include <optional>
#include <string>

namespace tessarine {

/// Reads directories for the file index, with no question per file. Any thread; each call waits
/// for the disk, which for a drive that hangs may be for ever.
class DirectoryReader {
public:
    virtual ~DirectoryReader() = default;

    /// What the directory holds, without names that begin with a full stop, sorted; a part of it
    /// when the reading broke off. Nothing when it can't be read, is no directory, or is a link;
    /// one that ends in "/." may lead through a link.
    virtual std::optional<DirectoryListing> list(const std::string& path) const = 0;

    /// Whether the path is a symbolic link; false when nothing is there.
    virtual bool isLink(const std::string& path) const = 0;

    /// Whether there is certainly no directory of this path: nothing, or something else, as a link
    /// is. False when that can't be told, as of a share that doesn't answer.
    virtual bool isGone(const std::string& path) const = 0;
};

} // namespace tessarine
