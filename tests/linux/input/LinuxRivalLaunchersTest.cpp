#include "launcherapp/platform/linux/input/LinuxRivalLaunchers.h"

#include "launcherapp/platform/linux/desktop/SessionWatch.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "tests/linux/BusObject.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QProcess>
#include <filesystem>
#include <optional>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A program under the name of another, which does nothing for a while.
class Impostor {
public:
    Impostor(const QString& program, const QStringList& arguments) {
        process_.start(program, arguments);
        process_.waitForStarted();
    }

    ~Impostor() {
        process_.kill();
        process_.waitForFinished();
    }

    Impostor(const Impostor&) = delete;
    Impostor& operator=(const Impostor&) = delete;

private:
    QProcess process_;
};

class LinuxRivalLaunchersTest : public testing::Test {
protected:
    /// The path of a program of this name that only waits.
    QString program(const std::string& name) {
        const auto path = folder.path("/" + name);
        std::filesystem::copy_file("/bin/sleep", path);
        return QString::fromStdString(path);
    }

    void watch() {
        rivals.emplace(queue, work, session, Seconds{1});
        subscription = rivals->onChange([this](const std::string& name, auto change) {
            using Change = RivalLaunchers::Change;
            changes.push_back(name + (change == Change::launched ? " launched"
                                      : change == Change::found  ? " found"
                                                                 : " quit"));
        });
    }

    ScratchFolder folder;
    QtMainQueue queue;
    ThreadPoolWorkQueues work{queue};
    SessionWatch session{work};
    std::optional<LinuxRivalLaunchers> rivals;
    std::vector<std::string> changes;
    Subscription subscription;
    const QStringList aMinute{QStringLiteral("60")};
};

TEST_F(LinuxRivalLaunchersTest, seesThoseWithABusNameComeAndGo) {
    std::optional<BusObject> kupfer;
    kupfer.emplace("se.kaizer.kupfer", "/x");
    ASSERT_TRUE(kupfer->owns);
    watch();
    ASSERT_TRUE(spinUntil([&] { return !changes.empty(); })); // nobody waits for the bus
    EXPECT_THAT(rivals->running(), ElementsAre("Kupfer"));
    kupfer.reset();
    ASSERT_TRUE(spinUntil([&] { return changes.size() > 1; }));
    EXPECT_THAT(rivals->running(), IsEmpty());
    const BusObject runner("org.kde.krunner", "/x");
    ASSERT_TRUE(spinUntil([&] { return changes.size() > 2; }));
    EXPECT_THAT(rivals->running(), ElementsAre("KRunner"));
    EXPECT_THAT(changes, ElementsAre("Kupfer found", "Kupfer quit", "KRunner launched"));
}

TEST_F(LinuxRivalLaunchersTest, findsTheOthersAmongTheProcesses) {
    const Impostor decoy(program("not-albert"), aMinute);
    const Impostor noShell(program("sherlock"), aMinute); // "sh" in front makes no shell
    // A script of that name, and the name as an argument of something else.
    const auto script = folder.write("/ulauncher", "read line\n");
    const Impostor scripted(QStringLiteral("/bin/sh"), {QString::fromStdString(script)});
    const Impostor reader(
        QStringLiteral("/usr/bin/tail"),
        {QStringLiteral("-f"), QString::fromStdString(folder.write("/walker", ""))});
    folder.folder("/ueli/resources");
    const auto archive = folder.write("/ueli/resources/app.asar", "read line\n");
    std::filesystem::copy_file("/bin/dash", folder.path("/electron28"));
    const Impostor packed(QString::fromStdString(folder.path("/electron28")),
                          {QString::fromStdString(archive)});
    std::optional<Impostor> albert;
    albert.emplace(program("albert"), aMinute);
    watch();
    EXPECT_THAT(rivals->running(), ElementsAre("Ulauncher", "Albert", "Ueli", "Sherlock"));
    albert.reset();
    ASSERT_TRUE(spinUntil([&] { return changes.size() > 4; })); // without anybody asking
    EXPECT_EQ(changes.back(), "Albert quit");
    EXPECT_THAT(rivals->running(), ElementsAre("Ulauncher", "Ueli", "Sherlock"));
}

TEST_F(LinuxRivalLaunchersTest, seesThemComeWhenTheDesktopChanges) {
    watch();
    EXPECT_THAT(rivals->running(), IsEmpty());
    const Impostor albert(program("albert"), aMinute);
    rivals->look();
    rivals->look(); // is the same one
    ASSERT_TRUE(spinUntil([&] { return !changes.empty(); }));
    const Impostor walker(program("walker"), aMinute);
    const auto passer =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("passer"));
    ASSERT_TRUE(spinUntil([&] { return changes.size() > 1; }));
    QDBusConnection::disconnectFromBus(QStringLiteral("passer"));
    EXPECT_THAT(changes, ElementsAre("Albert launched", "Walker launched"));
}

TEST_F(LinuxRivalLaunchersTest, tellsWhenTheSessionIsInFrontAgain) {
    watch();
    int resumes = 0;
    const auto resumed = rivals->onSessionResumed([&] { ++resumes; });
    BusObject saver("org.freedesktop.ScreenSaver", "/x");
    EXPECT_TRUE(spinUntil([&] {
        saver.tell(QStringLiteral("/x"), "org.freedesktop.ScreenSaver", "ActiveChanged", {false});
        return resumes > 0;
    }));
}

TEST_F(LinuxRivalLaunchersTest, withoutABusTheProcessesAreLeft) {
    const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    const Impostor runner(program("krunner"), aMinute);
    watch();
    EXPECT_THAT(rivals->running(), ElementsAre("KRunner"));
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
}

} // namespace
} // namespace tessarine
