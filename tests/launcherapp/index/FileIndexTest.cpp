#include "launcherapp/index/FileIndex.h"

#include "LauncherCore/query/UsageLog.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "tests/fakes/FakeMountTable.h"
#include "tests/fakes/FakeServices.h"
#include "tests/fakes/FakeTreeWatcher.h"
#include "tests/fakes/MemoryDirectoryReader.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

constexpr auto cachePath = "/home/u/.local/share/tessarine/index.json";

class FileIndexTest : public testing::Test {
protected:
    FileIndexTest() {
        files().file("/home/u/docs/report.txt", "");
        files().file("/home/u/docs/old/notes.md", "");
        files().file("/home/u/pics/beach.jpg", "");
    }

    MemoryFileStore& files() { return services.platform.files; }

    VirtualTime& time() { return services.platform.time; }

    FileIndex& start(FileIndex::Run run = FileIndex::Run::resident) {
        index = std::make_unique<FileIndex>(
            FileIndex::Doors{.queue = services.platform.queue,
                             .work = services.platform.work,
                             .files = files(),
                             .watcher = trees,
                             .diagnostics = services.diagnostics},
            walker,
            volumes,
            FileIndex::Settings{.searchFolders = [this] { return folders; },
                                .foldersOnlyRoots = [this] { return foldersOnly; }},
            cachePath,
            run);
        volumes.start([this](std::string_view reason) { index->volumesChanged(reason); });
        index->start();
        time().settle();
        return *index;
    }

    /// A file appears, and the system tells of its folder.
    void create(const std::string& path) {
        files().file(path, "");
        trees.fire({path.substr(0, path.rfind('/'))});
        time().settle();
    }

    std::vector<std::string> found(std::string_view query) {
        std::vector<std::string> ids;
        for (const auto& each : index->search({.query = query, .limit = 6}, UsageLog()))
            ids.push_back(each.item.id);
        return ids;
    }

    /// Log lines with this text in them.
    std::size_t logged(const std::string& text) {
        const auto log = services.log();
        std::size_t count = 0;
        for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
            ++count;
        return count;
    }

    FakeServices services;
    FakeMountTable mounts;
    FakeTreeWatcher trees;
    std::vector<std::string> folders{"/home/u/docs", "/home/u/pics/"};
    std::vector<std::string> foldersOnly;
    std::shared_ptr<MemoryDirectoryReader> reader =
        std::make_shared<MemoryDirectoryReader>(services.platform.files);
    std::shared_ptr<IndexWalker> walker = std::make_shared<IndexWalker>(
        reader, [this] { return services.platform.queue.uptime().count(); });
    MountedVolumes volumes{mounts, services.prefs, *walker, services.diagnostics};
    std::unique_ptr<FileIndex> index;
};

TEST_F(FileIndexTest, aFirstStartWalksAndTheNextServesItsCacheAtOnce) {
    start();
    EXPECT_THAT(found("report"), ElementsAre("/home/u/docs/report.txt"));
    EXPECT_THAT(found("old"), ElementsAre("/home/u/docs/old"));
    EXPECT_EQ(index->items()->size(), 4u);
    EXPECT_THAT(services.log(),
                HasSubstr("file index roots (2 of 2 walked, 0 by delta): docs: 3 in "));
    EXPECT_TRUE(files().info(cachePath));

    files().remove("/home/u/docs/report.txt");
    services.platform.work.duration = Seconds{1};
    start();
    time().advance(Seconds{1});
    EXPECT_THAT(services.log(), HasSubstr("file index: loaded 4 cached items"));
    EXPECT_THAT(found("report"), ElementsAre("/home/u/docs/report.txt")); // not yet walked
    time().advance(Seconds{1});
    EXPECT_THAT(found("report"), IsEmpty());
}

TEST_F(FileIndexTest, aHeadlessRunServesTheCacheHoweverStale) {
    start();
    files().remove("/home/u/docs/report.txt");
    start(FileIndex::Run::headless);
    trees.fire({"/home/u/docs"});
    time().advance(Seconds{100000});
    EXPECT_THAT(found("report"), ElementsAre("/home/u/docs/report.txt"));
    EXPECT_EQ(logged("headless run, serving the cache without walking"), 1u);
}

