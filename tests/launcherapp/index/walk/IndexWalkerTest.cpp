#include "launcherapp/index/walk/IndexWalker.h"

#include "tests/fakes/MemoryDirectoryReader.h"
#include "tests/fakes/MemoryFileStore.h"

#include <gmock/gmock.h>

#include <random>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const std::set<std::string, std::less<>> skipped{"build", "node_modules"};
constexpr std::int64_t ample = 1000;
constexpr std::size_t mostDirs = 200;

class IndexWalkerTest : public testing::Test {
protected:
    IndexWalker::Policy policy{
        .folderDepth = 6, .fileDepth = 4, .skipDirs = &skipped, .budget = ample};

    IndexWalker::Result walk() { return walker.walkTree("/r", 1, policy); }

    IndexWalker::Reconciled reconcile(const std::vector<std::string>& changed,
                                      const ItemList& items) {
        return walker.reconcile("/r", changed, policy, items, mostDirs);
    }

    /// Paths below the root in their order, a folder's with "/" at its end.
    static std::vector<std::string> shape(const ItemList& items) {
        std::vector<std::string> paths;
        for (std::size_t i = 0; i < items.size(); ++i)
            paths.push_back(items.id(i).substr(3) + (items.isFolder(i) ? "/" : ""));
        return paths;
    }

    MemoryFileStore files;
    std::shared_ptr<MemoryDirectoryReader> reader = std::make_shared<MemoryDirectoryReader>(files);
    IndexWalker walker{reader, [this] { return seconds += 0.5; }};
    double seconds = 0;
};

TEST_F(IndexWalkerTest, aFoldersContentsComeRightAfterIt) {
    files.file("/r/b/z", "");
    files.file("/r/b/a/inner", "");
    files.file("/r/B", "");
    files.file("/r/b.txt", "");
    files.file("/r/a", "");
    EXPECT_THAT(shape(walk().items),
                ElementsAre("B", "a", "b/", "b/a/", "b/a/inner", "b/z", "b.txt"));
    EXPECT_EQ(walk().millis, 500); // between the two looks at the clock
}

TEST_F(IndexWalkerTest, depthsDecideWhatIsAnItemAndWhatIsOpened) {
    files.file("/r/1/2/3/file", "");
    files.file("/r/1/2/Pack.app/inside", "");
    files.folder("/r/1/2/3/4");

    const struct {
        int folderDepth, fileDepth, childDepth;
        std::vector<std::string> expected;
    } cases[] = {
        {0, 9, 1, {"1/"}}, // nothing is opened but the start
        {2, 9, 1, {"1/", "1/2/"}},
        {3, 2, 1, {"1/", "1/2/", "1/2/3/"}}, // the package lies too deep
        {3, 3, 1, {"1/", "1/2/", "1/2/3/", "1/2/Pack.app"}},
        {9, 4, 1, {"1/", "1/2/", "1/2/3/", "1/2/3/4/", "1/2/3/file", "1/2/Pack.app"}},
        {9, 4, 2, {"1/", "1/2/", "1/2/3/", "1/2/3/4/", "1/2/Pack.app"}}, // from one deeper
    };

    for (const auto& [folderDepth, fileDepth, childDepth, expected] : cases) {
        policy.folderDepth = folderDepth;
        policy.fileDepth = fileDepth;
        EXPECT_THAT(shape(walker.walkTree("/r", childDepth, policy).items),
                    ElementsAreArray(expected));
    }
}

TEST_F(IndexWalkerTest, theBudgetEndsAWalkAtTheSameItemEveryTime) {
    files.file("/r/a/1", "");
    files.file("/r/a/2", "");
    files.file("/r/b", "");
    policy.budget = 3;
    EXPECT_THAT(shape(walk().items), ElementsAre("a/", "a/1", "a/2"));
    EXPECT_TRUE(walk().capped);
    policy.budget = 4; // just enough, which is not capped
    EXPECT_FALSE(walk().capped);
    policy.budget = 0;
    EXPECT_TRUE(walk().capped && walk().opened);
    EXPECT_EQ(walk().items.digest(), 0u);
}

