#include "launcherapp/platform/linux/files/FileResidentCopies.h"

#include "launcherapp/platform/Environment.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <csignal>
#include <sys/wait.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FileResidentCopiesTest : public testing::Test {
protected:
    /// Another process that is a resident copy until it is ended.
    pid_t copy(decltype(SIG_DFL) onTerminate = SIG_DFL) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::signal(SIGTERM, onTerminate);
            FileResidentCopies own(environment);
            own.announce();
            folder.write("/ready", "");
            for (;;)
                ::pause();
        }
        spinUntil([&] { return std::filesystem::exists(folder.path("/ready")); });
        std::filesystem::remove(folder.path("/ready"));
        return child;
    }

    ScratchFolder folder;
    Environment environment{.runtimeDir = folder.path()};
    FileResidentCopies copies{environment};
};

TEST_F(FileResidentCopiesTest, copiesFindEachOtherUntilTheyEnd) {
    copies.announce();
    EXPECT_THAT(copies.others(), IsEmpty()); // not itself
    const auto other = copy();
    EXPECT_THAT(copies.others(), ElementsAre(other));
    EXPECT_FALSE(copies.isGone(other));
    copies.terminate(other);
    // Gone as soon as it has ended, even while nobody has asked for its status.
    EXPECT_TRUE(spinUntil([&] { return copies.isGone(other); }));
    EXPECT_THAT(copies.others(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(
        folder.path("/tessarine/resident-" + std::to_string(other)))); // cleared away
    ::waitpid(other, nullptr, 0);
}

TEST_F(FileResidentCopiesTest, aProcessThatOnlyHasTheNumberIsLeftAlone) {
    // A file left over, and its number now another program's.
    const pid_t stranger = ::fork();
    if (stranger == 0)
        for (;;)
            ::pause();
    folder.folder("/tessarine");
    folder.write("/tessarine/resident-" + std::to_string(stranger), "");
    folder.write("/tessarine/resident-x1", "");
    copies.terminate(stranger);
    copies.forceTerminate(stranger);
    EXPECT_THAT(copies.others(), IsEmpty());
    EXPECT_EQ(::kill(stranger, 0), 0);
    ::kill(stranger, SIGKILL);
    ::waitpid(stranger, nullptr, 0);
}

TEST_F(FileResidentCopiesTest, aCopyThatDoesNotListenIsEndedByForce) {
    const auto other = copy(SIG_IGN);
    copies.terminate(other);
    copies.forceTerminate(other);
    EXPECT_TRUE(spinUntil([&] { return copies.isGone(other); }));
    int status = 0;
    ::waitpid(other, &status, 0);
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
}

TEST_F(FileResidentCopiesTest, aProgramThatACopyStartedIsNoCopy) {
    // The lock belongs to the open file, which a child would share.
    const pid_t first = ::fork();
    if (first == 0) {
        FileResidentCopies own(environment);
        own.announce();
        if (::fork() == 0)
            ::execlp("sh",
                     "sh",
                     "-c",
                     "while [ ! -e \"$0/end\" ]; do sleep 0.02; done; "
                     "touch \"$0/ended\"",
                     folder.path().c_str(),
                     nullptr);
        folder.write("/ready", "");
        ::_exit(0);
    }
    ::waitpid(first, nullptr, 0);
    ASSERT_TRUE(std::filesystem::exists(folder.path("/ready")));
    EXPECT_TRUE(spinUntil([&] { return copies.others().empty(); })); // once the child runs sh
    folder.write("/end", "");
    EXPECT_TRUE(spinUntil([&] { return std::filesystem::exists(folder.path("/ended")); }));
}

TEST_F(FileResidentCopiesTest, withoutASessionThereAreNoOthers) {
    FileResidentCopies alone{Environment{}};
    alone.announce();
    EXPECT_THAT(alone.others(), IsEmpty());
}

} // namespace
} // namespace tessarine
