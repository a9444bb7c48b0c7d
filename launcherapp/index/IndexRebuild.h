#pragma once

#include "LauncherCore/index/NameIndex.h"
#include "launcherapp/index/walk/IndexWalker.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tessarine {

using SharedItems = std::shared_ptr<const ItemList>;

/// The part of a rebuild that runs in the background: walks and deltas over copies of what the
/// index knew, and the new generation made of them.
namespace IndexRebuild {

/// Directories that a delta looks at; beyond it a full walk costs less.
inline constexpr std::size_t largestBatch = 200;

struct Input {
    std::vector<std::string> roots;
    std::vector<std::string> shared;                           ///< to be walked whole, no drives
    std::map<std::string, std::vector<std::string>> deltaJobs; ///< changed directories, by root
    std::map<std::string, SharedItems> perRoot; ///< what each root holds, drives included
    std::vector<std::string> foldersOnly;
    double now = 0; ///< seconds since 1970, UTC: when the walks begin
};

/// What is to be watched of a root from now on.
struct Coverage {
    std::string root;
    std::vector<std::string> directories;
};

struct Output {
    std::map<std::string, SharedItems> fresh; ///< the lists of the roots that were looked at
    std::vector<std::string> walked;          ///< whole
    std::vector<std::string> marked;          ///< roots that need a full walk after all
    bool capped = false; ///< the most items were reached, and later roots not walked
    std::shared_ptr<const NameIndex> index; ///< of all roots
    std::vector<Coverage> coverage;
    std::string report; ///< a sentence part for each root, joined by "; "
    double millis = 0;
    double startedAt = 0; ///< seconds since 1970, UTC: when the first walk began
};

/// `clock` gives seconds since some fixed moment. Any thread.
Output run(const Input& input, const IndexWalker& walker, const std::function<double()>& clock);

/// A drive's list with the drive itself at its head.
SharedItems
withDriveItself(const std::string& path, const std::string& name, const ItemList& items);

struct DriveCounts {
    std::size_t folders = 0; ///< without the drive itself
    std::size_t files = 0;
};

DriveCounts driveCounts(const ItemList& items);

} // namespace IndexRebuild
} // namespace tessarine
