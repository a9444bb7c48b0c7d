#pragma once

#include "launcherapp/index/walk/IndexWalker.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// Which trees the index walks, and how far. Pure; any thread.
namespace IndexRoots {

inline constexpr std::int64_t totalCap = 400000; ///< most items of all roots together

/// Names of folders that are passed over under every root.
const std::set<std::string, std::less<>>& skipDirs();

enum class Kind { searchFolder, foldersOnly, drive };

/// `drives` are known by their paths.
Kind kindOf(const std::string& root,
            const std::map<std::string, std::string>& drives,
            std::span<const std::string> foldersOnlyRoots);

/// How a root of this kind is walked, with `budget` items to spend.
IndexWalker::Policy policy(Kind kind, std::int64_t budget);

/// `first`, and of `drives` each that is neither one of them nor below one.
std::vector<std::string> joined(std::vector<std::string> first,
                                std::span<const std::string> drives);

/// The longest of the roots that is `path` or lies above it, the first of equal ones; nothing when
/// none does.
std::optional<std::string> rootOf(std::string_view path, std::span<const std::string> roots);

struct Split {
    std::vector<std::string> shared;
    std::vector<std::string> onTheirOwn; ///< drives that were never walked
};

/// Parts the roots to walk: a drive's first walk may take long, and must not hold up the others.
Split splitFirstDriveWalks(std::span<const std::string> full,
                           const std::map<std::string, std::string>& drives,
                           const std::set<std::string>& walked);

/// The directories that a walk of the root has looked into: the root, and the folders among its
/// items that are not too deep.
std::vector<std::string> openedDirectories(const std::string& root,
                                           const ItemList& items,
                                           const IndexWalker::Policy& policy);

/// For how long the next full walk is held back after one that took so long, in seconds: so that
/// all walks together stay under a tenth of a core.
double holdSeconds(double walkSeconds);

} // namespace IndexRoots
} // namespace tessarine
