#include "launcherapp/platform/linux/system/files/FreedesktopTrash.h"

#include "tests/linux/EventLoop.h"
#include "tests/linux/MountNamespace.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/file.h>
#include <sys/fsuid.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tessarine {
namespace {

namespace fs = std::filesystem;
using FreedesktopTrash::Emptied;
using FreedesktopTrash::Order;
using std::chrono::system_clock;
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

    Emptied emptyHome(system_clock::time_point now = system_clock::now()) {
        return FreedesktopTrash::emptyHome(path(), {.user = user, .now = now});
    }

    /// Whatever is still in the trash can still be put back.
    void expectANoteOfEachItem(const std::string& trash) {
        for (const auto& each : fs::directory_iterator(path(trash + "/files"))) {
            const auto name = each.path().filename().string();
            EXPECT_TRUE(has(trash + "/info/" + name + ".trashinfo")) << name;
        }
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
    scratch.write("/Trash/files/without-a-note", "x");
    scratch.write("/Trash/directorysizes", "x");
    scratch.write("/Trash/info/notes.txt", "nobody threw this away");
    scratch.write("/Trash/elsewhere", "nor this");
    scratch.write("/beside", "nor this");
    fs::create_directory_symlink(path(), path("/Trash/files/up")); // the way out
    fs::create_symlink(path("/beside"), path("/Trash/files/folder/beside"));
    fs::create_hard_link(path("/beside"), path("/Trash/files/same"));
    for (int i = 0; i < 3000; ++i)
        scratch.write("/Trash/files/folder/" + std::to_string(i), "");

    const Order order{.user = user, .now = system_clock::now()};
    const auto emptied = FreedesktopTrash::emptyHome(path(), order);

    EXPECT_THAT(emptied.problems, IsEmpty());
    EXPECT_EQ(emptied.items, 5U); // a, folder, up, same, without-a-note
    EXPECT_GT(*order.progress, 3000U);
    EXPECT_TRUE(fs::is_empty(path("/Trash/files")));
    EXPECT_TRUE(fs::is_empty(path("/Trash/expunged")));
    EXPECT_FALSE(has("/Trash/info/a.trashinfo"));
    EXPECT_FALSE(has("/Trash/directorysizes"));
    EXPECT_EQ(scratch.text("/Trash/info/notes.txt"), "nobody threw this away");
    EXPECT_TRUE(has("/Trash/elsewhere"));
    EXPECT_EQ(scratch.text("/beside"), "nor this");
    EXPECT_EQ(emptyHome(), Emptied{}); // a second time
    EXPECT_EQ(FreedesktopTrash::emptyHome(path("/none"), order), Emptied{});
}

TEST_F(FreedesktopTrashTest, keepsTheNotesOfFilesThatCanNotBeRead) {
    const uid_t owner = user == 0 ? 4711 : user; // root may read everything
    fill("/Trash");
    for (const auto* each : {"", "/Trash", "/Trash/files", "/Trash/info"})
        ASSERT_EQ(::chown(path(each).c_str(), owner, static_cast<gid_t>(-1)), 0);
    for (const auto* unreadable : {"/Trash/files", "/Trash/info"}) {
        SCOPED_TRACE(unreadable);
        ASSERT_EQ(::chmod(path(unreadable).c_str(), S_IWUSR | S_IXUSR), 0);
        ::setfsuid(owner); // of this thread alone
        const auto emptied =
            FreedesktopTrash::emptyHome(path(), {.user = owner, .now = system_clock::now()});
        ::setfsuid(user);
        EXPECT_THAT(emptied.problems, ElementsAre(HasSubstr("can't be opened")));
        ASSERT_EQ(::chmod(path(unreadable).c_str(), S_IRWXU), 0);
        EXPECT_TRUE(has("/Trash/files/a"));
        EXPECT_TRUE(has("/Trash/info/a.trashinfo"));
    }
}

TEST_F(FreedesktopTrashTest, keepsWhatIsThrownAwayMeanwhile) {
    fill("/Trash");
    scratch.folder("/away");
    for (int i = 0; i < 4000; ++i)
        scratch.write("/Trash/files/" + std::to_string(i), "");
    std::atomic<bool> isOver = false;
    std::jthread fileManager([&] { // as file managers do it
        for (int i = 0; !isOver; ++i) {
            const auto name = "later" + std::to_string(i);
            scratch.write("/away/" + name, "x");
            scratch.write("/Trash/info/" + name + ".trashinfo", "[Trash Info]");
            fs::rename(path("/away/" + name), path("/Trash/files/" + name));
        }
    });
    const auto emptied = emptyHome();
    isOver = true;
    fileManager.join();
    EXPECT_THAT(emptied.problems, IsEmpty());
    EXPECT_FALSE(has("/Trash/files/a"));
    EXPECT_FALSE(fs::is_empty(path("/Trash/files")));
    expectANoteOfEachItem("/Trash");
}

TEST_F(FreedesktopTrashTest, notesOfNothingGoWhenTheyAreOld) {
    fill("/Trash");
    scratch.write("/Trash/info/of-nothing.trashinfo", "x"); // or on its way from another disk
    EXPECT_EQ(emptyHome().items, 1U);
    EXPECT_TRUE(has("/Trash/info/of-nothing.trashinfo"));
    EXPECT_EQ(emptyHome(system_clock::now() + std::chrono::hours{25}), Emptied{});
    EXPECT_FALSE(has("/Trash/info/of-nothing.trashinfo"));

    // All notes would be of nothing.
    scratch.write("/Trash/info/a.trashinfo", "x");
    fs::rename(path("/Trash/files"), path("/files-elsewhere"));
    EXPECT_THAT(emptyHome(system_clock::now() + std::chrono::hours{25}).problems,
                ElementsAre(HasSubstr("/files is not there")));
    EXPECT_TRUE(has("/Trash/info/a.trashinfo"));
}

TEST_F(FreedesktopTrashTest, leavesATrashToWhoeverEmptiesIt) {
    fill("/Trash");
    const int other = ::open(path("/Trash").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(emptyHome(), Emptied{.isBusy = true});
    EXPECT_TRUE(has("/Trash/files/a"));
    ::close(other);
    EXPECT_EQ(emptyHome(), Emptied{.items = 1});
}

TEST_F(FreedesktopTrashTest, leavesWhatIsNotTheUsersOwnFolder) {
    const struct {
        const char* reason;
        std::function<void(const std::string& trash)> spoil;
        const char* problem; ///< of which a part is told
        bool needsRoot = false;
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
         "another user's",
         true},
        {"another user's notes",
         [&](const std::string& trash) {
             ASSERT_EQ(::chown(path(trash + "/info").c_str(), 4711, 4711), 0);
         },
         "another user's",
         true},
        {"its notes are a link",
         [&](const std::string& trash) {
             fs::rename(path(trash + "/info"), path("/outside-info"));
             fs::create_directory_symlink(path("/outside-info"), path(trash + "/info"));
         },
         "/info is not a folder"},
        {"another user's files",
         [&](const std::string& trash) {
             ASSERT_EQ(::chown(path(trash + "/files").c_str(), 4711, 4711), 0);
         },
         "another user's",
         true},
    };

    for (const auto& [reason, spoil, problem, needsRoot] : cases) {
        SCOPED_TRACE(reason);
        if (needsRoot && user != 0) // who alone may give folders away
            continue;
        fill("/Trash");
        spoil("/Trash");
        const auto emptied = emptyHome(system_clock::now() + std::chrono::hours{25});
        EXPECT_EQ(emptied.items, 0U);
        ASSERT_FALSE(emptied.problems.empty());
        EXPECT_THAT(emptied.problems.front(), HasSubstr(problem));
        std::vector<std::string> kept;
        for (const auto& each : fs::recursive_directory_iterator(path())) {
            if (each.is_regular_file())
                kept.push_back(each.path().filename());
        }
        // Of a file in the trash's place there is one more, "Trash".
        EXPECT_THAT(kept, testing::IsSupersetOf({std::string("a"), std::string("a.trashinfo")}));
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
        const auto emptied =
            FreedesktopTrash::emptyMount(path(drive), {.user = user, .now = system_clock::now()});
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
    const auto emptied = emptyHome();
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
