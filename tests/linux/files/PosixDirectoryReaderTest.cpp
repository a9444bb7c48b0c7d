#include "launcherapp/platform/linux/files/PosixDirectoryReader.h"

#include "launcherapp/index/proof/WalkerDiff.h"
#include "launcherapp/index/proof/WalkerSelftests.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/index/walk/LegacyWalk.h"
#include "launcherapp/platform/linux/files/PosixFileStore.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/MountNamespace.h"

#include <gmock/gmock.h>

#include <climits>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr IndexWalker::Policy everything{.folderDepth = 1000, .fileDepth = 1000, .budget = 100000};

class PosixDirectoryReaderTest : public testing::Test {
protected:
    /// Names in their order, a directory's with "/" at its end.
    std::vector<std::string> names(const std::string& path) const {
        const auto listing = reader.list(path);
        if (!listing)
            return {"(nothing)"};
        std::vector<std::string> result;
        for (std::size_t i = 0; i < listing->size(); ++i)
            result.push_back(std::string(listing->name(i)) + (listing->isDirectory(i) ? "/" : ""));
        return result;
    }

    IndexWalker::Result walk() const { return walker.walkTree(folder.path(), 1, everything); }

    /// With every field, and in the same order.
    void expectAsLegacy(const IndexWalker::Policy& policy) const {
        const auto list = walker.walkTree(folder.path(), 1, policy).items;
        std::vector<IndexedItem> items;
        for (std::size_t i = 0; i < list.size(); ++i)
            items.push_back(list.item(i));
        EXPECT_TRUE(legacyWalk(folder.path(), policy) == items);
    }

    ScratchFolder folder;
    const PosixDirectoryReader reader;
    IndexWalker walker{std::make_shared<PosixDirectoryReader>(), [] { return 0.0; }};
};

TEST_F(PosixDirectoryReaderTest, listsByBytesAndTellsDirectoriesFromLinksToThem) {
    folder.folder("/dir");
    folder.write("/B", "");
    folder.write("/a", "");
    folder.write("/.hidden", "");
    folder.folder("/.git");
    ::symlink("dir", folder.path("/link").c_str());
    ::symlink("loop", folder.path("/loop").c_str());
    ::mkfifo(folder.path("/pipe").c_str(), 0600);
    EXPECT_THAT(names(folder.path()), ElementsAre("B", "a", "dir/", "link", "loop", "pipe"));
    EXPECT_THAT(names(folder.path("/dir")), ElementsAre());
    for (const auto* none : {"/link", "/loop", "/a", "/pipe", "/gone"})
        EXPECT_THAT(names(folder.path(none)), ElementsAre("(nothing)")) << none;
    EXPECT_THAT(names(folder.path("/link/.")), ElementsAre());
    EXPECT_TRUE(reader.isLink(folder.path("/link")));
    EXPECT_TRUE(reader.isLink(folder.path("/loop")));
    EXPECT_FALSE(reader.isLink(folder.path("/dir")));
    EXPECT_FALSE(reader.isLink(folder.path("/gone")));
}

TEST_F(PosixDirectoryReaderTest, onlyWhatIsNoDirectoryForCertainIsGone) {
    folder.folder("/dir");
    folder.write("/file", "");
    ::symlink("dir", folder.path("/link").c_str());
    const std::string tooLong = "/" + std::string(300, 'x');
    std::string far; // beyond what the kernel takes at once
    for (int i = 0; i < 20; ++i)
        far += "/" + std::string(250, 'x');

    const struct {
        std::string path;
        bool isGone;
    } cases[] = {
        {"/dir", false},
        {"/link/.", false},
        {"/link", true},
        {"/file", true},
        {"/file/.", true},
        {"/file/below", true},
        {"/none", true},
        {"/none/below", true},
        {far, true},
        {tooLong, false}, // the answer is a failure of another kind
    };

    for (const auto& [path, isGone] : cases)
        EXPECT_EQ(reader.isGone(folder.path(path)), isGone) << path;
}

