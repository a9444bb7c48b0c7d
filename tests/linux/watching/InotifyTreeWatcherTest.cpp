#include "launcherapp/platform/linux/watching/InotifyTreeWatcher.h"

#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/MountNamespace.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <map>
#include <sys/mount.h>
#include <sys/stat.h>

namespace tessarine {
namespace {

namespace fs = std::filesystem;

constexpr Seconds briefly{0.03};
/// Longer than events are gathered.
constexpr int quietMilliseconds = 70;
constexpr Seconds gathering{0.01};

class InotifyTreeWatcherTest : public testing::Test {
protected:
    static InotifyTreeWatcher::Limits enough() {
        auto limits = InotifyTreeWatcher::systemLimits();
        limits.gathering = gathering;
        return limits;
    }

    void begin(InotifyTreeWatcher::Limits limits = enough(), Seconds latency = briefly) {
        watcher = std::make_unique<InotifyTreeWatcher>(queue, limits);
        stream = makeStream({root}, latency);
        ASSERT_TRUE(stream);
    }

    std::unique_ptr<TreeStream> makeStream(const std::vector<std::string>& roots, Seconds latency) {
        return watcher->watch(roots, latency, [this](const TreeChanges& changes) {
            ++reports;
            folded += changes.folded;
            for (const auto& event : changes.events) {
                ++changed[event.path];
                flags |= event.flags;
            }
        });
    }

    /// Covers the root and these below it, as read at a time at which nothing is news, and waits
    /// until the watches stand.
    void cover(const std::vector<std::string>& below) {
        coverAt(below, queue.now() + 10);
        const auto wanted = below.size() + 1;
        ASSERT_TRUE(spinUntil([&] {
            const auto counts = watcher->counts();
            return counts.watched + counts.polled == wanted;
        }));
        settle();
    }

    void coverAt(const std::vector<std::string>& below, double readAt) {
        std::vector<std::string> directories{root};
        for (const auto& name : below)
            directories.push_back(root + name);
        stream->cover(root, directories, readAt);
    }

    void settle() {
        spinFor(quietMilliseconds);
        forget();
    }

    void forget() {
        changed.clear();
        reports = 0;
        folded = 0;
        flags = 0;
    }

    bool isReported(const std::string& below) {
        return spinUntil([&] { return changed.contains(root + below); });
    }

    /// Whether the directory is reported for what `action` does.
    bool reports_(const std::string& below, const std::function<void()>& action) {
        settle();
        action();
        return isReported(below);
    }

    /// Makes a directory look as if nothing had happened there for long.
    void age(const std::string& path) {
        const timespec old[2] = {{.tv_sec = 1000000000, .tv_nsec = 1},
                                 {.tv_sec = 1000000000, .tv_nsec = 1}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), old, 0), 0);
    }

    ScratchFolder folder;
    std::string root = folder.folder("/root");
    QtMainQueue queue;
    std::unique_ptr<InotifyTreeWatcher> watcher;
    std::unique_ptr<TreeStream> stream;
    std::map<std::string, int> changed; ///< how often each was reported
    int reports = 0;
    std::size_t folded = 0;
    std::uint32_t flags = 0;
};

TEST_F(InotifyTreeWatcherTest, namesThatComeGoOrChangeAreReportedForTheirDirectory) {
    folder.folder("/root/a/deep");
    begin();
    cover({"/a", "/a/deep"});

    const struct {
        const char* what;
        const char* directory;
        std::function<void()> action;
    } cases[] = {
        {"created", "/a/deep", [&] { folder.write("/root/a/deep/f", ""); }},
        {"renamed", "/a/deep", [&] { fs::rename(root + "/a/deep/f", root + "/a/deep/g"); }},
        {"moved out", "/a/deep", [&] { fs::rename(root + "/a/deep/g", root + "/a/g"); }},
        {"removed", "/a", [&] { fs::remove(root + "/a/g"); }},
        {"a folder", "/a", [&] { folder.folder("/root/a/other"); }},
        {"a link", "", [&] { fs::create_symlink("nowhere", root + "/l"); }},
    };

    for (const auto& [what, directory, action] : cases)
        EXPECT_TRUE(reports_(directory, action)) << what;
}

