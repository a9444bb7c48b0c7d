#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tessarine {

/// One file or folder of the index; its path is its identity.
struct IndexedItem {
    std::string id;   ///< full path, never ending in "/"
    std::string name; ///< as the file system spells it; of a drive's own item, the display name
    std::string norm; ///< `Matcher::normalize(name)`, by which it is found
    bool isFolder = false; ///< a directory that is no package
    std::string ext;       ///< lower-cased path extension; empty for every folder

    bool operator==(const IndexedItem&) const = default;
};

/// Facts of names and paths that the index rests on. Pure; any thread.
namespace IndexRules {

/// What follows the last full stop, where that is neither the first nor the last character; empty
/// otherwise. A view into `name`, not lower-cased.
std::string_view pathExtension(std::string_view name);

/// Whether a directory of this name is a package: one thing to its user, and a file to the index.
/// Told by its extension, whose case doesn't count.
bool isPackage(std::string_view directoryName);

/// 64-bit FNV-1a over the bytes of a text, continued from `state`.
inline constexpr std::uint64_t fnvOffsetBasis = 0xcbf29ce484222325;
std::uint64_t fnv1a(std::string_view text, std::uint64_t state = fnvOffsetBasis);

/// The hash of one item from the FNV-1a state of its id: one more step with its kind, 1 for a
/// folder and 2 for a file.
std::uint64_t itemHash(std::uint64_t stateOfID, bool isFolder);

/// The hash of one item: its id and its kind, nothing else.
std::uint64_t itemHash(const IndexedItem& item);

} // namespace IndexRules
} // namespace tessarine
