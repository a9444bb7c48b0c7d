#include "launcherapp/index/MountedVolumes.h"

#include "launcherapp/index/proof/VolumesSelftest.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/platform/DirectoryReader.h"
#include "tests/fakes/FakeMountTable.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A disk that must not be asked anything.
struct NoReader : DirectoryReader {
    std::optional<DirectoryListing> list(const std::string&) const override {
        ADD_FAILURE() << "a drive was read";
        return std::nullopt;
    }

    bool isLink(const std::string&) const override {
        ADD_FAILURE() << "a drive was looked at";
        return false;
    }

    bool isGone(const std::string&) const override {
        ADD_FAILURE() << "a drive was looked for";
        return false;
    }
};

class MountedVolumesTest : public testing::Test {
protected:
    void start() {
        volumes =
            std::make_unique<MountedVolumes>(mounts, services.prefs, walker, services.diagnostics);
        volumes->start([this](std::string_view reason) {
            reasons.emplace_back(reason);
            abortedAtReport = walker.isAborted("/media/u/A");
            siblingAborted = walker.isAborted("/media/u/AB/x");
        });
    }

    FakeServices services;
    FakeMountTable mounts;
    IndexWalker walker{std::make_shared<NoReader>(), [] { return 0.0; }};
    std::unique_ptr<MountedVolumes> volumes;
    std::vector<std::string> reasons;
    bool abortedAtReport = false;
    bool siblingAborted = false;
};

TEST_F(MountedVolumesTest, drivesAreTheUsersMounts) {
    const struct {
        const char* path;
        const char* type;
        bool isDrive;
    } cases[] = {
        {"/media/u/Stick", "vfat", true},
        {"/media/backup", "ext4", true},
        {"/run/media/u/Stick", "exfat", true},
        {"/mnt", "ext4", true},
        {"/mnt/share", "nfs4", true},
        {"/mnt/phone", "fuse.sshfs", true}, // a file system in user space may be a drive
        {"/run/media/u", "tmpfs", false},
        {"/run/media/u", "ext4", false}, // a user's folder, which the desktop may mount
        {"/media", "ext4", false},       // the place for drives, on a disk of its own
        {"/media/u/Stick/inner", "ext4", false},
        {"/mnt/a/b", "ext4", false},
        {"/mnt/ram", "tmpfs", false},
        {"/mnt/lazy", "autofs", false}, // to look at it would mount it
        {"/mntx/a", "ext4", false},
        {"/home/media/u/a", "ext4", false},
        {"/", "ext4", false},
    };

    for (const auto& [path, type, isDrive] : cases) {
        const std::vector<Mount> one{{.path = path, .source = "x", .type = type}};
        EXPECT_EQ(MountedVolumes::drivesAmong(one).size(), isDrive ? 1u : 0u) << path << type;
    }
}

TEST_F(MountedVolumesTest, arrivalsAndDeparturesAreToldWithTheirNames) {
    mounts.mount("/media/u/Old");
    start();
    EXPECT_THAT(reasons, IsEmpty()); // it was there before
    EXPECT_THAT(volumes->indexRoots(), ElementsAre("/media/u/Old"));

    mounts.mount("/media/u/A");
    mounts.mount("/var/lib/containers/x", "overlay"); // nobody's drive
    EXPECT_THAT(reasons, ElementsAre("A mounted"));
    EXPECT_THAT(volumes->mountedDrivePaths(), ElementsAre("/media/u/A", "/media/u/Old"));

    mounts.unmount("/media/u/Old");
    EXPECT_THAT(reasons, ElementsAre("A mounted", "Old left"));
    EXPECT_THAT(volumes->indexedNames(), ElementsAre(std::pair("/media/u/A", "A")));
}

TEST_F(MountedVolumesTest, aDriveThatLeavesTakesItsWalksAndItsStatusWithIt) {
    mounts.mount("/media/u/A");
    mounts.mount("/media/u/AB");
    start();
    volumes->setStatus("/media/u/A", "indexing…");
    volumes->noteUnreadable("/media/u/A");

    mounts.unmount("/media/u/A");
    EXPECT_TRUE(abortedAtReport);
    EXPECT_FALSE(siblingAborted);
    EXPECT_FALSE(walker.isAborted("/media/u/A/x")); // what stood there before is walked again
    EXPECT_EQ(volumes->status("/media/u/A"), "");
    EXPECT_THAT(volumes->unreadable(), IsEmpty());

    mounts.mount("/media/u/A");
    EXPECT_FALSE(abortedAtReport);
}

TEST_F(MountedVolumesTest, anotherDriveAtTheSamePlaceIsNews) {
    mounts.mount("/mnt/a");
    start();
    volumes->setStatus("/mnt/a", "3 files");
    mounts.replace("/mnt/a", "/dev/other");
    EXPECT_THAT(reasons, ElementsAre("a mounted; a left"));
    EXPECT_EQ(volumes->status("/mnt/a"), "");
    EXPECT_FALSE(walker.isAborted("/mnt/a"));
}

TEST_F(MountedVolumesTest, theUserDecidesWhichAreIndexed) {
    mounts.mount("/media/u/A");
    mounts.mount("/media/u/AB");
    mounts.mount("/mnt/B");
    start();
    services.prefs.excludedDrives.set({"/media/u/A", "B"});
    EXPECT_THAT(volumes->indexRoots(), ElementsAre("/media/u/AB"));
    EXPECT_EQ(volumes->drives().size(), 3u); // the settings list them all the same
    services.prefs.indexExternalDrives.set(false);
    EXPECT_THAT(volumes->indexRoots(), IsEmpty());
    EXPECT_EQ(reasons.size(), 2u);
    services.prefs.showRunningDot.set(false);
    EXPECT_EQ(reasons.size(), 2u);
}

TEST_F(MountedVolumesTest, aSystemThatNamesNoMountsIsLogged) {
    start();
    EXPECT_THAT(services.log(), testing::HasSubstr("drives: the system names no mounts"));
}

TEST_F(MountedVolumesTest, theSelfTestHolds) {
    const auto result = volumesSelftest();
    EXPECT_EQ(result.verdict, SelftestResult::Verdict::proved) << result.report;
    EXPECT_THAT(result.report, testing::StartsWith("selftest-volumes: 20 checks hold: 5 drives"));
}

} // namespace
} // namespace tessarine
