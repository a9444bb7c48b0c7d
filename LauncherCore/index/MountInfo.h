#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// One mount, as the kernel tells of it (proc_pid_mountinfo(5)).
struct MountEntry {
    std::uint64_t id = 0; ///< a mount that is made anew has another
    std::string path;     ///< of the mount point
    std::string root;     ///< which folder of the file system is seen there; "/" but for binds
    std::string source;   ///< the device or share
    std::string type;     ///< of the file system

    bool operator==(const MountEntry&) const = default;
};

/// Reads the text of "/proc/self/mountinfo". Pure; any thread.
namespace MountInfo {

/// The mounts that a path leads to, in the order of the text: those hidden by a later mount over
/// the same point or over a folder above are left out, and so are lines that can't be read.
std::vector<MountEntry> parse(std::string_view text);

/// A field with its escapes resolved: a backslash and three octal digits are one byte.
std::string unescaped(std::string_view field);

} // namespace MountInfo
} // namespace tessarine
