#pragma once

#include "launcherapp/platform/DirectoryReader.h"
#include "tests/fakes/MemoryFileStore.h"

#include <algorithm>
#include <set>
#include <string>

namespace tessarine {

/// The directories of a file store in memory, which must outlive this.
class MemoryDirectoryReader : public DirectoryReader {
public:
    explicit MemoryDirectoryReader(const MemoryFileStore& files) : files_(files) {}

    std::optional<DirectoryListing> list(const std::string& path) const override {
        ++listings;
        const auto directory = withoutDot(path);
        const auto entries =
            directory == path && isLink(path) ? std::nullopt : files_.entries(directory);
        if (!entries)
            return std::nullopt;
        DirectoryListing listing;
        for (const auto& entry : *entries) {
            if (broken.contains(directory) && listing.size() == 1) {
                listing.markPartial();
                break;
            }
            if (!entry.name.starts_with('.'))
                listing.add(entry.name, entry.kind == FileKind::directory && !entry.isLink);
        }
        listing.sort();
        return listing;
    }

    bool isLink(const std::string& path) const override {
        const auto slash = path.rfind('/');
        const auto entries = files_.entries(slash == 0 ? "/" : path.substr(0, slash));
        return entries && std::ranges::any_of(*entries, [&](const DirectoryEntry& entry) {
                   return entry.isLink && entry.name == path.substr(slash + 1);
               });
    }

    bool isGone(const std::string& path) const override {
        const auto directory = withoutDot(path);
        const auto what = files_.info(directory);
        return (directory == path && isLink(path)) || !what || what->kind != FileKind::directory;
    }

    mutable int listings = 0;     ///< directories asked for so far
    std::set<std::string> broken; ///< directories whose listing breaks off after an entry

private:
    static std::string withoutDot(const std::string& path) {
        if (!path.ends_with("/."))
            return path;
        const auto directory = path.substr(0, path.size() - 2);
        return directory.empty() ? "/" : directory;
    }

    const MemoryFileStore& files_;
};

} // namespace tessarine