TEST_F(FileIndexTest, aCacheThatIsNoneIsNoHarm) {
    for (const auto* text : {"",
                             "[",
                             "{}",
                             "[]",
                             "[{\"id\":\"/x\"}]",
                             "null",
                             "[1]",
                             R"([{"id":"x","name":"x","norm":"x","isFolder":false,"ext":""}])",
                             "[{\"id\":\"/x\xff\",\"name\":\"x\",\"norm\":\"x\",\"isFolder\":false,"
                             "\"ext\":\"\"}]"}) {
        files().file(cachePath, text);
        start();
        EXPECT_EQ(logged("cached items"), 0u) << text;
        EXPECT_THAT(found("beach"), ElementsAre("/home/u/pics/beach.jpg")) << text;
    }
}

TEST_F(FileIndexTest, theCacheOfADriveThatLeftIsNotServed) {
    const auto item = [](const std::string& path, const std::string& name) {
        return R"({"id":")" + path + R"(","name":")" + name + R"(","norm":")" + name +
               R"(","isFolder":true,"ext":""})";
    };
    mounts.mount("/media/u/Here");
    files().file(cachePath,
                 "[" + item("/media/u/Here", "here") + "," + item("/media/u/Here/a", "a in") + "," +
                     item("/media/u/Heretic", "heretic") + "," + item("/media/u/Gone/a", "a out") +
                     "]");
    start(FileIndex::Run::headless);
    EXPECT_EQ(index->items()->size(), 2u);
    EXPECT_EQ(index->items()->item(0), (IndexedItem{"/media/u/Here", "here", "here", true, ""}));
}

TEST_F(FileIndexTest, aSearchFolderWhereDrivesAreMountedIsTrusted) {
    files().file("/mnt/disks/data/film.mkv", "");
    folders = {"/mnt/disks/data"};
    start();
    start(FileIndex::Run::headless);
    EXPECT_THAT(found("film"), ElementsAre("/mnt/disks/data/film.mkv"));
    folders = {};
    start(FileIndex::Run::headless); // nothing of the cache is left, which is no reason to walk
    EXPECT_EQ(index->items()->size(), 0u);
    EXPECT_EQ(logged("loaded 0 cached items"), 1u);
}

TEST_F(FileIndexTest, aNewFileIsFoundAfterTwentySecondsByLookingAtItsFolderAlone) {
    start();
    const auto before = reader->listings;
    create("/home/u/docs/old/fresh.txt");
    time().advance(Seconds{19.9});
    EXPECT_THAT(found("fresh"), IsEmpty());
    time().advance(Seconds{0.2});
    EXPECT_THAT(found("fresh"), ElementsAre("/home/u/docs/old/fresh.txt"));
    EXPECT_EQ(reader->listings, before + 1);
    EXPECT_THAT(services.log(),
                HasSubstr("(0 of 2 walked, 1 by delta): docs: delta +1 -0 over 1 dir(s)"));
    EXPECT_THAT(files().read(cachePath, 1 << 20)->find("fresh.txt"), Not(std::string::npos));
}

TEST_F(FileIndexTest, whatIsWalkedIsWatched) {
    start();
    ASSERT_EQ(trees.streams.size(), 1u);
    EXPECT_THAT(trees.streams[0]->roots, ElementsAre("/home/u/docs", "/home/u/pics"));
    EXPECT_EQ(trees.streams[0]->latency, Seconds{5});
    ASSERT_FALSE(trees.streams[0]->covers.empty());
    EXPECT_THAT(trees.streams[0]->covers[0].directories,
                ElementsAre("/home/u/docs", "/home/u/docs/old"));
    create("/home/u/docs/new/a.txt");
    trees.fire({"/home/u/docs/sub"}); // a folder that is not there yet
    time().advance(Seconds{20});
    EXPECT_THAT(trees.streams[0]->covers.back().directories, Contains("/home/u/docs/old"));
}

TEST_F(FileIndexTest, theWaitGrowsUntilOneLikeItHasPassed) {
    start();
    std::vector<double> waits;
    for (int i = 0; i < 7; ++i) {
        const auto before = index->published();
        const auto begun = time().uptime();
        create("/home/u/docs/old/f" + std::to_string(i));
        while (index->published() == before && waits.size() < 7)
            time().advance(Seconds{1});
        waits.push_back((time().uptime() - begun).count());
    }
    // As long again after each rebuild that changed something the wait is short once more, even
    // with the next rebuild waiting.
    EXPECT_THAT(waits, ElementsAre(20, 40, 20, 40, 20, 40, 20));
}

