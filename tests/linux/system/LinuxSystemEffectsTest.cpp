#include "launcherapp/platform/linux/system/LinuxSystemEffects.h"

#include "launcherapp/platform/linux/system/EffectWays.h"
#include "tests/linux/system/SystemFixture.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <atomic>
#include <thread>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using enum SystemAction;

bool isTheLaunchersOwn(SystemAction action) {
    return action == quitAll || action == forceQuitDialog || action == timeHomeHere ||
           action == timeHomeClocks;
}

class LinuxSystemEffectsTest : public SystemFixture {
protected:
    /// False on a bus that has one of its own.
    [[nodiscard]] bool haveLogind() {
        if (!services.own("org.freedesktop.login1"))
            return false;
        for (const auto* method : {"CanReboot", "CanPowerOff", "CanSuspend"})
            services.answer(method, {QStringLiteral("yes")});
        services.answer("GetSession",
                        {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/session/c7")))});
        return true;
    }

    /// Until all is known.
    void start(LinuxSystemEffects& effects) {
        int changes = 0;
        const auto subscription = effects.onChange([&] { ++changes; });
        effects.start();
        EXPECT_TRUE(spinUntil([&] {
            endPrograms();
            return changes > 0; // what never can be had is told then
        }));
    }

    std::optional<std::string> perform(LinuxSystemEffects& effects, SystemAction action) {
        return ended([&](EffectDone done) { effects.perform(action, std::move(done)); });
    }
};

TEST_F(LinuxSystemEffectsTest, powerIsLogindsToGive) {
    ASSERT_TRUE(haveLogind());
    for (const auto* method : {"Reboot", "PowerOff", "Suspend"})
        services.answer(method);
    services.answer("CanPowerOff", {QStringLiteral("challenge")});
    LinuxSystemEffects effects(doors());
    start(effects);
    const std::pair<SystemAction, const char*> cases[] = {
        {restart, "/org/freedesktop/login1 Manager.Reboot(true)"},
        {restartImmediately, "/org/freedesktop/login1 Manager.Reboot(true)"},
        {shutDown, "/org/freedesktop/login1 Manager.PowerOff(true)"},
        {SystemAction::sleep, "/org/freedesktop/login1 Manager.Suspend(true)"},
    };
    for (const auto& [action, call] : cases) {
        services.calls.clear();
        EXPECT_EQ(effects.ability(action), Ability{});
        EXPECT_EQ(perform(effects, action), std::nullopt);
        EXPECT_THAT(services.acts(), ElementsAre(call));
    }
}

TEST_F(LinuxSystemEffectsTest, saysBeforehandWhatLogindRefuses) {
    ASSERT_TRUE(haveLogind());
    services.answer("CanReboot", {QStringLiteral("no")});
    services.answer("CanSuspend", {QStringLiteral("na")});
    LinuxSystemEffects effects(doors());
    EXPECT_TRUE(effects.ability(restart).available); // not known yet
    start(effects);
    EXPECT_EQ(effects.ability(restart).reason, "you may not restart this machine");
    EXPECT_EQ(effects.ability(SystemAction::sleep).reason, "this machine can't suspend");
    EXPECT_TRUE(effects.ability(shutDown).available);
    services.calls.clear();
    EXPECT_EQ(perform(effects, restart), "you may not restart this machine");
    EXPECT_EQ(perform(effects, shutDown), "not now"); // refused after all
    EXPECT_THAT(services.acts(), ElementsAre(HasSubstr("PowerOff")));
}

TEST_F(LinuxSystemEffectsTest, waitsNoLongerThanItSays) {
    ASSERT_TRUE(haveLogind());
    services.hung["CanSuspend"] = true;
    services.hung["PowerOff"] = true;
    patience.probe = Seconds{.2};
    patience.user = Seconds{.05};
    LinuxSystemEffects effects(doors());
    const auto problem = ended([&](EffectDone done) {
        effects.start();
        effects.perform(shutDown, std::move(done)); // before anything is known
    });
    EXPECT_TRUE(problem);
    EXPECT_THAT(services.acts(), ElementsAre(HasSubstr("PowerOff")));
    // What it didn't say is tried.
    EXPECT_TRUE(effects.ability(SystemAction::sleep).available);
}

TEST_F(LinuxSystemEffectsTest, withoutAnyBusOrProgramEachReasonIsAPhrase) {
    auto bare = doors();
    bare.sessionBus = [] { return std::optional<QDBusConnection>(); };
    bare.systemBus = [] { return QDBusConnection(QString()); };
    LinuxSystemEffects effects(std::move(bare));
    start(effects);
    for (const auto action : allSystemActions) {
        const auto ability = effects.ability(action);
        SCOPED_TRACE(SystemActions::name(action));
        const bool isAlwaysThere =
            action == emptyTrash || action == showTrash || isTheLaunchersOwn(action);
        EXPECT_EQ(ability.available, isAlwaysThere);
        EXPECT_NE(ability.reason.empty(), !isAlwaysThere);
        EXPECT_FALSE(ability.reason.ends_with('.'));
    }
    EXPECT_EQ(effects.ability(restart).reason, "there is no logind on this system");
    EXPECT_EQ(effects.ability(eject).reason, "there is no UDisks on this system");
}

TEST_F(LinuxSystemEffectsTest, aSystemBusThatHangsDelaysNothingElse) {
    auto hanging = doors();
    std::atomic<bool> isOver = false;
    hanging.systemBus = [&isOver] {
        while (!isOver)
            std::this_thread::sleep_for(std::chrono::milliseconds{1});
        return QDBusConnection(QString());
    };
    hanging.patience.probe = Seconds{.1};
    environment.desktops = {"XFCE"};
    install("xfce4-panel");
    LinuxSystemEffects effects(std::move(hanging));
    start(effects);
    EXPECT_EQ(effects.ability(restart).reason, "there is no logind on this system");
    EXPECT_EQ(perform(effects, restartDock), std::nullopt);
    EXPECT_THAT(ran, ElementsAre("xfce4-panel -r"));
    isOver = true;
    spinFor(20);
}

TEST_F(LinuxSystemEffectsTest, findsASystemBusThatGreetsLate) {
    ASSERT_TRUE(haveLogind());
    patience.lookAgain = Seconds{.05};
    auto late = doors();
    std::atomic<bool> greets = false;
    late.systemBus = [&greets, bus = late.systemBus] {
        return greets ? bus() : QDBusConnection(QString());
    };
    LinuxSystemEffects effects(std::move(late));
    start(effects);
    EXPECT_FALSE(effects.ability(restart).available);
    greets = true;
    EXPECT_TRUE(spinUntil([&] { return effects.ability(restart).available; }));
}

TEST_F(LinuxSystemEffectsTest, believesLogindThatItsSessionIsWaylands) {
    ASSERT_TRUE(haveLogind());
    environment.desktops = {"GNOME"};
    environment.hasX11 = true;
    install("pkill");
    const auto canRestartShell = [&](const char* logindSays, const char* weWereTold) {
        services.answer("Get", {QVariant::fromValue(QDBusVariant(QLatin1String(logindSays)))});
        auto told = doors();
        told.sessionType = weWereTold;
        LinuxSystemEffects effects(std::move(told));
        start(effects);
        return effects.ability(restartDock).available;
    };
    EXPECT_TRUE(canRestartShell("x11", "x11"));
    EXPECT_FALSE(canRestartShell("wayland", "x11"));
    EXPECT_FALSE(canRestartShell("tty", "tty"));
}

TEST_F(LinuxSystemEffectsTest, asksGSettingsWhatThereIs) {
    environment.desktops = {"ubuntu", "GNOME"};
    install("gsettings");
    prints["gsettings list-schemas"] = "org.gnome.desktop.interface\norg.gnome.x\n";
    LinuxSystemEffects effects(doors());
    start(effects);
    EXPECT_TRUE(effects.ability(darkMode).available);
    folderOpener = "nemo";
    EXPECT_FALSE(effects.ability(toggleHiddenFiles).available);
}

TEST_F(LinuxSystemEffectsTest, emptiesTheTrashOfEachMountApart) {
    const auto fill = [&](const std::string& trash) {
        scratch.folder(trash + "/files");
        scratch.folder(trash + "/info");
        std::ofstream(scratch.path(trash + "/files/a")) << "x";
        if (::getuid() != 0)
            return;
        for (const auto* each : {"", "/files", "/info"})
            ASSERT_EQ(::chown(scratch.path(trash + each).c_str(), 1000, 1000), 0);
    };
    if (::getuid() != 0 && ::getuid() != 1000)
        GTEST_SKIP() << "NOT MEASURED: the trash would be another user's";
    fill("/data/Trash");
    fill("/drive/.Trash-1000");
    fill("/kernel/.Trash-1000");
    mounts.mount(scratch.path("/drive"));
    mounts.mount(scratch.path("/kernel"), "proc");
    mounts.mount(scratch.path("/gone"));
    LinuxSystemEffects effects(doors());
    start(effects);
    EXPECT_EQ(perform(effects, emptyTrash), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path("/data/Trash/files")));
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path("/drive/.Trash-1000/files")));
    EXPECT_FALSE(std::filesystem::is_empty(scratch.path("/kernel/.Trash-1000/files")));
    EXPECT_THAT(log, ElementsAre("trash: 2 item(s) removed"));

    EXPECT_EQ(perform(effects, showTrash), std::nullopt);
    EXPECT_EQ(opened, "file://" + scratch.path("/data/Trash/files"));
}