TEST_F(InotifyTreeWatcherTest, whatTheIndexDoesNotShowIsNotReported) {
    folder.folder("/root/a");
    begin();
    cover({"/a"});
    folder.write("/root/a/.hidden", "");                  // a hidden name
    folder.folder("/root/.cache");                        // and a hidden folder
    folder.write("/outside", "");                         // beside the root
    std::ofstream(folder.path("/root/a/.hidden")) << "x"; // and contents are nothing to names
    spinFor(quietMilliseconds);
    EXPECT_EQ(reports, 0);
}

TEST_F(InotifyTreeWatcherTest, afterAQuietPeriodTheReportDoesNotWaitForTheLatency) {
    folder.folder("/root/a");
    spinFor(50); // more than the kernel's tick, so that the root is no news
    begin(enough(), Seconds{3600});
    cover({"/a"});
    for (int i = 0; i < 100; ++i)
        folder.write("/root/a/" + std::to_string(i), "");
    EXPECT_TRUE(isReported("/a"));
    folder.write("/root/a/more", "");
    spinFor(quietMilliseconds);
    EXPECT_EQ(reports, 1); // the next one does
}

TEST_F(InotifyTreeWatcherTest, reportsOfABusyDirectoryKeepTheLatency) {
    constexpr Seconds latency{0.2};
    folder.folder("/root/a");
    begin(enough(), latency);
    cover({"/a"});
    const auto started = queue.uptime();
    while (reports < 4) {
        folder.write("/root/a/more", "");
        fs::remove(root + "/a/more");
        spinFor(5);
        ASSERT_LT((queue.uptime() - started).count(), 10);
    }
    EXPECT_GT(queue.uptime() - started, 2 * latency); // the first may be that of the time before
    EXPECT_GT(folded, 2 * 4u);
}

TEST_F(InotifyTreeWatcherTest, aChangeBetweenTheReadingAndTheWatchIsFound) {
    folder.folder("/root/quiet");
    folder.folder("/root/changed");
    spinFor(50); // more than the kernel's tick
    begin();
    const double readAt = queue.now();
    spinFor(50);
    folder.write("/root/changed/late", "");
    coverAt({"/quiet", "/changed"}, readAt);
    EXPECT_TRUE(isReported("/changed"));
    spinFor(quietMilliseconds);
    EXPECT_FALSE(changed.contains(root + "/quiet"));
}

TEST_F(InotifyTreeWatcherTest, aRootThatChangedBeforeItsWatchIsFoundByItsFirstCover) {
    const double readAt = queue.now();
    spinFor(50);
    folder.write("/root/late", "");
    spinFor(50);
    begin();
    spinFor(quietMilliseconds);
    EXPECT_EQ(reports, 0); // nobody told yet when it was read
    coverAt({}, readAt);
    EXPECT_TRUE(isReported(""));
    settle();
    coverAt({}, readAt); // the watch stands by now, so old stamps are no news
    spinFor(quietMilliseconds);
    EXPECT_EQ(reports, 0);
}

TEST_F(InotifyTreeWatcherTest, aRenamedDirectoryIsFollowedOnceItsNewPathIsTold) {
    folder.folder("/root/a/in");
    folder.folder("/root/b");
    begin();
    cover({"/a", "/a/in", "/b"});
    EXPECT_TRUE(reports_("", [&] { fs::rename(root + "/a", root + "/c"); }));
    cover({"/b", "/c", "/c/in"});
    EXPECT_TRUE(reports_("/c/in", [&] { folder.write("/root/c/in/f", ""); }));
    EXPECT_FALSE(changed.contains(root + "/a/in"));
}

