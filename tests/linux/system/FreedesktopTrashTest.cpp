#include "launcherapp/platform/linux/system/files/FreedesktopTrash.h"

#include "tests/linux/EventLoop.h"
#include "tests/linux/MountNamespace.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tessarine {
namespace {

namespace fs = std::filesystem;
using FreedesktopTrash::Emptied;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class FreedesktopTrashTest : public testing::Test {
protected:
    /// A trash with one file and its note.
    void fill(const std::string& trash) {
        scratch.folder(trash + "/files");
        scratch.folder(trash + "/info");
        scratch.write(trash + "/files/a", "thrown away");
        scratch.write(trash + "/info/a.trashinfo", "[Trash Info]");
    }

    bool has(const std::string& below) { return fs::exists(fs::symlink_status(path(below))); }

    std::string path(const std::string& below = "") { return scratch.path(below); }

    ScratchFolder scratch;
    const unsigned user = ::getuid();
    const std::string own = ".Trash-" + std::to_string(::getuid());
    const std::string shared = ".Trash/" + std::to_string(::getuid());
};

TEST_F(FreedesktopTrashTest, removesAllThatWasThrownAwayAndNothingElse) {
    fill("/Trash");
    scratch.folder("/Trash/files/folder/deeper/still");
    scratch.write("/Trash/files/folder/deeper/file", "x");
    scratch.folder("/Trash/expunged/left-over");
    scratch.write("/Trash/info/of-nothing.trashinfo", "x");
    scratch.write("/Trash/directorysizes", "x");
    scratch.write("/Trash/info/notes.txt", "nobody threw this away");
    scratch.write("/Trash/elsewhere", "nor this");
    scratch.write("/beside", "nor this");
    fs::create_directory_symlink(path(), path("/Trash/files/up")); // the way out
    fs::create_symlink(path("/beside"), path("/Trash/files/folder/beside"));
    fs::create_hard_link(path("/beside"), path("/Trash/files/same"));
    for (int i = 0; i < 3000; ++i)
        scratch.write("/Trash/files/folder/" + std::to_string(i), "");

    const auto emptied = FreedesktopTrash::emptyHome(path(), user);

    EXPECT_THAT(emptied.problems, IsEmpty());
    EXPECT_EQ(emptied.items, 4U); // a, folder, up, same
    EXPECT_TRUE(fs::is_empty(path("/Trash/files")));
    EXPECT_TRUE(fs::is_empty(path("/Trash/expunged")));
    EXPECT_FALSE(has("/Trash/info/a.trashinfo"));
    EXPECT_FALSE(has("/Trash/info/of-nothing.trashinfo"));
    EXPECT_FALSE(has("/Trash/directorysizes"));
    EXPECT_EQ(scratch.text("/Trash/info/notes.txt"), "nobody threw this away");
    EXPECT_TRUE(has("/Trash/elsewhere"));
    EXPECT_EQ(scratch.text("/beside"), "nor this");
    EXPECT_EQ(FreedesktopTrash::emptyHome(path(), user), Emptied{}); // a second time
    EXPECT_EQ(FreedesktopTrash::emptyHome(path("/none"), user), Emptied{});
}

TEST_F(FreedesktopTrashTest, leavesWhatIsNotTheUsersOwnFolder) {
    const struct {
        const char* reason;
        std::function<void(const std::string& trash)> spoil;
        const char* problem; ///< of which a part is told; null: it is as good as none
    } cases[] = {
        {"a link to a trash",
         [&](const std::string& trash) {
             fs::rename(path(trash), path("/outside"));
             fs::create_directory_symlink(path("/outside"), path(trash));
         },
         "is not a folder"},
        {"its files are a link",
         [&](const std::string& trash) {
             fs::rename(path(trash + "/files"), path("/outside-files"));
             fs::create_directory_symlink(path("/outside-files"), path(trash + "/files"));
         },
         "/files is not a folder"},
        {"a file",
         [&](const std::string& trash) {
             fs::rename(path(trash), path("/away"));
             scratch.write(trash, "x");
         },
         "is not a folder"},
        {"another user's",
         [&](const std::string& trash) { ASSERT_EQ(::chown(path(trash).c_str(), 4711, 4711), 0); },
         "another user's"},
        {"another user's files",
         [&](const std::string& trash) {
             ASSERT_EQ(::chown(path(trash + "/files").c_str(), 4711, 4711), 0);
         },
         "another user's"},
    };

    if (user != 0)
        GTEST_SKIP() << "NOT MEASURED: only root may give folders away";
    for (const auto& [reason, spoil, problem] : cases) {
        SCOPED_TRACE(reason);
        fill("/Trash");
        spoil("/Trash");
        const auto emptied = FreedesktopTrash::emptyHome(path(), user);
        EXPECT_EQ(emptied.items, 0U);
        ASSERT_FALSE(emptied.problems.empty());
        EXPECT_THAT(emptied.problems.front(), HasSubstr(problem));
        std::size_t files = 0;
        for (const auto& each : fs::recursive_directory_iterator(path()))
            files += each.path().filename() == "a" ? 1 : 0;
        EXPECT_EQ(files, 1U);
        for (const auto& each : fs::directory_iterator(path()))
            fs::remove_all(each.path());
    }
}

TEST_F(FreedesktopTrashTest, takesASharedTrashOnlyAsItMustBe) {
    const struct {
        const char* reason;
        mode_t mode;
        bool isLink;
        bool isEmptied;
    } cases[] = {
        {"as the administrator makes it", 01777, false, true},
        {"without the sticky bit others could put links there", 0777, false, false},
        {"a link", 01777, true, false},
    };

    for (const auto& [reason, mode, isLink, isEmptied] : cases) {
        SCOPED_TRACE(reason);
        const std::string drive = "/drive";
        fill(drive + "/" + own);
        fill(drive + "/" + shared);
        ASSERT_EQ(::chmod(path(drive + "/.Trash").c_str(), mode), 0);
        if (isLink) {
            fs::rename(path(drive + "/.Trash"), path("/outside"));
            fs::create_directory_symlink(path("/outside"), path(drive + "/.Trash"));
        }
        const auto emptied = FreedesktopTrash::emptyMount(path(drive), user);
        EXPECT_THAT(emptied.problems, IsEmpty());
        EXPECT_EQ(emptied.items, isEmptied ? 2U : 1U);
        EXPECT_FALSE(has(drive + "/" + own + "/files/a"));
        EXPECT_EQ(has(drive + "/" + shared + "/files/a"), !isEmptied);
        fs::remove_all(path(drive));
    }
}

TEST_F(FreedesktopTrashTest, keepsWhatIsMountedInTheTrashAndTheNoteOfIt) {
    fill("/Trash");
    scratch.folder("/Trash/files/held/place");
    scratch.write("/Trash/info/held.trashinfo", "x");
    scratch.folder("/precious");
    scratch.write("/precious/file", "not in the trash");
    const MountNamespace mounts;
    if (!mounts.works())
        GTEST_SKIP() << "NOT MEASURED: " << mounts.reason();
    // The same file system bound there: its device tells nothing.
    ASSERT_EQ(::mount(path("/precious").c_str(),
                      path("/Trash/files/held/place").c_str(),
                      nullptr,
                      MS_BIND,
                      nullptr),
              0);
    const auto emptied = FreedesktopTrash::emptyHome(path(), user);
    EXPECT_EQ(scratch.text("/precious/file"), "not in the trash");
    EXPECT_EQ(emptied.items, 1U);
    EXPECT_THAT(emptied.problems, ElementsAre(HasSubstr("mounted")));
    EXPECT_TRUE(has("/Trash/info/held.trashinfo")); // it can still be put back
    EXPECT_FALSE(has("/Trash/info/a.trashinfo"));
    ::umount(path("/Trash/files/held/place").c_str());
}

TEST_F(FreedesktopTrashTest, asksOnlyFileSystemsThatPeopleWriteTo) {
    for (const auto* type : {"ext4", "btrfs", "vfat", "nfs4", "fuse.sshfs", "tmpfs"})
        EXPECT_TRUE(FreedesktopTrash::mayHaveTrash({.path = "/x", .type = type})) << type;
    for (const auto* type : {"proc", "autofs", "squashfs", "iso9660", "cgroup2"})
        EXPECT_FALSE(FreedesktopTrash::mayHaveTrash({.path = "/x", .type = type})) << type;
}

} // namespace
} // namespace tessarine
