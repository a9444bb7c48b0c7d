#include "launcherapp/platform/linux/files/RunFolder.h"

#include "tests/linux/EventLoop.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace tessarine {
namespace {

namespace fs = std::filesystem;

TEST(RunFolder, isTheOwnersAloneAndGoneWithTheRun) {
    const ScratchFolder scratch;
    const std::optional<std::string> session = scratch.path("/run"); // not there yet
    for (const auto& runtime : {session, std::optional<std::string>()}) {
        std::string path;
        {
            const RunFolder folder({.runtimeDir = runtime, .temporaryDir = scratch.path()}, "demo");
            path = folder.path();

            struct stat info {};

            ASSERT_EQ(::stat(path.c_str(), &info), 0);
            EXPECT_EQ(info.st_mode & 0777, 0700u);
            fs::create_directories(path + "/config/tessarine");
        }
        EXPECT_FALSE(fs::exists(path));
    }
}

TEST(RunFolder, removesWhatKilledRunsLeftAndNothingElse) {
    const ScratchFolder scratch;
    const auto below = [&](const std::string& name) { return scratch.path("/tessarine/" + name); };
    const auto ofAnother = below("demo-" + std::to_string(::getppid()));
    const auto reused = below("demo-" + std::to_string(::getpid())); // a number can come again
    const std::string noProcess = below("demo-2147483647");
    for (const auto& path : {ofAnother, reused, noProcess, below("demo-x"), below("other-1")})
        fs::create_directories(path + "/left");
    const RunFolder folder({.runtimeDir = scratch.path()}, "demo");
    EXPECT_FALSE(fs::exists(noProcess));
    EXPECT_EQ(folder.path(), reused);
    EXPECT_TRUE(fs::is_empty(reused));
    for (const auto& path : {ofAnother, below("demo-x"), below("other-1")})
        EXPECT_TRUE(fs::exists(path)) << path;
}

TEST(RunFolder, saysSoWhenItCannotBe) {
    const ScratchFolder scratch;
    scratch.write("/file", "");
    for (const auto& runtime : {std::optional(scratch.path("/file")), std::optional<std::string>()})
        EXPECT_THROW(RunFolder({.runtimeDir = runtime, .temporaryDir = scratch.path("/none")}, "x"),
                     std::runtime_error);
}

} // namespace
} // namespace tessarine