TEST_F(InotifyTreeWatcherTest, whatTookTheOldPathOfARenamedDirectoryIsWatchedToo) {
    folder.folder("/root/a/in");
    begin();
    cover({"/a", "/a/in"});
    fs::rename(root + "/a", root + "/b");
    folder.folder("/root/a/in"); // the kernel's watches are on the other ones
    settle();
    cover({"/a", "/a/in", "/b", "/b/in"});
    EXPECT_TRUE(reports_("/a/in", [&] { folder.write("/root/a/in/f", ""); }));
    EXPECT_FALSE(changed.contains(root + "/b/in"));
    EXPECT_TRUE(reports_("/b/in", [&] { folder.write("/root/b/in/f", ""); }));
    EXPECT_FALSE(changed.contains(root + "/a/in"));
}

TEST_F(InotifyTreeWatcherTest, aRemovedDirectoryIsReportedOnceAndItsSuccessorWatched) {
    folder.folder("/root/a");
    begin();
    cover({"/a"});
    fs::remove(root + "/a");
    EXPECT_TRUE(isReported(""));
    spinFor(quietMilliseconds);
    EXPECT_LE(changed[root + "/a"], 1);
    EXPECT_EQ(watcher->counts(), (TreeWatchCounts{.watched = 1, .polled = 0}));
    folder.folder("/root/a");
    settle();
    cover({"/a"});
    EXPECT_TRUE(reports_("/a", [&] { folder.write("/root/a/f", ""); }));
}

TEST_F(InotifyTreeWatcherTest, aDirectoryNoLongerToldOfIsNoLongerWatched) {
    folder.folder("/root/a");
    folder.folder("/root/b");
    begin();
    cover({"/a", "/b"});
    cover({"/b"});
    folder.write("/root/a/f", "");
    EXPECT_TRUE(reports_("/b", [&] { folder.write("/root/b/f", ""); }));
    EXPECT_FALSE(changed.contains(root + "/a"));
}

TEST_F(InotifyTreeWatcherTest, aRootThatGoesAndComesBackIsReportedBothTimes) {
    folder.folder("/root/a");
    begin({.watches = 100, .pollRound = Seconds{0.1}, .gathering = gathering});
    cover({"/a"});
    EXPECT_TRUE(reports_("", [&] { fs::rename(root, folder.path("/away")); }));
    // It may be reported as changed before it is looked at and found gone.
    EXPECT_TRUE(spinUntil([&] { return watcher->counts().watched == 0; }));
    EXPECT_TRUE(reports_("", [&] { folder.folder("/root/a"); }));
    cover({"/a"});
    EXPECT_TRUE(reports_("/a", [&] { folder.write("/root/a/f", ""); }));
}

TEST_F(InotifyTreeWatcherTest, whatExceedsTheBudgetIsPolledUntilThereIsRoom) {
    std::vector<std::string> all;
    for (const auto* name : {"/a", "/b", "/c", "/d"}) {
        age(folder.folder("/root" + std::string(name)));
        all.emplace_back(name);
    }
    spinFor(50);
    begin({.watches = 3, .pollRound = Seconds{0.1}, .gathering = gathering});
    cover(all);
    EXPECT_EQ(watcher->counts(), (TreeWatchCounts{.watched = 3, .polled = 2}));
    for (const auto& directory : all)
        EXPECT_TRUE(reports_(directory, [&] { folder.write("/root" + directory + "/f", ""); }));
    EXPECT_TRUE(reports_("/d", [&] { fs::remove_all(root + "/d"); })); // a polled one that goes
    settle();
    cover({"/a", "/c"}); // makes room
    EXPECT_TRUE(spinUntil([&] { return watcher->counts().watched == 3; }));
    EXPECT_TRUE(reports_("/c", [&] { folder.write("/root/c/g", ""); }));
}