TEST_F(FileIndexTest, changesThatChangeNothingBackOffToAnHour) {
    start();
    const auto saved = logged("cache write skipped");
    double longest = 0;
    for (int i = 0; i < 14; ++i) {
        const auto before = index->published();
        const auto begun = time().uptime();
        trees.fire({"/home/u/docs" + std::string("/old")});
        while (index->published() == before)
            time().advance(Seconds{5});
        longest = std::max(longest, (time().uptime() - begun).count());
    }
    EXPECT_EQ(longest, 3600);
    EXPECT_EQ(logged("cache write skipped") - saved, 14u);
    EXPECT_THAT(services.log(), HasSubstr("unchanged at 4 items (run 14); cache write skipped"));
}

TEST_F(FileIndexTest, aLostBatchMeansAFullWalkWhichIsHeldWhileDeltasGoOn) {
    start();
    services.platform.work.duration = Seconds{10}; // a walk that takes long
    index->rebuild(FileIndex::Force::yes);
    time().advance(Seconds{10});
    EXPECT_NEAR(index->lastBuildMillis(), 0, 1); // the fake's walk itself takes no time
    services.platform.work.duration = Seconds{0};

    files().file("/home/u/docs/lost.txt", "");
    trees.fire({"/home/u"}, TreeChanges::droppedFlag);
    EXPECT_THAT(
        services.log(),
        HasSubstr("an event batch was dropped by the daemon (flags 0x4); every root marked dirty"));
    time().advance(Seconds{20});
    EXPECT_THAT(services.log(),
                HasSubstr("file index: walk held for 10s more (last walk 0s; holding "
                          "the index under a tenth of a core)"));
    EXPECT_THAT(found("lost"), IsEmpty());
    time().advance(Seconds{10});
    EXPECT_THAT(found("lost"), ElementsAre("/home/u/docs/lost.txt"));
}

TEST_F(FileIndexTest, aHeldWalkHoldsBackNoOtherRoot) {
    start();
    trees.fire({"/home/u/pics"}); // the root itself: a full walk, held for half a minute
    create("/home/u/docs/old/quick.txt");
    time().advance(Seconds{20.1});
    EXPECT_THAT(found("quick"), ElementsAre("/home/u/docs/old/quick.txt"));
    EXPECT_EQ(logged("walk held"), 1u);
}

TEST_F(FileIndexTest, whatIsAskedForDuringARebuildHappensAfterIt) {
    services.platform.work.duration = Seconds{1};
    start();
    time().advance(Seconds{1.5}); // the first walk runs
    ASSERT_TRUE(index->isBuilding());
    files().file("/home/u/new/x.txt", "");
    folders.push_back("/home/u/new");
    index->rootsChanged();
    time().advance(Seconds{5});
    EXPECT_THAT(found("x.txt"), ElementsAre("/home/u/new/x.txt"));
}

TEST_F(FileIndexTest, aFolderThatIsNoLongerSearchedGoesWithoutAWalkOfTheOthers) {
    start();
    const auto before = reader->listings;
    folders = {"/home/u/docs"};
    index->rootsChanged();
    time().settle();
    EXPECT_THAT(found("beach"), IsEmpty());
    EXPECT_EQ(reader->listings, before);
    EXPECT_THAT(trees.streams[0]->roots, ElementsAre("/home/u/docs"));
}

TEST_F(FileIndexTest, aFolderThatGoesDuringARebuildGoesWithIt) {
    services.platform.work.duration = Seconds{1};
    start();
    time().advance(Seconds{3});
    index->rebuild(FileIndex::Force::yes);
    time().advance(Seconds{0.5});
    folders = {"/home/u/docs"};
    index->rootsChanged();
    time().advance(Seconds{5});
    EXPECT_THAT(found("beach"), IsEmpty());
    EXPECT_THAT(*files().read(cachePath, 1 << 20), Not(HasSubstr("beach")));
}

TEST_F(FileIndexTest, aChangedChoiceOfFoldersAloneIsNotLostDuringARebuild) {
    services.platform.work.duration = Seconds{1};
    start();
    time().advance(Seconds{1.5});
    foldersOnly = {"/home/u/docs"};
    index->rebuild(FileIndex::Force::yes);
    time().advance(Seconds{5});
    EXPECT_THAT(found("report"), IsEmpty());
}