TEST_F(IndexWalkerTest, whatGoesOrTurnsIntoAFileMidWalkStaysWithoutChildren) {
    files.file("/r/a/in", "");
    files.file("/r/b/in", "");
    files.file("/r/c/in", "");
    files.file("/r/d/in", "");
    files.forbid("/r/d");
    files.beforeEntries = [this](const std::string& path) {
        if (path == "/r/a") {
            files.remove("/r/a");
            files.remove("/r/b");
            files.file("/r/b", "");
            files.remove("/r/c");
            files.link("/r/c", "/r"); // a loop, if it were followed
        }
    };
    const auto result = walk();
    EXPECT_TRUE(result.opened);
    EXPECT_THAT(shape(result.items), ElementsAre("a/", "b/", "c/", "d/"));
}

TEST_F(IndexWalkerTest, aRootMayBeALinkButNothingBelowItIsFollowed) {
    files.file("/elsewhere/a/file", "");
    files.link("/elsewhere/loop", "/elsewhere");
    files.link("/r", "/elsewhere");
    EXPECT_THAT(shape(walk().items), ElementsAre("a/", "a/file", "loop"));
    EXPECT_FALSE(walker.walkTree("/r", 2, policy).opened); // only a root is chosen by the user
}

TEST_F(IndexWalkerTest, theRootOfTheFileSystemIsWalked) {
    files.file("/r/file", "");
    const auto items = walker.walkTree("/", 1, policy).items;
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items.id(1), "/r/file");
    files.file("/r/more", "");
    const std::vector<std::string> changed{"/r"};
    EXPECT_EQ(walker.reconcile("/", changed, policy, items, mostDirs).added, 1u);
}

TEST_F(IndexWalkerTest, aStartThatIsNoFullPathIsNotOpened) {
    files.file("/r/file", "");
    for (const auto* start : {"", "r", "./r"}) // the first was once taken for "/"
        EXPECT_FALSE(walker.walkTree(start, 1, policy).opened) << start;
    EXPECT_TRUE(walker.walkTree("//r//", 1, policy).opened);
}

TEST_F(IndexWalkerTest, onlyDirectoriesThatAWalkWouldOpenArePlaced) {
    files.folder("/r/a/b/c");
    files.link("/r/link", "/r/a");

    const struct {
        std::string path;
        std::optional<int> depth;
    } cases[] = {
        {"/r/a", 1},
        {"/r/a/b/c", 3},
        {"/r//a/", 1},
        {"/r/gone/b", 2}, // what went is to be found gone
        {"/r/1/2/3/4/5", 5},
        {"/r/1/2/3/4/5/6", std::nullopt},
        {"/r", std::nullopt},
        {"/r/", std::nullopt},
        {"/rest/a", std::nullopt},
        {"/a", std::nullopt},
        {"/r/.hidden/b", std::nullopt},
        {"/r/a/build/b", std::nullopt},
        {"/r/a/Build", 2}, // skipped names are exact
        {"/r/a/Photos.noindex", std::nullopt},
        {"/r/Thing.app/Contents", std::nullopt},
        {"/r/v1.2/b", 2}, // a full stop makes no package
        {"/r/link", std::nullopt},
        {"/r/link/b", std::nullopt},
    };

    for (const auto& [path, depth] : cases)
        EXPECT_EQ(walker.place(path, "/r", policy), depth) << path;
    policy.folderDepth = 2; // files lie deeper than what is opened
    EXPECT_EQ(walker.place("/r/1/2/3", "/r", policy), 3);
}

TEST_F(IndexWalkerTest, whatStaysKeepsItsOrderAndNewItemsFollow) {
    files.file("/r/a/1", "");
    files.file("/r/a/3", "");
    files.file("/r/a-b/1", ""); // sorts between "a" and "a/"
    files.file("/r/b/1", "");
    const auto before = walk().items;
    files.file("/r/a/2/in", "");
    files.file("/r/a-b/0", "");
    files.remove("/r/a/1");
    files.remove("/r/b");
    // Doubled, one within another, in no order, and with a slash too many.
    const auto after =
        reconcile({"/r/a-b/", "/r/a/2", "/r/a", "/r/a", "/r/b", "/r//a/2/in"}, before);
    EXPECT_THAT(shape(after.items),
                ElementsAre("a/", "a/3", "a-b/", "a-b/1", "b/", "a/2/", "a/2/in", "a-b/0"));
    EXPECT_EQ(after.removed, 2u);
    EXPECT_EQ(after.added, 3u);
    EXPECT_EQ(after.dirsWalked, 3u);
    // The row of what went is another directory's.
    EXPECT_EQ(reconcile({"/r/a"}, after.items).items, after.items);
}

