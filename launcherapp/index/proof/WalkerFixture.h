#pragma once

#include "LauncherCore/index/ItemList.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/operations/Selftest.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"

#include <set>
#include <string>
#include <string_view>

namespace tessarine {

/// The tree of the walker's self-tests, on the disk: every kind of entry that the walk treats in
/// its own way. Removed with this.
class WalkerFixture {
public:
    /// Throws FileError when the tree can't be made.
    WalkerFixture(FileStore& files, const Environment& environment);
    ~WalkerFixture();
    WalkerFixture(const WalkerFixture&) = delete;
    WalkerFixture& operator=(const WalkerFixture&) = delete;

    const std::string& root() const { return root_; }

    std::string path(std::string_view below) const { return root_ + "/" + std::string(below); }

    /// The policy that the fixture is made for.
    static IndexWalker::Policy policy();

    /// Paths below the root, a folder's with "/" at its end.
    std::set<std::string> shapeOf(const ItemList& items) const;

private:
    void make();

    FileStore& files_;
    std::string root_;
};

/// What is in the first and not in the second, with commas between.
std::string missingFrom(const std::set<std::string>& first, const std::set<std::string>& second);

} // namespace tessarine
