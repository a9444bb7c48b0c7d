#include "launcherapp/index/proof/VolumesSelftest.h"

#include "LauncherCore/index/MountInfo.h"
#include "launcherapp/index/MountedVolumes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

namespace {

constexpr std::string_view table =
    "20 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
    "21 20 0:5 / /proc rw - proc proc rw\n"
    "22 20 8:2 / /home rw - ext4 /dev/sda2 rw\n"
    "23 20 8:17 / /media/user/My\\040Stick rw shared:7 - vfat /dev/sdb1 rw\n"
    "24 20 8:18 / /media/user/My\\040Stick\\0402 rw shared:8 - vfat /dev/sdb2 rw\n"
    "25 20 8:19 / /run/media/user/Photos rw - exfat /dev/sdc1 rw\n"
    "26 20 0:40 / /mnt/share rw - nfs4 server:/share rw\n"
    "27 20 8:33 / /media/backup rw - ext4 /dev/sdd1 rw\n"
    "28 20 0:41 / /media/user/ram rw - tmpfs tmpfs rw\n"
    "29 20 8:34 / /mediatheque/films rw - ext4 /dev/sde1 rw\n"
    "30 27 8:35 / /media/backup/a/deep rw - ext4 /dev/sdf1 rw\n"
    "31 20 8:36 / /media/user/Gone rw - vfat /dev/sdg1 rw\n"
    "32 31 0:42 / /media/user/Gone rw - autofs systemd-1 rw\n";

constexpr std::string_view stick = "/media/user/My Stick";

struct Expectation {
    std::string_view path;
    bool isDrive;
    std::string_view meaning; ///< what it shows when it fails
};

constexpr auto expectations = std::to_array<Expectation>({
    {stick, true, "control: a stick with a blank in its name is no drive"},
    {"/media/user/My Stick 2", true, "a second stick whose name begins the same is no drive"},
    {"/run/media/user/Photos", true, "a drive below /run/media is none"},
    {"/mnt/share", true, "a share below /mnt is no drive"},
    {"/media/backup", true, "a drive right below /media is none"},
    {"/media/user/My\\040Stick", false, "decoy: an escape is taken for the name"},
    {"/home", false, "decoy: a file system of the machine's own counts as a drive"},
    {"/proc", false, "decoy: the kernel's own file system counts as a drive"},
    {"/media/user/ram", false, "decoy: a file system in memory counts as a drive"},
    {"/mediatheque/films", false, "decoy: a folder beside /media counts as below it"},
    {"/media/backup/a/deep", false, "decoy: a mount deep in a drive counts as another drive"},
    {"/media/user/Gone", false, "decoy: a drive hidden by a later mount still counts"},
});

class Check {
public:
    SelftestResult run() {
        std::vector<Mount> mounts;
        for (const auto& entry : MountInfo::parse(table))
            mounts.push_back({.path = entry.path, .source = entry.source, .type = entry.type});
        const auto drives = MountedVolumes::drivesAmong(mounts);
        for (const auto& [path, isDrive, meaning] : expectations)
            require(std::ranges::count(drives, path, &MountedDrive::path) == (isDrive ? 1 : 0),
                    meaning);
        checkExclusions();
        return failures_.empty() ? SelftestResult{.verdict = SelftestResult::Verdict::proved,
                                                  .report = pass(drives.size())}
                                 : SelftestResult{.verdict = SelftestResult::Verdict::refuted,
                                                  .report = "selftest-volumes: FAILED" + failures_};
    }

private:
    void checkExclusions() {
        const MountedDrive drive{
            .path = std::string(stick), .name = "My Stick", .source = "/dev/sdb1"};
        const auto leavesOut = [&drive](const std::string& entry) {
            return MountedVolumes::isExcluded(drive, std::array{entry});
        };
        require(!MountedVolumes::isExcluded(drive, {}), "control: a drive is left out by nothing");
        require(leavesOut(drive.path), "a drive is not left out by its path");
        require(leavesOut(drive.path + "/"), "a drive is not left out by its path with a slash");
        require(leavesOut("My Stick"), "a drive is not left out by its name");
        require(!leavesOut(drive.path + " 2"),
                "decoy: the sibling's exclusion takes the drive out");
        require(!leavesOut("/media/user/My"), "decoy: a path that it merely begins with does");
        require(!leavesOut("/media/user"), "decoy: the folder above does");
        require(!leavesOut(""), "decoy: an empty entry does");
    }

    void require(bool holds, std::string_view failure) {
        ++count_;
        if (!holds)
            failures_.append("\n  ").append(failure);
    }

    std::string pass(std::size_t drives) const {
        return fmt::format("selftest-volumes: {} checks hold: {} drives are told from the other "
                           "mounts, and exclusions take out what they name alone",
                           count_,
                           drives);
    }

    int count_ = 0;
    std::string failures_;
};

} // namespace

SelftestResult volumesSelftest() {
    return Check().run();
}

} // namespace tessarine