TEST_F(IndexWalkerTest, theBudgetCountsWhatTheRepairedListHoldsSoFar) {
    for (const auto* path : {"/r/a/1", "/r/bb/1", "/r/bb/2", "/r/c/1"})
        files.file(path, "");
    policy.budget = 7;
    const auto before = walk().items;
    ASSERT_EQ(before.size(), 7u);
    files.file("/r/a/2", "");
    files.file("/r/a/3", "");
    files.remove("/r/bb/1");
    files.remove("/r/bb/2");
    files.file("/r/c/2", "");
    files.file("/r/c/3", "");
    // The shortest paths are first, in the order given: "a" finds no room, "c" only by "bb".
    const auto after = reconcile({"/r/a", "/r/c", "/r/bb"}, before);
    EXPECT_THAT(shape(after.items), ElementsAre("a/", "a/1", "bb/", "c/", "c/1"));
    const auto next = reconcile({"/r/a", "/r/c"}, after.items);
    EXPECT_THAT(shape(next.items),
                ElementsAre("a/", "a/1", "bb/", "c/", "c/1", "a/2", "a/3")); // and none for "c"
}

TEST_F(IndexWalkerTest, aChangedKindIsARemovalAndAnAddition) {
    files.file("/r/d/x", "");
    files.file("/r/d/y/in", "");
    const auto before = walk().items;
    files.remove("/r/d/x");
    files.folder("/r/d/x");
    files.remove("/r/d/y");
    files.file("/r/d/y", "");
    const auto after = reconcile({"/r/d"}, before);
    EXPECT_THAT(shape(after.items), ElementsAre("d/", "d/x/", "d/y"));
    EXPECT_EQ(after.removed, 3u);
    EXPECT_EQ(after.added, 2u);
    EXPECT_EQ(after.items.digest(), walk().items.digest());
}

TEST_F(IndexWalkerTest, fullWalksAreAskedForWhereADeltaCannotTell) {
    files.file("/r/a/1", "");
    const auto before = walk().items;
    files.file("/r/a/2", "");
    const int listings = reader->listings;
    for (const auto& changed : std::vector<std::vector<std::string>>{
             {"/r/a", "/r"}, {"/r/"}, std::vector<std::string>(mostDirs + 1, "/r/a")}) {
        const auto result = reconcile(changed, before);
        EXPECT_TRUE(result.fullWalkNeeded);
        EXPECT_EQ(result.items, before);
    }
    EXPECT_EQ(reader->listings, listings);
    EXPECT_EQ(reconcile(std::vector<std::string>(mostDirs, "/r/a"), before).added, 1u);
}

TEST_F(IndexWalkerTest, onlyADirectoryThatIsGoneLosesItsItems) {
    const struct {
        const char* what;
        std::function<void()> happen;
        std::vector<std::string> left; ///< of what "a" holds
        std::size_t unread;
    } cases[] = {
        {"removed", [&] { files.remove("/r/a"); }, {}, 0},
        {"a file now", [&] { files.remove("/r/a"), files.file("/r/a", ""); }, {}, 0},
        {"can't be listed", [&] { files.forbid("/r/a"); }, {"a/1", "a/2"}, 1},
        {"breaks off", [&] { reader->broken.insert("/r/a"); }, {"a/1", "a/2"}, 1},
    };

    for (const auto& [what, happen, left, unread] : cases) {
        SCOPED_TRACE(what);
        for (const auto* path : {"/r/a/1", "/r/a/2", "/r/b/1"})
            files.file(path, "");
        const auto before = walk().items;
        files.file("/r/b/2", "");
        happen();
        const auto after = reconcile({"/r/a", "/r/b"}, before);
        auto expected = left;
        expected.insert(expected.begin(), "a/");
        expected.insert(expected.end(), {"b/", "b/1", "b/2"}); // its neighbour is repaired
        EXPECT_THAT(shape(after.items), ElementsAreArray(expected));
        EXPECT_EQ(after.dirsUnread, unread);
        EXPECT_EQ(after.fullWalkNeeded, unread > 0);
        files.allow("/r/a");
        files.remove("/r");
        reader->broken.clear();
    }
}

