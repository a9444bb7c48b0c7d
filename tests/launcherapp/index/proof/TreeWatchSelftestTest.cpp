#include "launcherapp/index/proof/TreeWatchSelftest.h"

#include "tests/fakes/FakePlatform.h"
#include "tests/fakes/FakeTreeWatcher.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {
namespace {

using testing::StartsWith;
using Verdict = SelftestResult::Verdict;

/// The longest root at or above the path.
std::optional<std::string> rightRoot(std::string_view path, std::span<const std::string> roots) {
    std::optional<std::string> best;
    for (const auto& root : roots) {
        if ((path == root || path.starts_with(root + "/")) && (!best || root.size() > best->size()))
            best = root;
    }
    return best;
}

std::optional<std::string> prefixAlone(std::string_view path, std::span<const std::string> roots) {
    const auto found = std::ranges::find_if(
        roots, [path](const std::string& root) { return path.starts_with(root); });
    return found == roots.end() ? std::nullopt : std::optional(*found);
}

class TreeWatchSelftestTest : public testing::Test {
protected:
    void run(TreeWatchSelftest::RootOf rootOf = rightRoot) {
        TreeWatchSelftest::run(
            {.queue = platform.queue, .watcher = watcher, .files = platform.files},
            Environment{},
            rootOf,
            [this](const SelftestResult& told) { result = told; });
        EXPECT_FALSE(result);
        platform.time.settle();
    }

    /// The folder that is watched.
    std::string folder() const { return watcher.streams.at(0)->roots.at(0); }

    FakePlatform platform;
    FakeTreeWatcher watcher;
    std::optional<SelftestResult> result;
};

TEST_F(TreeWatchSelftestTest, provesAnEventThatTheFileCaused) {
    run();
    const auto watched = folder();
    watcher.fire({watched}); // by the folder's own making: shows nothing
    EXPECT_FALSE(result);
    platform.time.advance(Seconds{2});
    ASSERT_TRUE(platform.files.info(watched + "/poke.txt"));
    watcher.fire({watched});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->verdict, Verdict::proved);
    EXPECT_EQ(
        result->report,
        "selftest-fsevents: a live stream delivered 1 path(s) decoded as C strings, the poked "
        "directory among them; root mapping passes 5 checks with a shared-prefix decoy");
    EXPECT_FALSE(platform.files.info(watched)); // it cleans up
    EXPECT_TRUE(watcher.streams.empty());
}

TEST_F(TreeWatchSelftestTest, noEventIsNoFailureAndAnotherDirectoryIsOne) {
    run();
    platform.time.advance(Seconds{17});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->verdict, Verdict::notMeasured);
    EXPECT_THAT(result->report,
                StartsWith("selftest-fsevents: NOT MEASURED, no event arrived within 15 s for /"));

    result.reset();
    run();
    platform.time.advance(Seconds{2});
    watcher.fire({"/elsewhere"});
    platform.time.advance(Seconds{15});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->verdict, Verdict::refuted);
    EXPECT_EQ(result->report,
              "selftest-fsevents: decoded paths do not name the poked directory: got /elsewhere");
}

TEST_F(TreeWatchSelftestTest, saysWhatFailedAtOnce) {
    watcher.works = false;
    run();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->report, "selftest-fsevents: could not create a stream");
    EXPECT_EQ(result->verdict, Verdict::refuted);

    result.reset();
    run(prefixAlone);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->verdict, Verdict::refuted);
    EXPECT_THAT(result->report, testing::HasSubstr("DECOY: a sibling with a shared prefix"));
}

} // namespace
} // namespace tessarine
