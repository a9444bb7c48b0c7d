#pragma once

#include <string>
#include <vector>

namespace tessarine {

/// What files are, by the system's MIME database. Any thread; a call may look into the file.
class FileTypes {
public:
    virtual ~FileTypes() = default;

    /// MIME types of what is at the path, the narrowest first; "inode/directory" for a folder.
    /// Empty when nothing is there.
    virtual std::vector<std::string> types(const std::string& path) const = 0;
};

} // namespace tessarine