TEST_F(IndexWalkerTest, whatGoesTogetherWithItsRootIsKept) {
    files.file("/r/a/1", "");
    const auto before = walk().items;
    files.remove("/r");
    const auto after = reconcile({"/r/a"}, before);
    EXPECT_EQ(after.items, before);
    EXPECT_TRUE(after.fullWalkNeeded); // which will not open the root, and keep its list
}

TEST_F(IndexWalkerTest, aListingThatBreaksOffGivesWhatWasRead) {
    for (const auto* path : {"/r/a/1", "/r/a/2", "/r/b/1"})
        files.file(path, "");
    reader->broken = {"/r/a"};
    EXPECT_THAT(shape(walk().items), ElementsAre("a/", "a/1", "b/", "b/1"));
    EXPECT_FALSE(walk().partial); // that is told of the start alone
    reader->broken = {"/r"};
    EXPECT_THAT(shape(walk().items), ElementsAre("a/", "a/1", "a/2"));
    EXPECT_TRUE(walk().opened && walk().partial);
}

TEST_F(IndexWalkerTest, aDriveThatLeavesKeepsItsItemsUntilItIsWalkedAgain) {
    files.file("/r/a/b/1", "");
    files.file("/rest/b/1", "");
    const auto before = walk().items;

    walker.abort("/r");
    const auto aborted = walk();
    EXPECT_TRUE(aborted.aborted && !aborted.opened && aborted.items.empty());
    EXPECT_EQ(aborted.items.digest(), 0u);
    EXPECT_TRUE(walker.walkTree("/rest", 1, policy).opened); // the path is no prefix by bytes
    EXPECT_TRUE(walker.isAborted("/r/a/b"));
    EXPECT_TRUE(reconcile({"/r/a"}, before).fullWalkNeeded);
    files.remove("/r"); // unmounted: not to be read any more, which is not to be empty
    const auto gone = reconcile({"/r/a"}, before);
    EXPECT_TRUE(gone.fullWalkNeeded);
    EXPECT_EQ(gone.items, before);

    walker.readmit(std::vector<std::string>{"/r"});
    files.folder("/r"); // where it was mounted stands empty
    EXPECT_THAT(shape(reconcile({"/r/a"}, before).items), ElementsAre("a/"));
}

TEST_F(IndexWalkerTest, anAbortEndsAWalkThatIsUnderWay) {
    files.file("/r/a/1", "");
    files.file("/r/b/1", "");
    files.beforeEntries = [this](const std::string& path) {
        if (path == "/r/a")
            walker.abort("/r");
    };
    EXPECT_TRUE(walk().aborted);
}

TEST_F(IndexWalkerTest, anAbortIsClearedOnceTheWalksItEndsHaveEnded) {
    const std::vector<std::string> left{"/r/"};
    files.file("/r/a/1", "");
    files.file("/r/b/1", "");
    files.beforeEntries = [&](const std::string& path) {
        if (path == "/r/a") {
            walker.abort("/r");
            walker.readmitWhenIdle(left);
        }
    };
    EXPECT_TRUE(walk().aborted);
    files.beforeEntries = nullptr;
    EXPECT_TRUE(walk().opened);

    walker.abort("/r");
    EXPECT_TRUE(walk().aborted); // it is still leaving
    walker.readmitWhenIdle(left);
    EXPECT_FALSE(walker.isAborted("/r"));
}

/// Random changes to a tree in memory, each telling which directories a watch would report.
class Changes {
public:
    Changes(MemoryFileStore& files, unsigned seed) : files_(files), random_(seed) {}