TEST_F(FileIndexTest, whatHappensDuringAHoldIsFoundInTime) {
    start();
    trees.fire({"/home/u/pics"});
    time().advance(Seconds{21}); // its walk is held by now
    EXPECT_EQ(logged("walk held"), 1u);
    create("/home/u/docs/old/quick.txt");
    trees.fire({"/home/u/pics"});
    time().advance(Seconds{41});
    EXPECT_THAT(found("quick"), ElementsAre("/home/u/docs/old/quick.txt"));
}

TEST_F(FileIndexTest, everySixHoursTheNextRebuildWalksEverything) {
    start();
    files().file("/home/u/pics/missed.jpg", ""); // an event that never came
    time().advance(Seconds{21601});
    EXPECT_THAT(found("missed"), IsEmpty()); // there is no timer for it
    create("/home/u/docs/old/any");
    time().advance(Seconds{21});
    EXPECT_THAT(found("missed"), ElementsAre("/home/u/pics/missed.jpg"));
    EXPECT_THAT(services.log(), HasSubstr("(periodic full walk: 1 item(s) differ from the "));
}

TEST_F(FileIndexTest, aFolderThatCannotBeReadKeepsWhatItHad) {
    start();
    files().forbid("/home/u/docs");
    index->rebuild(FileIndex::Force::yes);
    time().settle();
    EXPECT_THAT(found("report"), ElementsAre("/home/u/docs/report.txt"));
    EXPECT_THAT(services.log(), HasSubstr("docs: could not open; kept 3"));
}

TEST_F(FileIndexTest, aSearchFolderThatIsNoFullPathIsSkippedAndToldOfOnce) {
    folders = {"", "pics", "/home//u/docs//"};
    start();
    EXPECT_THAT(index->roots(), ElementsAre("/home/u/docs"));
    EXPECT_THAT(trees.streams[0]->roots, ElementsAre("/home/u/docs"));
    EXPECT_EQ(index->items()->size(), 3u);
    index->rootsChanged();
    EXPECT_EQ(logged("search folders that are no full path are skipped: \"\", \"pics\""), 1u);
    create("/home/u/docs/old/fresh.txt");
    time().advance(Seconds{20.1});
    EXPECT_THAT(found("fresh"), ElementsAre("/home/u/docs/old/fresh.txt"));
}

TEST_F(FileIndexTest, anEmptySearchFolderTrustsNoDriveThatLeft) {
    files().file(cachePath,
                 R"([{"id":"/media/u/Gone/a","name":"a","norm":"a","isFolder":true,"ext":""}])");
    folders = {""};
    start(FileIndex::Run::headless);
    EXPECT_EQ(index->items()->size(), 0u);
}

TEST_F(FileIndexTest, belowTheRootOfTheFileSystemNoMoreIsWatchedThanWasOpened) {
    files().folder("/1/2/3/4/5/6");
    folders = {"/"};
    start();
    const auto& watched = trees.streams[0]->covers[0].directories;
    EXPECT_THAT(watched, Contains("/1/2/3/4/5"));
    EXPECT_THAT(watched, Not(Contains("/1/2/3/4/5/6")));
}

TEST_F(FileIndexTest, aListingThatBreaksOffTakesNothingAway) {
    files().file("/media/u/Stick/a.mkv", "");
    files().file("/media/u/Stick/b.mkv", "");
    mounts.mount("/media/u/Stick");
    start();
    reader->broken = {"/home/u/docs", "/media/u/Stick"};
    index->rebuild(FileIndex::Force::yes);
    time().settle();
    EXPECT_THAT(found("report"), ElementsAre("/home/u/docs/report.txt"));
    EXPECT_THAT(found("b.mkv"), ElementsAre("/media/u/Stick/b.mkv"));
    EXPECT_EQ(logged("docs: reading it broke off; kept 3"), 1u);

    // Where nothing was known before, a part is better than nothing.
    files().file("/home/u/new/1.txt", "");
    files().file("/home/u/new/2.txt", "");
    reader->broken = {"/home/u/new"};
    folders.push_back("/home/u/new");
    index->rootsChanged();
    time().settle();
    EXPECT_THAT(found("1.txt"), ElementsAre("/home/u/new/1.txt"));
}

