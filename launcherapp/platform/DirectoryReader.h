#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
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

    void add(std::string_view name, bool isDirectory) {
        entries_.push_back({.begin = static_cast<std::uint32_t>(names_.size()),
                            .length = static_cast<std::uint16_t>(name.size()),
                            .isDirectory = isDirectory});
        names_ += name;
    }

    /// By the bytes of the names, ascending.
    void sort();

private:
    struct Entry {
        std::uint32_t begin = 0;
        std::uint16_t length = 0; ///< no file system has names of 64 KiB
        bool isDirectory = false;
    };

    std::string names_;
    std::vector<Entry> entries_;
};

/// Reads directories for the file index, with no question per file. Any thread; each call waits
/// for the disk, which for a drive that hangs may be for ever.
class DirectoryReader {
public:
    virtual ~DirectoryReader() = default;

    /// What the directory holds, without names that begin with a full stop, sorted. Nothing when
    /// it can't be read, is no directory, or is a link.
    virtual std::optional<DirectoryListing> list(const std::string& path) const = 0;

    /// Whether the path is a symbolic link; false when nothing is there.
    virtual bool isLink(const std::string& path) const = 0;
};

} // namespace tessarine