/// Mounts a file system whose program has ended: whatever it is asked, it fails.
std::string mountDead(const std::string& path) {
    const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    const auto options = "fd=" + std::to_string(device) + ",rootmode=40000,user_id=0,group_id=0";
    const bool works =
        device >= 0 && ::mount("dead", path.c_str(), "fuse", 0, options.c_str()) == 0;
    const std::string reason = works ? "" : std::strerror(errno);
    ::close(device);
    return reason;
}

TEST_F(PosixDirectoryReaderTest, aDeadShareInsideATreeHidesNothingElseAndKeepsItsItems) {
    const MountNamespace mounts;
    if (!mounts.works())
        GTEST_SKIP() << "NOT MEASURED: no mounts of our own: " << mounts.reason();
    for (const auto* path : {"/a", "/dead/in", "/z/in"})
        folder.folder(path);
    const auto before = walk().items;
    if (const auto reason = mountDead(folder.path("/dead")); !reason.empty())
        GTEST_SKIP() << "NOT MEASURED: no file system of our own: " << reason;

    EXPECT_THAT(names(folder.path("/dead")), ElementsAre("(nothing)"));
    EXPECT_FALSE(reader.isGone(folder.path("/dead")));
    EXPECT_EQ(walk().items.size(), 4u);
    expectAsLegacy(everything);
    const std::vector<std::string> changed{folder.path("/dead")};
    const auto after = walker.reconcile(folder.path(), changed, everything, before, 200);
    EXPECT_EQ(after.items, before);
    EXPECT_TRUE(after.fullWalkNeeded);
    ::umount(folder.path("/dead").c_str());
}

TEST_F(PosixDirectoryReaderTest, aDirectoryOfAnySizeIsSorted) {
    std::mt19937 random(20260203);
    for (const int count : {2, 47, 48, 49, 3000}) { // about where the way of sorting changes
        const auto path = folder.folder("/" + std::to_string(count));
        std::set<std::string> expected;
        while (expected.size() < static_cast<std::size_t>(count)) {
            // Many share their first eight bytes, and some are only a part of others.
            std::string name = random() % 2 ? "IMG_2023" : "";
            for (auto n = 1 + random() % 6; n > 0; --n)
                name += std::vector<std::string>{
                    "a", "b", "\x01", "\xc3\xa9", "\xff", "Z"}[random() % 6];
            expected.insert(name);
        }
        for (const auto& name : expected)
            folder.write("/" + std::to_string(count) + "/" + name, "");
        EXPECT_THAT(names(path), testing::ElementsAreArray(expected)) << count;
    }
}

TEST_F(PosixDirectoryReaderTest, namesThatNobodyWouldChooseAreWalked) {
    const auto deep = folder.folder("/new\nline/\xff\xfe/" + std::string(255, 'd'));
    std::ofstream(deep + "/" + std::string(255, 'f'));
    std::ofstream(deep + "/\x1b[31m.T\xffT");
    folder.write("/ blank ", "");
    folder.write("/ends.", "");
    EXPECT_EQ(walk().items.size(), 7u);
    expectAsLegacy(everything);
}

TEST_F(PosixDirectoryReaderTest, pathsBeyondTheKernelsLimitAreWalked) {
    // Made from inside, since nothing so long can be named.
    const std::string name(250, 'x');
    int directory = ::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY);
    constexpr int depth = 2 * PATH_MAX / 250 + 3;
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(::mkdirat(directory, name.c_str(), 0700), 0);
        const int next = ::openat(directory, name.c_str(), O_RDONLY | O_DIRECTORY);
        ::close(directory);
        directory = next;
    }
    ::close(::openat(directory, "file", O_CREAT | O_WRONLY, 0600));
    ::symlinkat("file", directory, "link");
    ::close(directory);

    const auto items = walk().items;
    ASSERT_EQ(items.size(), static_cast<std::size_t>(depth) + 2);
    EXPECT_EQ(items.name(items.size() - 2), "file");
    EXPECT_TRUE(reader.isLink(items.id(items.size() - 1)));
    EXPECT_FALSE(reader.isLink(items.id(items.size() - 2)));
    EXPECT_THAT(names(items.id(items.size() - 3) + "/gone"), ElementsAre("(nothing)"));
}

