#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tessarine {

struct PlannedEntry {
    std::string path; ///< below the root, without "/" at either end
    bool isFolder = false;
};

/// A tree like a home folder: documents, sources, music and photos, mixed case, some names beyond
/// ASCII, directories of 15 to 30 entries and at most 8 deep. A directory precedes what it holds.
/// The same count gives the same tree everywhere; no path comes twice.
std::vector<PlannedEntry> plannedTree(std::size_t entryCount);

/// Makes folders and empty files. Throws when the disk refuses.
void makeTree(const std::string& root, const std::vector<PlannedEntry>& tree);

} // namespace tessarine