TEST_F(FileIndexTest, aChangedFolderThatCannotBeReadKeepsItsItemsUntilAFullWalk) {
    start();
    files().forbid("/home/u/docs/old");
    trees.fire({"/home/u/docs/old"});
    create("/home/u/docs/more/x.txt");
    trees.fire({"/home/u/docs/more"});
    time().advance(Seconds{20.1});
    EXPECT_THAT(found("notes"), ElementsAre("/home/u/docs/old/notes.md"));
    EXPECT_EQ(logged("docs: 1 dir(s) could not be read and keep what they held; full walk next"),
              1u);
    EXPECT_THAT(found("x.txt"), ElementsAre("/home/u/docs/more/x.txt"));
    files().allow("/home/u/docs/old");
    files().file("/home/u/docs/old/unseen.txt", "");
    time().advance(Seconds{31}); // for which the walk is held
    EXPECT_THAT(found("unseen"), ElementsAre("/home/u/docs/old/unseen.txt"));
}

TEST_F(FileIndexTest, aRootMayBeForFoldersAlone) {
    foldersOnly = {"/home/u/docs/"};
    start();
    EXPECT_THAT(found("report"), IsEmpty());
    EXPECT_THAT(found("old"), ElementsAre("/home/u/docs/old"));
}

TEST_F(FileIndexTest, aDriveIsWalkedOnItsOwnAndDelaysNothing) {
    files().file("/media/u/Stick/film.mkv", "");
    services.platform.work.apartDuration = Seconds{60};
    start();
    mounts.mount("/media/u/Stick");
    time().advance(Seconds{6});
    EXPECT_THAT(found("report"), ElementsAre("/home/u/docs/report.txt"));
    EXPECT_EQ(volumes.status("/media/u/Stick"),
              "waiting for you to allow access in the macOS dialog");
    time().advance(Seconds{60});
    EXPECT_THAT(found("film"), ElementsAre("/media/u/Stick/film.mkv"));
    EXPECT_THAT(found("stick"), ElementsAre("/media/u/Stick"));
    EXPECT_EQ(volumes.status("/media/u/Stick"), "0 folders and 1 files indexed");

    create("/media/u/Stick/later.mkv"); // the root itself changed: a walk among the others
    time().advance(Seconds{100});       // held for half a minute, then a minute of walking
    EXPECT_THAT(found("later"), ElementsAre("/media/u/Stick/later.mkv"));
    EXPECT_THAT(found("stick"), ElementsAre("/media/u/Stick"));

    mounts.unmount("/media/u/Stick");
    time().settle();
    EXPECT_THAT(found("film"), IsEmpty());
}

TEST_F(FileIndexTest, aDriveThatHangsOnALaterWalkHoldsUpNothing) {
    files().file("/media/u/Share/film.mkv", "");
    mounts.mount("/media/u/Share");
    start();
    ASSERT_THAT(found("film"), ElementsAre("/media/u/Share/film.mkv"));
    services.platform.work.apartDuration = Seconds{1e6};
    trees.fire({"/media/u/Share", "/media/u/Share/below"});
    index->rebuild(FileIndex::Force::yes);
    create("/home/u/docs/old/quick.txt");
    time().advance(Seconds{21});
    EXPECT_THAT(found("quick"), ElementsAre("/home/u/docs/old/quick.txt"));
    EXPECT_FALSE(index->isBuilding());
    // It is replaced by one that answers.
    mounts.unmount("/media/u/Share");
    services.platform.work.apartDuration = Seconds{1};
    files().file("/media/u/Share/other.mkv", "");
    mounts.mount("/media/u/Share");
    time().advance(Seconds{2});
    EXPECT_THAT(found("other"), ElementsAre("/media/u/Share/other.mkv"));
}

TEST_F(FileIndexTest, aDriveThatLeavesOrRefusesGivesNothing) {
    files().file("/media/u/Stick/film.mkv", "");
    files().file("/media/u/Locked/a", "");
    files().forbid("/media/u/Locked");
    start();
    services.platform.work.apartDuration = Seconds{10};
    mounts.mount("/media/u/Stick");
    mounts.mount("/media/u/Locked");
    time().advance(Seconds{1});
    mounts.unmount("/media/u/Stick");
    time().advance(Seconds{20});
    EXPECT_THAT(found("film"), IsEmpty());
    EXPECT_THAT(volumes.unreadable(), ElementsAre("/media/u/Locked"));
    EXPECT_EQ(volumes.status("/media/u/Locked"), "Tessarine needs permission to read this drive");
}

} // namespace
} // namespace tessarine