TEST_F(PosixDirectoryReaderTest, whatMayNotBeReadHidesNothingElse) {
    folder.folder("/closed/in");
    folder.folder("/open");
    folder.write("/open/file", "");
    ::chmod(folder.path().c_str(), 0755);
    ::chmod(folder.path("/closed").c_str(), 0);
    // Nothing is closed to the super-user, who mostly runs the tests.
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0 && ::setuid(nobody) != 0)
            ::_exit(2);
        ::_exit(walk().opened && walk().items.size() == 3 &&
                        legacyWalk(folder.path(), everything)->size() == 3
                    ? 0
                    : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ::chmod(folder.path("/closed").c_str(), 0700);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(PosixDirectoryReaderTest, bothWalkersAgreeOnRandomTreesUnderEveryPolicy) {
    std::mt19937 random(20260204);
    const std::vector<std::string> parts{
        "a", "b", "a-b", "A.app", "n.noindex", ".hid", "build", "x.tar.gz", "end.", "v.1"};
    for (int i = 0; i < 300; ++i) {
        std::string path;
        for (auto n = 1 + random() % 7; n > 0; --n)
            path += "/" + parts[random() % parts.size()];
        std::error_code taken; // by a file, which then stays
        std::filesystem::create_directories(folder.path(path), taken);
        if (random() % 2)
            folder.write(path + "/file" + std::to_string(random() % 3), "");
        if (random() % 8 == 0)
            ::symlink(folder.path().c_str(), folder.path(path + "/loop").c_str());
    }
    const std::set<std::string, std::less<>> skipped{"build"};
    for (int round = 0; round < 60; ++round) {
        const IndexWalker::Policy policy{
            .foldersOnly = random() % 3 == 0,
            .folderDepth = static_cast<int>(random() % 8),
            .fileDepth = static_cast<int>(random() % 8),
            .skipDirs = random() % 2 ? &skipped : nullptr,
            .budget = static_cast<std::int64_t>(random() % 2 ? 100000 : random() % 200)};
        expectAsLegacy(policy);
    }
    EXPECT_GT(walk().items.size(), 200u);
    const std::vector<WalkerDiffRoot> roots{{.path = folder.path(), .policy = everything}};
    const auto diff = walkerDiff(walker, roots, [] { return 0.0; });
    EXPECT_EQ(diff.verdict, SelftestResult::Verdict::proved) << diff.report;
}

/// Sees one entry less than there is, or one more.
class WrongReader : public PosixDirectoryReader {
public:
    std::optional<DirectoryListing> list(const std::string& path) const override {
        const auto listing = PosixDirectoryReader::list(path);
        DirectoryListing wrong;
        for (std::size_t i = 0; listing && i < listing->size(); ++i) {
            if (listing->name(i) != "f3")
                wrong.add(listing->name(i), listing->isDirectory(i));
        }
        return listing ? std::optional(std::move(wrong)) : std::nullopt;
    }
};

TEST_F(PosixDirectoryReaderTest, theSelftestsProveThisReaderAndRefuteAWrongOne) {
    PosixFileStore files;
    // With a slash more than the ids of the walk have.
    const Environment environment{.temporaryDir = "//" + folder.path()};
    for (const auto& selftest : {walkerSelftest, deltaSelftest}) {
        const auto result = selftest(walker, files, environment);
        EXPECT_EQ(result.verdict, SelftestResult::Verdict::proved) << result.report;
    }
    EXPECT_THAT(names(folder.path()), ElementsAre()); // they leave nothing behind

    const IndexWalker wrong(std::make_shared<WrongReader>(), [] { return 0.0; });
    EXPECT_THAT(walkerSelftest(wrong, files, environment).report,
                HasSubstr("\nselftest-walker: legacy walker disagrees on the fixture: only-legacy "
                          "d1/d2/d3/f3;"));
    folder.write("/f3", "");
    const std::vector<WalkerDiffRoot> roots{{.path = folder.path(), .policy = everything}};
    EXPECT_EQ(walkerDiff(wrong, roots, [] { return 0.0; }).report,
              folder.path() +
                  ": new 0 items in 0 ms (again: 0 ms); legacy 1 items in 0 ms; tree "
                  "churn between walks 0; only-new 0; only-legacy 1\n"
                  "walker-diff: only-legacy " +
                  folder.path("/f3") +
                  "\nwalker-diff: 1 roots, 0 items; tree churn between walks 0; only-new 0; "
                  "only-legacy 1");

    const Environment nowhere{.temporaryDir = "/proc/none"};
    EXPECT_EQ(deltaSelftest(walker, files, nowhere).verdict, SelftestResult::Verdict::notMeasured);
}

/// Can't rename.
class FailingStore : public PosixFileStore {
public:
    void rename(const std::string& from, const std::string&) override {
        throw FileError(from + " could not be renamed");
    }
};

TEST_F(PosixDirectoryReaderTest, aSelftestThatBreaksOffStillReportsWhatHadFailed) {
    FailingStore files;
    const Environment environment{.temporaryDir = folder.path()};
    for (const auto& selftest : {walkerSelftest, deltaSelftest}) {
        const auto result = selftest(walker, files, environment);
        EXPECT_EQ(result.verdict, SelftestResult::Verdict::notMeasured);
        EXPECT_THAT(result.report, HasSubstr(": NOT MEASURED, "));
    }
    const IndexWalker wrong(std::make_shared<WrongReader>(), [] { return 0.0; });
    const auto refuted = walkerSelftest(wrong, files, environment);
    EXPECT_EQ(refuted.verdict, SelftestResult::Verdict::refuted);
    EXPECT_THAT(refuted.report, HasSubstr("selftest-walker: the fixture: missing d1/d2/d3/f3;"));
    EXPECT_THAT(refuted.report, HasSubstr("could not be renamed"));
}

TEST_F(PosixDirectoryReaderTest, aRootThatCannotBeOpenedIsNeverAgreement) {
    const auto clock = [] { return 0.0; };
    const WalkerDiffRoot gone{.path = folder.path("/gone"), .policy = everything};
    const std::vector alone{gone};
    const auto nothing = walkerDiff(walker, alone, clock);
    EXPECT_EQ(nothing.verdict, SelftestResult::Verdict::notMeasured);
    EXPECT_EQ(nothing.report,
              "walker-diff: " + gone.path +
                  ": NOT MEASURED, it could not be opened\n"
                  "walker-diff: 0 roots, 0 items; tree churn between walks 0; only-new 0; "
                  "only-legacy 0\nwalker-diff: NOT MEASURED, no root was compared");
    EXPECT_EQ(walkerDiff(walker, {}, clock).verdict, SelftestResult::Verdict::notMeasured);

    folder.write("/file", "");
    const std::vector both{gone, {.path = folder.path(), .policy = everything}};
    const auto one = walkerDiff(walker, both, clock);
    EXPECT_EQ(one.verdict, SelftestResult::Verdict::proved);
    EXPECT_THAT(one.report, HasSubstr("NOT MEASURED"));
    EXPECT_THAT(one.report, HasSubstr("walker-diff: 1 roots, 1 items;"));
}

TEST_F(PosixDirectoryReaderTest, theRootsOfADiffShareABudget) {
    for (const auto* path : {"/a", "/b", "/c"})
        folder.write(path, "");
    auto policy = everything;
    policy.budget = 5;
    const std::vector roots(3, WalkerDiffRoot{.path = folder.path(), .policy = policy});
    const auto diff = walkerDiff(walker, roots, [] { return 0.0; });
    EXPECT_EQ(diff.verdict, SelftestResult::Verdict::proved);
    EXPECT_THAT(diff.report, HasSubstr("new 3 items"));
    EXPECT_THAT(diff.report, HasSubstr("new 2 items in 0 ms (again: 0 ms); legacy 2 items"));
    EXPECT_THAT(diff.report, HasSubstr("NOT MEASURED, those before it have filled the index"));
}

} // namespace
} // namespace tessarine
