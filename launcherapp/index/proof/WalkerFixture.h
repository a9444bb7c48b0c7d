#pragma once

#include "LauncherCore/index/ItemList.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/operations/Selftest.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"

#include <optional>
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

/// The lines of a self-test's report, and whether one of them is a failure.
class SelftestLines {
public:
    explicit SelftestLines(std::string_view prefix) : prefix_(prefix) {}

    void say(std::string_view line);

    void require(bool holds, std::string_view failure) {
        if (!holds)
            fail(failure);
    }

    void requireNone(const std::optional<std::string>& failure) {
        if (failure)
            fail(*failure);
    }

    void fail(std::string_view line);

    bool passed() const { return passed_; }

    SelftestResult result() const;

    /// The test could not go on: what had failed until then stays a failure.
    SelftestResult brokenOff(std::string_view reason);

private:
    std::string prefix_;
    std::string report_;
    bool passed_ = true;
};

/// What is in the first and not in the second, with commas between.
std::string missingFrom(const std::set<std::string>& first, const std::set<std::string>& second);

} // namespace tessarine
