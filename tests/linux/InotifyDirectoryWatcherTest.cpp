#include "launcherapp/platform/linux/InotifyDirectoryWatcher.h"

#include "launcherapp/platform/linux/QtMainQueue.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <set>

namespace tessarine {
namespace {

namespace fs = std::filesystem;

class InotifyDirectoryWatcherTest : public testing::Test {
protected:
    Subscription watch(const std::vector<std::string>& directories, Seconds latency = Seconds{0}) {
        return watcher.watch(directories, latency, [this](const DirectoryChanges& changes) {
            ++reports;
            changed.insert(changes.directories.begin(), changes.directories.end());
        });
    }

    /// Whether the directory is reported as changed by what `action` does.
    bool reports_(const std::string& directory, const std::function<void()>& action) {
        spinFor(10); // what came before
        changed.clear();
        action();
        return spinUntil([&] { return changed.contains(directory); });
    }

    ScratchFolder folder;
    QtMainQueue queue;
    InotifyDirectoryWatcher watcher{queue};
    std::set<std::string> changed;
    int reports = 0;
};

TEST_F(InotifyDirectoryWatcherTest, seesWhateverHappensToEntries) {
    const auto watched = folder.folder("/watched");
    const auto subscription = watch({watched});

    const struct {
        const char* what;
        std::function<void()> action;
    } cases[] = {
        {"created", [&] { folder.write("/watched/a", ""); }},
        {"rewritten", [&] { folder.write("/watched/a", "x"); }},
        {"renamed", [&] { fs::rename(watched + "/a", watched + "/b"); }},
        {"permissions", [&] { fs::permissions(watched + "/b", fs::perms::none); }},
        {"moved in", [&] { fs::rename(folder.write("/outside", ""), watched + "/c"); }},
        {"moved out", [&] { fs::rename(watched + "/c", folder.path("/outside")); }},
        {"removed", [&] { fs::remove(watched + "/b"); }},
        {"a link", [&] { fs::create_symlink("nowhere", watched + "/l"); }},
    };

    for (const auto& [what, action] : cases)
        EXPECT_TRUE(reports_(watched, action)) << what;
}

TEST_F(InotifyDirectoryWatcherTest, seesNothingBelow) {
    const auto watched = folder.folder("/watched");
    folder.folder("/watched/below");
    const auto subscription = watch({watched});
    folder.write("/watched/below/a", "");
    spinFor(50);
    EXPECT_EQ(reports, 0);
}

TEST_F(InotifyDirectoryWatcherTest, aFolderThatIsNotThereIsWaitedFor) {
    const auto wanted = folder.path("/a/b/c");
    const auto subscription = watch({wanted});
    folder.folder("/a");
    spinFor(20);
    EXPECT_TRUE(reports_(wanted, [&] { folder.folder("/a/b/c"); }));
    EXPECT_TRUE(reports_(wanted, [&] { folder.write("/a/b/c/file", ""); }));
    // Gone and made again.
    EXPECT_TRUE(reports_(wanted, [&] { fs::remove_all(folder.path("/a")); }));
    EXPECT_TRUE(reports_(wanted, [&] { folder.folder("/a/b/c"); }));
    EXPECT_TRUE(reports_(wanted, [&] { folder.write("/a/b/c/file", ""); }));
    // Moved away: what happens at its new place is no longer meant.
    EXPECT_TRUE(reports_(wanted, [&] { fs::rename(wanted, folder.path("/elsewhere")); }));
    spinFor(20);
    changed.clear();
    folder.write("/elsewhere/file2", "");
    spinFor(50);
    EXPECT_FALSE(changed.contains(wanted));
}

TEST_F(InotifyDirectoryWatcherTest, manyChangesAreOneReportWithinTheLatency) {
    const auto watched = folder.folder("/watched");
    const auto subscription = watch({watched}, Seconds{0.2});
    folder.write("/watched/first", "");
    EXPECT_TRUE(spinUntil([&] { return reports == 1; })); // at once
    for (int i = 0; i < 50; ++i) {
        folder.write("/watched/" + std::to_string(i), "");
        spinFor(1);
    }
    EXPECT_EQ(reports, 1);
    EXPECT_TRUE(spinUntil([&] { return reports == 2; }));
    spinFor(250);
    EXPECT_EQ(reports, 2);
}

TEST_F(InotifyDirectoryWatcherTest, watchesOfOneFolderEndEachForItself) {
    const auto watched = folder.folder("/watched");
    auto first = watch({watched});
    auto other = 0;
    Subscription second = watcher.watch({watched}, Seconds{0}, [&](const DirectoryChanges&) {
        ++other;
        second.end(); // from inside its own report
    });
    EXPECT_TRUE(reports_(watched, [&] { folder.write("/watched/a", ""); }));
    EXPECT_TRUE(spinUntil([&] { return other == 1; }));
    EXPECT_TRUE(reports_(watched, [&] { folder.write("/watched/b", ""); }));
    EXPECT_EQ(other, 1);
    first.end();
    reports = 0;
    folder.write("/watched/c", "");
    spinFor(50);
    EXPECT_EQ(reports, 0);
}

TEST_F(InotifyDirectoryWatcherTest, whatCannotBeWatchedIsLeftOut) {
    const auto watched = folder.folder("/watched");
    const auto subscription = watch({folder.write("/file", ""), "/proc/none/x", watched});
    EXPECT_TRUE(reports_(watched, [&] { folder.write("/watched/a", ""); }));
}

} // namespace
} // namespace tessarine
