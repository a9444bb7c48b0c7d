#pragma once

#include "LauncherCore/index/IndexedItem.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// Many indexed items in little memory: each directory's path is stored once, each name and norm
/// as bytes in one buffer. Items keep the order in which they were added. A value; a finished list
/// is read by any number of threads.
class ItemList {
public:
    ItemList() = default;

    std::size_t size() const { return places_.size(); }

    bool empty() const { return places_.empty(); }

    /// Views into the list, valid as long as it lives and nothing is added.
    std::string_view name(std::size_t index) const;
    std::string_view norm(std::size_t index) const;

    bool isFolder(std::size_t index) const { return (places_[index] & folderBit) != 0; }

    std::string id(std::size_t index) const;

    /// Writes the id into a string that is used again, for loops that look at many.
    void assignID(std::size_t index, std::string& id) const;

    std::string ext(std::size_t index) const;
    IndexedItem item(std::size_t index) const;

    /// How many "/" the id has.
    std::size_t slashes(std::size_t index) const;

    /// The number of the item's directory in this list. Of an item that is its own directory (see
    /// `addItself`), the directory is that of its path.
    std::uint32_t directory(std::size_t index) const { return places_[index] & directoryMask; }

    bool isItself(std::size_t index) const { return (places_[index] & itselfBit) != 0; }

    std::size_t directoryCount() const { return directories_.size(); }

    std::string_view directoryPath(std::uint32_t directory) const;

    /// Sum of all items' hashes modulo 2^64, whatever their order; 0 for an empty list.
    std::uint64_t digest() const { return digest_; }

    std::uint64_t itemHash(std::size_t index) const;

    /// Bytes of memory that it holds.
    std::size_t memoryBytes() const;

    // Building.

    /// Room for so many items of ordinary names, so that adding them moves nothing. What of it
    /// stays unused is address space, not memory.
    void reserve(std::size_t itemCount);

    /// Makes room for a directory whose entries are to follow, and gives its number. Each path
    /// once, so that the list stays small; a repeated one does no harm.
    std::uint32_t addDirectory(std::string_view path);

    /// Adds the entry `name` of a directory. `norm` is its normalised form.
    void add(std::uint32_t directory, std::string_view name, std::string_view norm, bool isFolder);

    /// Adds an item whose id is `path` itself, and whose name may be any: a drive.
    void
    addItself(std::string_view path, std::string_view name, std::string_view norm, bool isFolder);

    /// Adds an item by its path, finding or adding its directory: that of the item added last, or
    /// one above it, costs nothing to find. Its extension follows from the rest.
    void add(std::string_view id, std::string_view name, std::string_view norm, bool isFolder);

    void add(const IndexedItem& item) { add(item.id, item.name, item.norm, item.isFolder); }

    /// Adds an item of another list.
    void addFrom(const ItemList& other, std::size_t index);

    /// A copy without the items marked in `removed`, which has an entry for each, and without
    /// directories that then hold nothing. Has room for a few items more.
    ItemList without(const std::vector<bool>& removed) const;

    /// Gives back the memory that was kept for growth.
    void shrink();

    bool operator==(const ItemList& other) const;

private:
    struct Directory {
        std::uint32_t end = 0; ///< of its path in `paths_`; it begins where the one before ends
        std::uint32_t slashes = 0;
        std::uint64_t hash = 0; ///< FNV-1a of the path and "/"
    };

    static constexpr std::uint32_t folderBit = 1U << 31;
    static constexpr std::uint32_t itselfBit = 1U << 30;
    static constexpr std::uint32_t directoryMask = itselfBit - 1;

    void append(std::uint32_t place, std::string_view name, std::string_view norm);
    void store(std::uint32_t place, std::string_view name, std::string_view norm);
    std::uint32_t directoryOf(std::string_view path);

    std::string paths_;
    std::vector<Directory> directories_;
    std::vector<std::uint32_t> places_; ///< directory and kind of each item
    std::string names_;
    std::vector<std::uint32_t> nameEnds_;
    std::string norms_;
    std::vector<std::uint32_t> normEnds_;
    std::uint64_t digest_ = 0;
    std::vector<std::uint32_t> trail_; ///< of `directoryOf`: each directory is above the next
};

} // namespace tessarine
