#pragma once

#include "launcherapp/platform/DirectoryReader.h"
#include "tests/fakes/MemoryFileStore.h"

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

/// Reads the directories of a file system in memory.
class MemoryDirectoryReader : public DirectoryReader {
public:
    explicit MemoryDirectoryReader(const MemoryFileStore& files) : files_(files) {}

    std::optional<DirectoryListing> list(const std::string& path) const override {
        ++lists;
        if (beforeList)
            beforeList(path);
        const auto entries = isLink(path) ? std::nullopt : files_.entries(path);
        if (!entries)
            return std::nullopt;
        DirectoryListing listing;
        for (const auto& entry : *entries) {
            if (!entry.name.starts_with('.'))
                listing.add(entry.name, entry.kind == FileKind::directory && !entry.isLink);
        }
        listing.sort();
        return listing;
    }

    bool isLink(const std::string& path) const override {
        const auto slash = path.rfind('/');
        const auto siblings = files_.entries(slash == 0 ? "/" : path.substr(0, slash));
        if (!siblings)
            return false;
        for (const auto& entry : *siblings) {
            if (entry.name == path.substr(slash + 1))
                return entry.isLink;
        }
        return false;
    }

    mutable int lists = 0; ///< directories read so far
    std::function<void(const std::string& path)> beforeList;

private:
    const MemoryFileStore& files_;
};

} // namespace tessarine
