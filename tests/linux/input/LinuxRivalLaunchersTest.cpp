#include "launcherapp/platform/linux/input/LinuxRivalLaunchers.h"

#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "tests/linux/BusObject.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusMessage>
#include <QDBusObjectPath>
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
        rivals.emplace(queue, work, Seconds{1});
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

/// A logind that says which session is the asker's.
class Logind : public QDBusVirtualObject {
public:
    Logind() {
        bus.registerService(QStringLiteral("org.freedesktop.login1"));
        bus.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), this);
    }

    ~Logind() override { QDBusConnection::disconnectFromBus(QStringLiteral("logind")); }

    Logind(const Logind&) = delete;
    Logind& operator=(const Logind&) = delete;

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        asked = message.member();
        auto reply = message.createReply();
        reply << QVariant::fromValue(QDBusObjectPath(session));
        connection.send(reply);
        return true;
    }

    void tell(const QString& path, const char* interface, const char* signal, QVariantList values) {
        auto message =
            QDBusMessage::createSignal(path, QLatin1String(interface), QLatin1String(signal));
        message.setArguments(values);
        bus.send(message);
    }

    void activeChanged(const QString& path, bool active) {
        tell(path,
             "org.freedesktop.DBus.Properties",
             "PropertiesChanged",
             {QStringLiteral("org.freedesktop.login1.Session"),
              QVariantMap{{QStringLiteral("Active"), active}},
              QStringList()});
    }

    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("logind"));
    const QString session = QStringLiteral("/org/freedesktop/login1/session/_32");
    QString asked;
};

TEST_F(LinuxRivalLaunchersTest, tellsWhenTheSessionIsInFrontAgain) {
    Logind logind;
    int resumes = 0;
    watch();
    const auto resumed = rivals->onSessionResumed([&] { ++resumes; });
    ASSERT_TRUE(spinUntil([&] { return !logind.asked.isEmpty(); }));
    spinFor(50); // for the rules that the bus is given then

    const auto other = QStringLiteral("/org/freedesktop/login1/session/_33");
    constexpr auto screenSaver = "org.freedesktop.ScreenSaver";
    constexpr auto session = "org.freedesktop.login1.Session";

    const struct {
        const char* reason;
        std::function<void()> happens;
        int resumes;
    } cases[] = {
        {"to another user", [&] { logind.activeChanged(logind.session, false); }, 0},
        {"the other user's", [&] { logind.activeChanged(other, true); }, 0},
        {"back", [&] { logind.activeChanged(logind.session, true); }, 1},
        {"unlocked", [&] { logind.tell(logind.session, session, "Unlock", {}); }, 1},
        {"saver on",
         [&] { logind.tell(QStringLiteral("/x"), screenSaver, "ActiveChanged", {true}); },
         0},
        {"saver off",
         [&] { logind.tell(QStringLiteral("/x"), screenSaver, "ActiveChanged", {false}); },
         1},
    };

    for (const auto& each : cases) {
        const int before = resumes;
        each.happens();
        if (each.resumes > 0)
            spinUntil([&] { return resumes > before; });
        else
            spinFor(50);
        EXPECT_EQ(resumes - before, each.resumes) << each.reason;
    }
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
