#include "LauncherCore/index/MountInfo.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tessarine {
namespace {

using testing::ElementsAre;

std::vector<std::string> paths(const std::string& text) {
    std::vector<std::string> found;
    for (const auto& mount : MountInfo::parse(text))
        found.push_back(mount.path);
    return found;
}

TEST(MountInfo, readsALineWithAnyNumberOfTags) {
    const MountEntry drive{.id = 36,
                           .path = "/media/u/My Stick",
                           .root = "/photos",
                           .source = "/dev/sdb1",
                           .type = "vfat"};
    const char* const lines[] = {
        "36 27 8:17 /photos /media/u/My\\040Stick rw,noatime - vfat /dev/sdb1 rw",
        "36 27 8:17 /photos /media/u/My\\040Stick rw shared:1 - vfat /dev/sdb1 rw,utf8",
        "36 27 8:17 /photos /media/u/My\\040Stick rw master:2 propagate_from:1 - vfat /dev/sdb1 rw",
    };
    for (const auto* line : lines)
        EXPECT_THAT(MountInfo::parse(line), ElementsAre(drive)) << line;
}

TEST(MountInfo, escapesAreThreeOctalDigits) {
    const struct {
        const char* field;
        const char* bytes;
    } cases[] = {
        {"a\\040b\\011c\\012d\\134e\\043", "a b\tc\nd\\e#"}, // all that the kernel writes
        {"\\303\\244", "\xC3\xA4"},                          // bytes above ASCII
        {"\\04", "\\04"},                                    // cut short
        {"\\048", "\\048"},                                  // no octal digit
        {"\\477", "\\477"},                                  // more than a byte
        {"\\", "\\"},
    };

    for (const auto& [field, bytes] : cases)
        EXPECT_EQ(MountInfo::unescaped(field), bytes) << field;
}

TEST(MountInfo, leavesOutWhatNoPathLeadsToAnyMore) {
    const struct {
        const char* text;
        std::vector<std::string> visible;
    } cases[] = {
        // A mount over the same point.
        {"1 0 8:1 / / rw - ext4 a rw\n2 1 8:2 / /mnt rw - ext4 b rw\n3 2 8:3 / /mnt rw - ext4 c rw",
         {"/", "/mnt"}},
        // What stands in a mount that is covered goes with it.
        {"1 0 8:1 / / rw - ext4 a rw\n2 1 8:2 / /mnt rw - ext4 b rw\n"
         "4 2 8:4 / /mnt/in rw - ext4 d rw\n3 2 8:3 / /mnt rw - ext4 c rw",
         {"/", "/mnt"}},
        // A later mount on a folder above.
        {"1 0 8:1 / / rw - ext4 a rw\n2 1 8:2 / /mnt/usb rw - ext4 b rw\n"
         "3 1 8:3 / /mnt rw - ext4 c rw",
         {"/", "/mnt"}},
        // Decoy: the folder above was mounted first, so its mount is the parent.
        {"1 0 8:1 / / rw - ext4 a rw\n3 1 8:3 / /mnt rw - ext4 c rw\n"
         "2 3 8:2 / /mnt/usb rw - ext4 b rw",
         {"/", "/mnt", "/mnt/usb"}},
        // Decoy: a sibling whose name merely begins the same.
        {"1 0 8:1 / / rw - ext4 a rw\n2 1 8:2 / /mnt2 rw - ext4 b rw\n3 1 8:3 / /mnt rw - ext4 c "
         "rw",
         {"/", "/mnt2", "/mnt"}},
    };

    for (const auto& [text, visible] : cases)
        EXPECT_EQ(paths(text), visible) << text;
}

TEST(MountInfo, linesThatCanNotBeReadAreLeftOut) {
    EXPECT_THAT(paths("\n"
                      "x 1 8:1 / /a rw - ext4 a rw\n"
                      "1 1 8:1 / /b rw shared:1 ext4 a rw\n"
                      "2 1 8:1 / /c rw - ext4\n"
                      "3 1 8:1 /\n"
                      "4 5 8:1 / /round rw - ext4 a rw\n"
                      "5 4 8:1 / /round/and rw - ext4 a rw"),
                ElementsAre("/round", "/round/and")); // parents in a circle end too
}

} // namespace
} // namespace tessarine
