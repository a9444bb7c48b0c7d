#include "launcherapp/platform/linux/system/files/TreeRemoval.h"

#include "tests/linux/EventLoop.h"
#include "tests/linux/MountNamespace.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/fsuid.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tessarine {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class TreeRemovalTest : public testing::Test {
protected:
    std::optional<std::string> remove(const std::string& name) {
        return TreeRemoval::remove(opened().number(), name, removed);
    }

    FileDescriptor opened() const {
        return FileDescriptor(::open(scratch.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }

    ScratchFolder scratch;
    std::atomic<std::size_t> removed = 0;
};

TEST_F(TreeRemovalTest, removesWhatIsNestedDeeperThanAnyPathReaches) {
    constexpr int depth = 600; // of nine bytes each, where a path ends after 4096
    constexpr auto name = "a folder";
    auto inner = opened();
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(::mkdirat(inner.number(), name, 0700), 0);
        ASSERT_EQ(::mkdirat(inner.number(), "beside", 0500), 0);
        inner = FileDescriptor(::openat(inner.number(), name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    EXPECT_EQ(remove(name), std::nullopt);
    EXPECT_EQ(removed, 2U * depth - 1); // one is beside the outermost
    EXPECT_EQ(remove("beside"), std::nullopt);
    EXPECT_TRUE(fs::is_empty(scratch.path()));
    EXPECT_EQ(remove("never was"), std::nullopt);
}

TEST_F(TreeRemovalTest, whatStaysKeepsTheFoldersAboveItAlone) {
    const MountNamespace mounts;
    if (!mounts.works())
        GTEST_SKIP() << "NOT MEASURED: " << mounts.reason();
    scratch.folder("/tree/a/held/place");
    scratch.folder("/tree/a/gone/too");
    scratch.folder("/tree/b");
    const auto place = scratch.path("/tree/a/held/place");
    ASSERT_EQ(::mount("none", place.c_str(), "tmpfs", 0, "mode=0000"), 0);
    scratch.write("/tree/a/held/place/file", "not in the tree");

    EXPECT_THAT(remove("tree").value_or(""), HasSubstr("place holds another mounted"));

    struct stat status {};

    ASSERT_EQ(::stat(place.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0U); // its owner's business
    EXPECT_EQ(scratch.text("/tree/a/held/place/file"), "not in the tree");
    EXPECT_FALSE(fs::exists(scratch.path("/tree/a/gone")));
    EXPECT_FALSE(fs::exists(scratch.path("/tree/b")));
    ::umount(place.c_str());
    EXPECT_EQ(remove("tree"), std::nullopt);
}

TEST_F(TreeRemovalTest, opensWhatItsOwnerMayNotChange) {
    if (::getuid() != 0)
        GTEST_SKIP() << "NOT MEASURED: only root becomes another user";
    scratch.folder("/tree/locked/inner");
    scratch.write("/tree/locked/inner/file", "x");
    ASSERT_EQ(::chmod(scratch.path().c_str(), 0777), 0);
    for (const auto* each :
         {"/tree/locked/inner/file", "/tree/locked/inner", "/tree/locked", "/tree"})
        ASSERT_EQ(::chown(scratch.path(each).c_str(), 4711, 4711), 0);
    for (const auto* each : {"/tree/locked/inner", "/tree/locked"})
        ASSERT_EQ(::chmod(scratch.path(each).c_str(), 0), 0);
    ::setfsuid(4711); // of this thread alone; root itself may do everything
    const auto problem = remove("tree");
    ::setfsuid(0);
    EXPECT_EQ(problem, std::nullopt);
    EXPECT_TRUE(fs::is_empty(scratch.path()));
}

} // namespace
} // namespace tessarine
