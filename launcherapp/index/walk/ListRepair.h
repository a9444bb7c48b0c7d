#pragma once

#include "LauncherCore/index/ItemList.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// A list of items in which all that lies below some directories is replaced. What stays, stays in
/// its order and as it is; what is new follows in the order in which it was found. Its cost grows
/// with what lies below those directories, but for one light pass over the list. Used once, on one
/// thread.
class ListRepair {
public:
    struct Repaired {
        ItemList items;
        std::size_t removed = 0;
        std::size_t added = 0;
    };

    /// None of the directories may lie below another. `items` must outlive this.
    ListRepair(const ItemList& items, std::vector<std::string> directories);

    /// How many items the list, as repaired so far, has elsewhere than below a directory.
    std::int64_t countBeside(std::size_t directory) const;

    /// `found` is now all there is below the directory. Once for each.
    void replace(std::size_t directory, ItemList found);

    Repaired finish() const;

private:
    struct Prefix {
        std::string path; ///< of the directory, with "/" at its end
        std::size_t directory = 0;
    };

    struct Addition {
        ItemList found;
        std::vector<std::uint32_t> items; ///< those of `found` that are new
    };

    /// The prefix at which or below which a directory of the list lies, if there is one.
    std::optional<std::size_t> prefixOf(std::string_view directoryPath) const;
    ItemList withAdditions(ItemList list) const;

    const ItemList& items_;
    std::vector<Prefix> prefixes_;                  ///< sorted
    std::vector<std::vector<std::uint32_t>> below_; ///< items by directory
    std::vector<bool> removed_;                     ///< by item
    std::vector<Addition> additions_;
    std::size_t removedCount_ = 0;
    std::size_t addedCount_ = 0;
};

} // namespace tessarine
