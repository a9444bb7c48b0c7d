#include "launcherapp/platform/linux/files/PosixFileStore.h"

#include "launcherapp/platform/SaveLeftover.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace tessarine {
namespace {

using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr std::size_t noLimit = 1 << 20;

class PosixFileStoreTest : public testing::Test {
protected:
    std::string failure(const std::function<void()>& operation) {
        try {
            operation();
        } catch (const FileError& error) {
            return error.what();
        }
        return "(none)";
    }

    std::size_t fileCount() const {
        const std::filesystem::directory_iterator all(folder.path());
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    ScratchFolder folder;
    PosixFileStore files;
};

TEST_F(PosixFileStoreTest, whatIsSavedIsRead) {
    const std::string bytes("a\0b\n", 4);
    files.save(folder.path("/new/deep/file"), bytes);
    EXPECT_EQ(files.read(folder.path("/new/deep/file"), noLimit), bytes);

    struct stat status {};

    ::stat(folder.path("/new/deep/file").c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
    ::stat(folder.path("/new/deep").c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0700u);

    files.save(folder.path("/empty"), "");
    EXPECT_EQ(files.read(folder.path("/empty"), 0), "");
}

TEST_F(PosixFileStoreTest, onlyRegularFilesOfReasonableSizeAreRead) {
    EXPECT_EQ(files.read(folder.path("/none"), noLimit), std::nullopt);
    EXPECT_EQ(files.read(folder.write("/file", "x") + "/below", noLimit), std::nullopt);
    ::mkfifo(folder.path("/pipe").c_str(), 0600);

    const struct {
        std::string path;
        std::string problem;
    } cases[] = {
        {folder.path("/pipe"), "no regular file"}, // and nobody waits for a writer
        {folder.folder("/folder"), "no regular file"},
        {"/dev/zero", "no regular file"},
        {folder.write("/large", std::string(11, 'x')), "larger than 10 bytes"},
    };

    for (const auto& [path, problem] : cases)
        EXPECT_THAT(failure([&, where = path] { files.read(where, 10); }), HasSubstr(problem));
    EXPECT_EQ(files.read(folder.write("/fits", std::string(10, 'x')), 10)->size(), 10u);
    // A file that the kernel makes up has no size beforehand.
    EXPECT_GT(files.read("/proc/self/status", noLimit)->size(), 100u);
}

TEST_F(PosixFileStoreTest, aSaveKeepsLinksAndModes) {
    folder.write("/target", "old");
    ::chmod(folder.path("/target").c_str(), 0640);
    ::symlink("target", folder.path("/link").c_str());
    files.save(folder.path("/link"), "new");
    EXPECT_EQ(folder.text("/target"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("/link")));

    struct stat status {};

    ::stat(folder.path("/target").c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);
    EXPECT_EQ(fileCount(), 2u);
}

TEST_F(PosixFileStoreTest, aSaveThroughALinkMakesWhatItLeadsTo) {
    // Settings that are kept elsewhere are linked before they exist.
    folder.folder("/kept");
    ::symlink("kept/prefs", folder.path("/relative").c_str());
    ::symlink(folder.path("/new/prefs").c_str(), folder.path("/absolute").c_str());
    ::symlink("absolute", folder.path("/twice").c_str());
    ::symlink("loop", folder.path("/loop").c_str());
    files.save(folder.path("/relative"), "one");
    files.save(folder.path("/twice"), "two");
    EXPECT_EQ(folder.text("/kept/prefs"), "one");
    EXPECT_EQ(folder.text("/new/prefs"), "two");
    for (const auto* link : {"/relative", "/absolute", "/twice"})
        EXPECT_TRUE(std::filesystem::is_symlink(folder.path(link))) << link;
    EXPECT_THAT(failure([&] { files.save(folder.path("/loop"), "x"); }),
                HasSubstr("/loop could not be saved"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("/loop")));
}

TEST_F(PosixFileStoreTest, largeFilesGoPieceByPiece) {
    const auto path = folder.write("/large", "old");
    ::chmod(path.c_str(), 0640);
    std::vector<std::string> pieces{std::string(600000, 'a'), "", std::string(300000, 'b')};
    std::size_t at = 0;
    files.savePieces(path, [&]() -> std::optional<std::string_view> {
        return at < pieces.size() ? std::optional<std::string_view>(pieces[at++]) : std::nullopt;
    });
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms{0640});
    std::string whole;
    EXPECT_TRUE(files.readPieces(path, [&](std::string_view piece) {
        whole += piece;
        return true;
    }));
    EXPECT_EQ(whole, pieces[0] + pieces[2]);
    int taken = 0;
    EXPECT_TRUE(files.readPieces(path, [&](std::string_view) { return ++taken < 2; }));
    EXPECT_EQ(taken, 2); // the reader had enough
    EXPECT_FALSE(files.readPieces(folder.path("/none"), [](std::string_view) { return true; }));
    const auto broken = [&]() -> std::optional<std::string_view> {
        throw std::runtime_error("no more");
    };
    EXPECT_THROW(files.savePieces(path, broken), std::runtime_error);
    EXPECT_EQ(folder.text("/large").size(), 900000u); // the old content stands
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(PosixFileStoreTest, aSaveThatFailsLeavesTheOldContentAndNothingElse) {
    folder.write("/file", "old");
    folder.folder("/folder");
    EXPECT_THAT(failure([&] { files.save(folder.path("/folder"), "x"); }), HasSubstr("/folder"));

    // A disk that fills up, played by a limit on what one process may write.
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit limit{.rlim_cur = 1000, .rlim_max = 1000};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const auto words =
            failure([&] { files.save(folder.path("/file"), std::string(5000, 'x')); });
        ::_exit(words.find("could not be saved") != std::string::npos ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(folder.text("/file"), "old");
    EXPECT_EQ(fileCount(), 2u); // no temporary file is left
}

TEST_F(PosixFileStoreTest, whatAKilledSaveLeavesIsKnownByItsName) {
    const pid_t child = ::fork();
    if (child == 0) {
        files.savePieces(folder.path("/file"), []() -> std::optional<std::string_view> {
            ::_exit(0); // as a kill: nothing is cleaned up
        });
        ::_exit(1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_EQ(WEXITSTATUS(status), 0);
    const auto entries = files.entries(folder.path(""));
    ASSERT_TRUE(entries);
    ASSERT_EQ(entries->size(), 1U);
    EXPECT_EQ(SaveLeftover::target(entries->front().name), "file");
}

TEST_F(PosixFileStoreTest, appendingAddsAtTheEnd) {
    files.append(folder.path("/log"), "one\n");
    files.append(folder.path("/log"), "two\n");
    EXPECT_EQ(folder.text("/log"), "one\ntwo\n");
    EXPECT_THAT(failure([&] { files.append(folder.path("/none/log"), "x"); }),
                HasSubstr("No such file"));
}

TEST_F(PosixFileStoreTest, entriesTellWhatLinksLeadTo) {
    folder.write("/file", "");
    folder.folder("/folder");
    ::symlink("folder", folder.path("/link").c_str());
    ::symlink("nowhere", folder.path("/dangling").c_str());
    ::symlink("loop", folder.path("/loop").c_str());
    ::mkfifo(folder.path("/pipe").c_str(), 0600);
    using Entry = DirectoryEntry;
    EXPECT_THAT(
        *files.entries(folder.path()),
        UnorderedElementsAre(Entry{.name = "file", .kind = FileKind::file},
                             Entry{.name = "folder", .kind = FileKind::directory},
                             Entry{.name = "link", .kind = FileKind::directory, .isLink = true},
                             Entry{.name = "dangling", .kind = FileKind::other, .isLink = true},
                             Entry{.name = "loop", .kind = FileKind::other, .isLink = true},
                             Entry{.name = "pipe", .kind = FileKind::other}));
    EXPECT_EQ(files.entries(folder.path("/file")), std::nullopt);
    EXPECT_EQ(files.realPath(folder.path("/link")), files.realPath(folder.path("/folder")));
    EXPECT_EQ(files.realPath(folder.path("/loop")), std::nullopt);
}

TEST_F(PosixFileStoreTest, removingTakesAllBelowButFollowsNoLink) {
    folder.folder("/kept");
    folder.write("/kept/file", "x");
    folder.folder("/gone/deep");
    ::symlink("../kept", folder.path("/gone/link").c_str());
    files.remove(folder.path("/gone"));
    files.remove(folder.path("/gone"));
    EXPECT_FALSE(files.info(folder.path("/gone")));
    EXPECT_EQ(folder.text("/kept/file"), "x");
}

TEST_F(PosixFileStoreTest, foldersAreNotMadeOverFiles) {
    folder.write("/file", "");
    files.makeDirectories(folder.path());
    EXPECT_THAT(failure([&] { files.makeDirectories(folder.path("/file/below")); }),
                HasSubstr("could not be made"));
    EXPECT_THAT(failure([&] { files.makeDirectories("/proc/none/below"); }),
                HasSubstr("could not be made"));
}

} // namespace
} // namespace tessarine
