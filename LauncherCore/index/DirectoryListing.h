#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// The entries of one directory, their names in one buffer.
class DirectoryListing {
public:
    std::size_t size() const { return entries_.size(); }

    std::string_view name(std::size_t index) const {
        return std::string_view(names_).substr(entries_[index].begin, entries_[index].length);
    }

    /// A directory itself; a link to one is none.
    bool isDirectory(std::size_t index) const { return entries_[index].isDirectory; }

    /// The reading broke off: there may be more than these.
    bool isPartial() const { return partial_; }

    void markPartial() { partial_ = true; }

    /// Makes room, so that adding as much as this allocates nothing.
    void reserve(std::size_t entryCount, std::size_t nameBytes) {
        entries_.reserve(entryCount);
        names_.reserve(nameBytes);
    }

    void add(std::string_view name, bool isDirectory) {
        entries_.push_back({.key = sortKey(name),
                            .begin = static_cast<std::uint32_t>(names_.size()),
                            .length = static_cast<std::uint16_t>(name.size()),
                            .isDirectory = isDirectory});
        names_ += name;
    }

    /// By the bytes of the names, ascending.
    void sort();

private:
    struct Entry {
        std::uint64_t key = 0; ///< see `sortKey`
        std::uint32_t begin = 0;
        std::uint16_t length = 0; ///< no file system has names of 64 KiB
        bool isDirectory = false;
    };

    /// The first eight bytes of a name as a number that compares as they do: most comparisons of
    /// a sort end with it, and touch nothing else.
    static std::uint64_t sortKey(std::string_view name) {
        std::array<unsigned char, sizeof(std::uint64_t)> bytes{};
        std::copy_n(name.begin(), std::min(name.size(), bytes.size()), bytes.begin());
        std::uint64_t key = 0;
        for (const auto byte : bytes)
            key = key << 8 | byte;
        return key;
    }

    static constexpr std::size_t fewEntries = 48;
    void rankByKey();

    std::string names_;
    std::vector<Entry> entries_;
    bool partial_ = false;
};

} // namespace tessarine