TEST_F(InotifyTreeWatcherTest, aPolledDirectoryAtRestIsNotReported) {
    folder.folder("/root/a");
    spinFor(50);
    begin({.watches = 0, .pollRound = Seconds{0.05}, .gathering = gathering});
    cover({"/a"});
    EXPECT_EQ(watcher->counts().polled, 2u);
    spinFor(quietMilliseconds);
    EXPECT_EQ(reports, 0);
}

TEST_F(InotifyTreeWatcherTest, aHotDirectoryRestsAndIsWatchedAgainOnceItIsQuiet) {
    constexpr Seconds latency{0.3};
    folder.folder("/root/hot");
    folder.folder("/root/cool");
    begin(InotifyTreeWatcher::systemLimits(), latency);
    cover({"/hot", "/cool"});
    spinFor(500);
    forget();
    const auto started = queue.uptime();
    for (int i = 0; i < 10000; ++i)
        ::close(::open((root + "/hot/" + std::to_string(i)).c_str(), O_CREAT | O_CLOEXEC, 0600));
    EXPECT_TRUE(spinUntil([&] { return watcher->counts().polled == 1; }));
    EXPECT_TRUE(isReported("/hot"));
    EXPECT_TRUE(spinUntil([&] { return watcher->counts().polled == 0; }));
    EXPECT_LE(reports, (queue.uptime() - started) / latency + 2);
    EXPECT_EQ(watcher->counts().watched, 3u);
    EXPECT_TRUE(reports_("/hot", [&] { folder.write("/root/hot/new", ""); }));
    EXPECT_TRUE(reports_("/cool", [&] { folder.write("/root/cool/new", ""); }));
}

TEST_F(InotifyTreeWatcherTest, changesThatAreLostAreToldAndWatchingGoesOn) {
    std::size_t limit = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
    if (limit == 0 || limit > 100000)
        GTEST_SKIP() << "NOT MEASURED: the kernel keeps " << limit << " events";
    // Many directories, so that none of them is hot.
    std::vector<std::string> all;
    for (int i = 0; i < 200; ++i) {
        all.push_back("/" + std::to_string(i));
        folder.folder("/root" + all.back());
    }
    begin(InotifyTreeWatcher::systemLimits());
    cover(all);
    std::string at = folder.write("/root/file", "");
    const auto dropped = [&] { return (flags & TreeChanges::droppedFlag) != 0; };
    for (int attempt = 0; attempt < 20 && !dropped(); ++attempt) {
        for (std::size_t i = 0; i <= limit; ++i) {
            const auto next = root + all[i % all.size()] + "/file";
            ASSERT_EQ(::rename(at.c_str(), next.c_str()), 0);
            at = next;
        }
        spinFor(300);
    }
    if (!dropped())
        GTEST_SKIP() << "NOT MEASURED: the queue was read faster than it could be filled";
    EXPECT_GT(changed[root], 0);
    cover(all);
    // The rest of what was done may be lost too, and told late: then what we do is lost with it.
    EXPECT_TRUE(spinUntil([&] {
        folder.write("/root/7/new", "");
        fs::remove(root + "/7/new");
        spinFor(quietMilliseconds);
        return changed.contains(root + "/7");
    }));
}

TEST_F(InotifyTreeWatcherTest, aStreamThatEndedIsSilentAndItsWatchesAreGivenBack) {
    folder.folder("/root/a");
    begin({.watches = 2, .pollRound = Seconds{30}, .gathering = gathering});
    cover({"/a"});
    folder.write("/root/a/f", "");
    stream.reset();
    folder.write("/root/a/g", "");
    spinFor(quietMilliseconds);
    EXPECT_EQ(reports, 0);
    EXPECT_EQ(watcher->counts(), TreeWatchCounts{});
    stream = makeStream({root}, briefly);
    cover({"/a"});
    EXPECT_EQ(watcher->counts(), (TreeWatchCounts{.watched = 2, .polled = 0}));
}

