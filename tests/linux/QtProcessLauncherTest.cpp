#include "launcherapp/platform/linux/QtProcessLauncher.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/SystemdScope.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <csignal>
#include <sys/wait.h>

namespace tessarine {
namespace {

using testing::HasSubstr;

class QtProcessLauncherTest : public testing::Test {
protected:
    /// What a shell script wrote into the file named by its first argument.
    std::string resultOf(const std::string& script, ProcessSpec spec) {
        const auto done = folder.path("/done");
        spec.arguments = {"sh", "-c", script + "; touch \"$2\"", "sh", folder.path("/out"), done};
        process = launcher.startDetached(spec);
        EXPECT_TRUE(spinUntil([&] { return std::filesystem::exists(done); }));
        return folder.text("/out");
    }

    ScratchFolder folder;
    Environment environment{.home = folder.path()};
    QtProcessLauncher launcher{environment};
    std::int64_t process = 0;
};

TEST_F(QtProcessLauncherTest, aProgramGetsItsSurroundings) {
    const auto there = folder.folder("/there");
    EXPECT_EQ(resultOf("echo \"$PWD $EXTRA\" > \"$1\"",
                       {.environment = {{"EXTRA", "a b"}}, .workingDirectory = there}),
              there + " a b\n");
    std::filesystem::remove(folder.path("/done"));
    // A folder that is gone: home instead.
    EXPECT_EQ(resultOf("pwd > \"$1\"", {.workingDirectory = "/none"}), folder.path() + "\n");
}

TEST_F(QtProcessLauncherTest, aProgramIsInASessionOfItsOwnAndNobodysChild) {
    std::istringstream words(resultOf("ps -o pid=,ppid=,sid=,pgid= -p $$ > \"$1\" 2>/dev/null || "
                                      "cut -d' ' -f1,4,6,5 /proc/$$/stat > \"$1\"",
                                      {}));
    std::int64_t pid = 0;
    std::int64_t parent = 0;
    std::int64_t session = 0;
    words >> pid >> parent >> session;
    EXPECT_EQ(pid, process);
    EXPECT_NE(parent, ::getpid());
    EXPECT_NE(session, ::getsid(0));
    EXPECT_EQ(::waitpid(static_cast<pid_t>(process), nullptr, WNOHANG), -1); // no zombie of ours
}

TEST_F(QtProcessLauncherTest, aProgramOutlivesWhoStartedIt) {
    const pid_t parent = ::fork();
    if (parent == 0) {
        QtProcessLauncher own(environment);
        own.startDetached(
            {.arguments = {"sh",
                           "-c",
                           "while [ ! -e \"$1/go\" ]; do sleep 0.02; done; touch \"$1/alive\"",
                           "sh",
                           folder.path()}});
        ::_exit(0);
    }
    ::waitpid(parent, nullptr, 0);
    folder.write("/go", "");
    EXPECT_TRUE(spinUntil([&] { return std::filesystem::exists(folder.path("/alive")); }));
}

TEST_F(QtProcessLauncherTest, whatCannotBeStartedIsToldInWords) {
    folder.write("/plain", "no program");
    for (const auto& program :
         {std::string("no-such-program-1"), folder.path("/plain"), folder.path()}) {
        try {
            launcher.startDetached({.arguments = {program}});
            ADD_FAILURE() << program;
        } catch (const ProcessError& error) {
            EXPECT_THAT(error.what(), HasSubstr(program + " could not be started"));
        }
    }
    EXPECT_EQ(launcher.executable("sh").has_value(), true);
    EXPECT_EQ(launcher.executable("/bin/sh"), "/bin/sh");
    EXPECT_EQ(launcher.executable(folder.path("/plain")), std::nullopt);
}

TEST(SystemdScope, unitNamesCarryTheApplicationThereAndBack) {
    EXPECT_EQ(SystemdScope::unitName(12, "org.x.Some-App"),
              "app-tessarine-org.x.Some\\x2dApp-12.scope");

    const struct {
        std::string unit;
        std::string id;
    } cases[] = {
        {SystemdScope::unitName(12, "org.x.Some-App"), "org.x.Some-App"},
        {"app-gnome-org.gnome.Nautilus-4711.scope", "org.gnome.Nautilus"},
        {"app-flatpak-org.x.Y-99.scope", "org.x.Y"},
        {"app-org.kde.dolphin@1f2e.service", "org.kde.dolphin"},
        {"app-firefox.service", "firefox"},
        {"session-2.scope", ""},
        {"app-x.slice", ""},
        {"app-x.scope", ""},
        {"app-a-b\\xzz-1.scope", std::string("b\0", 2)},
    };

    for (const auto& [unit, id] : cases)
        EXPECT_EQ(SystemdScope::applicationID(unit), id) << unit;
}

} // namespace
} // namespace tessarine
