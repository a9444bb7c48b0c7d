#include "launcherapp/platform/linux/files/ProcMountTable.h"

#include "tests/linux/EventLoop.h"
#include "tests/linux/MountNamespace.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sys/mount.h>

namespace tessarine {
namespace {

using testing::Contains;

TEST(ProcMountTable, tellsOfAMountAndItsEndByWhoeverListens) {
    const MountNamespace mounts;
    if (!mounts.works())
        GTEST_SKIP() << "NOT MEASURED: no mounts of our own: " << mounts.reason();
    const ScratchFolder folder;
    const auto point = folder.folder("/a drive\\");
    ProcMountTable table;
    int first = 0;
    int second = 0;
    Subscription ending;
    const auto subscription = table.onChange([&] {
        ++first;
        ending.end(); // another's, while it is being told
    });
    ending = table.onChange([&] { ++second; });
    const Mount drive{.path = point, .source = "my drive", .type = "tmpfs"};

    ASSERT_EQ(::mount("my drive", point.c_str(), "tmpfs", 0, nullptr), 0);
    EXPECT_TRUE(spinUntil([&] { return first > 0; }));
    EXPECT_THAT(table.mounts(), Contains(drive));
    EXPECT_EQ(second, 0);

    first = 0;
    ASSERT_EQ(::umount(point.c_str()), 0);
    EXPECT_TRUE(spinUntil([&] { return first > 0; }));
    EXPECT_THAT(table.mounts(), testing::Not(Contains(drive)));
    spinFor(50);
    EXPECT_EQ(first, 1); // and no more wake-ups once it was told
}

} // namespace
} // namespace tessarine