TEST_F(InotifyTreeWatcherTest, aStreamThatFollowsAtOnceTakesOverWhatWasCovered) {
    folder.folder("/root/a");
    begin();
    cover({"/a"});
    stream.reset();
    folder.write("/root/a/between", "");
    stream = makeStream({folder.folder("/second"), root + "/"}, briefly);
    EXPECT_TRUE(isReported("/a"));
    settle();
    folder.write("/second/f", "");
    EXPECT_TRUE(spinUntil([&] { return changed.contains(folder.path("/second")); }));
}

TEST_F(InotifyTreeWatcherTest, aReportMayEndItsStreamAndTheWholeWatcher) {
    begin();
    bool isTold = false;
    stream = watcher->watch({root}, briefly, [&](const TreeChanges&) {
        isTold = true;
        watcher.reset();
        stream.reset();
    });
    spinFor(quietMilliseconds);
    folder.write("/root/f", "");
    EXPECT_TRUE(spinUntil([&] { return isTold; }));
}

TEST_F(InotifyTreeWatcherTest, aRootThatIsNotThereIsWaitedFor) {
    root = folder.path("/later");
    begin({.watches = 100, .pollRound = Seconds{0.1}, .gathering = gathering});
    spinFor(quietMilliseconds);
    EXPECT_EQ(reports, 0);
    EXPECT_TRUE(reports_("", [&] { folder.folder("/later"); }));
    EXPECT_TRUE(reports_("", [&] { folder.write("/later/f", ""); }));
}

TEST_F(InotifyTreeWatcherTest, oneDirectoryUnderTwoPathsIsReportedUnderBoth) {
    const MountNamespace mounts;
    if (!mounts.works())
        GTEST_SKIP() << "NOT MEASURED: no mounts of our own: " << mounts.reason();
    const auto real = folder.folder("/root/real");
    const auto bound = folder.folder("/root/bound");
    ASSERT_EQ(::mount(real.c_str(), bound.c_str(), nullptr, MS_BIND, nullptr), 0);
    begin();
    cover({"/real", "/bound"});
    EXPECT_TRUE(reports_("/bound", [&] { folder.write("/root/real/f", ""); }));
    EXPECT_TRUE(isReported("/real"));
    cover({"/real"}); // which must not end the watch of the other path
    EXPECT_TRUE(reports_("/real", [&] { folder.write("/root/real/g", ""); }));
    EXPECT_FALSE(changed.contains(bound));
    ::umount2(bound.c_str(), MNT_DETACH);
}

TEST_F(InotifyTreeWatcherTest, aMountBelowTheRootIsReportedAndWatchedInsteadOfWhatItHides) {
    const MountNamespace mounts;
    if (!mounts.works())
        GTEST_SKIP() << "NOT MEASURED: no mounts of our own: " << mounts.reason();
    const auto point = folder.folder("/root/point");
    begin();
    cover({"/point"});
    EXPECT_TRUE(reports_(
        "/point", [&] { ASSERT_EQ(::mount("tessarine", point.c_str(), "tmpfs", 0, nullptr), 0); }));
    EXPECT_TRUE(reports_("/point", [&] { folder.write("/root/point/f", ""); }));
    EXPECT_TRUE(reports_("/point", [&] { ASSERT_EQ(::umount(point.c_str()), 0); }));
    EXPECT_TRUE(reports_("/point", [&] { folder.write("/root/point/f", ""); }));
}

TEST_F(InotifyTreeWatcherTest, aMountOverTheRootItselfIsReportedForTheRoot) {
    const MountNamespace mounts;
    if (!mounts.works())
        GTEST_SKIP() << "NOT MEASURED: no mounts of our own: " << mounts.reason();
    begin();
    cover({});
    EXPECT_TRUE(reports_(
        "", [&] { ASSERT_EQ(::mount("tessarine", root.c_str(), "tmpfs", 0, nullptr), 0); }));
    EXPECT_TRUE(reports_("", [&] { folder.write("/root/f", ""); }));
    ::umount2(root.c_str(), MNT_DETACH);
}

} // namespace
} // namespace tessarine
