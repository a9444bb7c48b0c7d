#include "launcherapp/platform/linux/processes/QtProcessLauncher.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/desktop/SystemdScope.h"
#include "tests/linux/BusObject.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusArgument>
#include <csignal>
#include <fcntl.h>
#include <pthread.h>
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

TEST_F(QtProcessLauncherTest, aProgramIsInASessionOfItsOwnAndLeavesNothing) {
    std::istringstream words(resultOf("cut -d' ' -f1,5,6 /proc/$$/stat > \"$1\"", {}));
    std::int64_t pid = 0;
    std::int64_t group = 0;
    std::int64_t session = 0;
    words >> pid >> group >> session;
    EXPECT_EQ(pid, process);
    EXPECT_EQ(group, process);
    EXPECT_EQ(session, process);
    // No zombie stays once it has ended.
    const auto facts = "/proc/" + std::to_string(process);
    EXPECT_TRUE(spinUntil([&] { return !std::filesystem::exists(facts); }));
}

TEST_F(QtProcessLauncherTest, aProgramInheritsNothingOfOurs) {
    // A network library that ignores broken pipes, a thread that blocks a signal, a file that
    // somebody forgot to close: none of it is the program's business.
    const auto pipeBefore = ::signal(SIGPIPE, SIG_IGN);
    const auto interruptBefore = ::signal(SIGINT, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const int file = ::open("/dev/zero", O_RDONLY);

    // The last 28 are enough: the C library keeps two beyond the 31 of old for itself.
    const auto told =
        resultOf("sed -n -E 's/^Sig(Blk|Ign):\\t.{9}(.*)/\\2/p' /proc/self/status > \"$1\";"
                 "readlink /proc/$$/fd/0 /proc/$$/fd/2 >> \"$1\";"
                 "[ -e /proc/$$/fd/" +
                     std::to_string(file) + " ] || echo closed >> \"$1\"",
                 {});
    ::close(file);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::signal(SIGINT, interruptBefore);
    ::signal(SIGPIPE, pipeBefore);

    EXPECT_EQ(told, "0000000\n0000000\n/dev/null\n/dev/null\nclosed\n");
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
    // The kernel alone finds out that this one is no program.
    const auto odd = folder.write("/odd",
                                  "\x7f"
                                  "ELF nonsense");
    std::filesystem::permissions(odd, std::filesystem::perms::owner_all);
    try {
        launcher.startDetached({.arguments = {odd}});
        ADD_FAILURE() << odd;
    } catch (const ProcessError& error) {
        EXPECT_THAT(error.what(), HasSubstr(odd + " could not be started: "));
        EXPECT_THAT(error.what(), HasSubstr("format"));
    }
    EXPECT_EQ(launcher.executable("sh").has_value(), true);
    EXPECT_EQ(launcher.executable("/bin/sh"), "/bin/sh");
    EXPECT_EQ(launcher.executable(folder.path("/plain")), std::nullopt);
}

TEST_F(QtProcessLauncherTest, systemdIsAskedForAScope) {
    BusObject systemd("org.freedesktop.systemd1", "/org/freedesktop/systemd1");
    ASSERT_TRUE(systemd.owns);
    const auto pid = launcher.startDetached({.arguments = {"true"}, .name = "org.x.Some-App"});
    ASSERT_TRUE(spinUntil([&] { return !systemd.last.member().isEmpty(); }));
    EXPECT_EQ(systemd.last.interface(), QStringLiteral("org.freedesktop.systemd1.Manager"));
    EXPECT_EQ(systemd.last.member(), QStringLiteral("StartTransientUnit"));
    // What systemd takes and nothing else: a wrong type is refused without a word to the user.
    EXPECT_EQ(systemd.last.signature(), QStringLiteral("ssa(sv)a(sa(sv))"));
    EXPECT_EQ(systemd.last.arguments().at(0).toString().toStdString(),
              SystemdScope::unitName(pid, "org.x.Some-App"));
    EXPECT_EQ(systemd.last.arguments().at(1).toString(), QStringLiteral("fail"));

    const auto properties = systemd.last.arguments().at(2).value<QDBusArgument>();
    std::map<QString, QVariant> given;
    properties.beginArray();
    while (!properties.atEnd()) {
        QString name;
        QDBusVariant value;
        properties.beginStructure();
        properties >> name >> value;
        properties.endStructure();
        given[name] = value.variant();
    }
    properties.endArray();
    EXPECT_EQ(qdbus_cast<QList<uint>>(given[QStringLiteral("PIDs")]),
              QList<uint>{static_cast<uint>(pid)});
    EXPECT_EQ(given[QStringLiteral("PIDs")].value<QDBusArgument>().currentSignature(), "au");
    EXPECT_EQ(given[QStringLiteral("Slice")].toString(), QStringLiteral("app.slice"));
    EXPECT_EQ(given[QStringLiteral("CollectMode")].toString(),
              QStringLiteral("inactive-or-failed"));
}

TEST(SystemdScope, unitNamesCarryTheApplicationThereAndBack) {
    EXPECT_EQ(SystemdScope::unitName(12, "org.x.Some-App"),
              "app-tessarine-org.x.Some\\x2dApp-12.scope");
    EXPECT_EQ(SystemdScope::unitName(12, ""), "app-tessarine-program-12.scope");
    EXPECT_EQ(SystemdScope::unitName(12, "é"), "app-tessarine-\\xc3\\xa9-12.scope");
    // systemd refuses names of 256 bytes and more.
    EXPECT_LT(SystemdScope::unitName(4194304, std::string(200, '-')).size(), 256u);

    const struct {
        std::string unit;
        std::string id;
    } cases[] = {
        {SystemdScope::unitName(12, "org.x.Some-App"), "org.x.Some-App"},
        {"app-gnome-org.gnome.Nautilus-12.scope", "org.gnome.Nautilus"},
        {"app-firefox-12.scope", "firefox"},
        // The unit of a terminal in which the program was started.
        {"app-gnome-xterm-11.scope", ""},
        {"app-org.kde.konsole@1f2e.service", ""},
        {"app-kitty.service", ""},
        // A sandbox holds its one application, whatever the number is.
        {"app-flatpak-org.x.Y-99.scope", "org.x.Y"},
        {"app-flatpak-org.x.Y\\x2dZ-99.scope", "org.x.Y-Z"},
        {"session-12.scope", ""},
        {"app-12.scope", ""},
        {"app-x.slice", ""},
        {"app-x.scope", ""},
        {"app-a-b\\xzz-12.scope", "b\\xzz"}, // no escape after all
        {"app-a-b\\x2-12.scope", "b\\x2"},
    };

    for (const auto& [unit, id] : cases)
        EXPECT_EQ(SystemdScope::applicationID(unit, 12), id) << unit;
}

} // namespace
} // namespace tessarine