class PortalScreenshotTest : public LinuxSystemEffectsTest {
protected:
    /// What the user does, once asked.
    std::optional<std::string> shoot(unsigned response, const char* uri) {
        services.answers["Screenshot"] = [this, response, uri](const QDBusMessage& call) {
            const auto options = qdbus_cast<QVariantMap>(call.arguments().at(1));
            EXPECT_TRUE(options.value(QStringLiteral("interactive")).toBool());
            auto sender = call.service().mid(1);
            sender.replace(QLatin1Char('.'), QLatin1Char('_'));
            const auto path = QStringLiteral("/org/freedesktop/portal/desktop/request/") + sender +
                              QLatin1Char('/') +
                              options.value(QStringLiteral("handle_token")).toString();
            queue.postAfter(Seconds{.02}, [this, path, response, uri] {
                services.tell(path,
                              "org.freedesktop.portal.Request",
                              "Response",
                              {response, QVariantMap{{QStringLiteral("uri"), QLatin1String(uri)}}});
            });
            return QVariantList{QVariant::fromValue(QDBusObjectPath(path))};
        };
        LinuxSystemEffects effects(doors());
        start(effects);
        EXPECT_TRUE(effects.ability(screenshotWindow).available);
        return perform(effects, screenshotWindow);
    }
};

TEST_F(PortalScreenshotTest, copiesThePictureThatTheUserTook) {
    ASSERT_TRUE(services.own("org.freedesktop.portal.Desktop"));
    services.answer("Get", {2U});
    EXPECT_EQ(shoot(0, "file:///home/me/Pictures/a%20b.png"), std::nullopt);
    EXPECT_EQ(copied, "/home/me/Pictures/a b.png");
    copied.clear();
    EXPECT_EQ(shoot(1, ""), std::nullopt); // taken back
    EXPECT_EQ(copied, "");
    EXPECT_THAT(shoot(2, "").value_or(""), HasSubstr("no picture"));
    services.answers.erase("Screenshot");
}

} // namespace
} // namespace tessarine