    std::vector<std::string> make() {
        std::vector<std::string> changed;
        for (auto n = 1 + random_() % 5; n > 0; --n) {
            const auto folder = randomFolder();
            const auto path = (folder + "/").append(randomName());
            switch (random_() % 5) {
            case 0:
                files_.remove(path);
                break;
            case 1: // a file, in place of whatever was there
                files_.remove(path);
                files_.file(path, "");
                break;
            case 2: // a small tree, which a watch sees from its top
                files_.remove(path);
                files_.file(path + "/" + randomName() + "/" + randomName(), "");
                break;
            case 3:
                files_.remove(path);
                files_.link(path, "/r/a");
                break;
            default:
                changed.push_back(moved(path));
            }
            changed.push_back(folder);
        }
        std::shuffle(changed.begin(), changed.end(), random_);
        return changed;
    }

private:
    std::string randomName() {
        static const std::vector<std::string> names{
            "a", "b", "a-b", "build", ".hid", "P.app", "n.noindex", "bad\xff", "v.1", "c", "d"};
        return names[random_() % names.size()];
    }

    /// Mostly not the root, whose changes ask for a full walk.
    std::string randomFolder() {
        std::string path = "/r";
        for (auto n = random_() % 30 == 0 ? 0 : 1 + random_() % 6; n > 0; --n) {
            std::vector<std::string> folders;
            const auto entries = files_.entries(path);
            for (const auto& entry : *entries) {
                if (entry.kind == FileKind::directory && !entry.isLink)
                    folders.push_back(entry.name);
            }
            if (folders.empty())
                break;
            path += "/" + folders[random_() % folders.size()];
        }
        return path;
    }

    /// Moves a tree somewhere else, and gives the directory that has it now.
    std::string moved(const std::string& path) {
        const auto folder = randomFolder();
        const auto target = folder + "/" + randomName();
        if (target == path || target.starts_with(path + "/") || path.starts_with(target + "/"))
            return folder;
        files_.remove(target);
        move(path, target);
        files_.remove(path);
        return folder;
    }

    void move(const std::string& path, const std::string& target) {
        const auto what = files_.info(path);
        // A link could lead to where its own copy is being made.
        if (!what || files_.realPath(path) != path)
            return;
        if (what->kind != FileKind::directory) {
            files_.file(target, "");
            return;
        }
        const auto entries = files_.entries(path);
        files_.folder(target);
        for (const auto& entry : *entries) {
            if (!entry.isLink)
                move(path + "/" + entry.name, target + "/" + entry.name);
        }
    }

    MemoryFileStore& files_;
    std::mt19937 random_;
};

TEST_F(IndexWalkerTest, reconcileFindsWhatAFreshWalkFindsThroughLongRandomHistories) {
    std::size_t removed = 0;
    std::size_t added = 0;
    for (unsigned seed = 0; seed < 24; ++seed) {
        files.remove("/r");
        files.folder("/r");
        policy.foldersOnly = seed % 4 == 0;
        policy.folderDepth = 3 + static_cast<int>(seed % 4);
        policy.fileDepth = 1 + static_cast<int>(seed % 3);
        Changes changes(files, seed);
        auto current = walk().items;
        for (int step = 0; step < 400; ++step) {
            const auto changed = changes.make();
            auto repaired = reconcile(changed, current);
            const auto fresh = walk().items;
            ASSERT_EQ(repaired.fullWalkNeeded, std::ranges::count(changed, "/r") > 0);
            if (repaired.fullWalkNeeded)
                repaired.items = fresh;
            auto ours = shape(repaired.items);
            auto theirs = shape(fresh);
            ASSERT_EQ(ours.size(),
                      current.size() - repaired.removed + repaired.added +
                          (repaired.fullWalkNeeded ? fresh.size() - current.size() : 0));
            std::ranges::sort(ours);
            std::ranges::sort(theirs);
            ASSERT_EQ(ours, theirs) << "seed " << seed << " step " << step;
            ASSERT_EQ(repaired.items.digest(), fresh.digest());
            removed += repaired.removed;
            added += repaired.added;
            current = std::move(repaired.items);
        }
    }
    EXPECT_GT(removed, 500u); // else the comparison compared nothing
    EXPECT_GT(added, 500u);
}

} // namespace
} // namespace tessarine
