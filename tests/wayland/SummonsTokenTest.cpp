#include "launcherapp/platform/linux/desktop/DesktopApplication.h"
#include "launcherapp/platform/linux/input/portal/PortalHotkeyRegistrar.h"
#include "launcherapp/platform/linux/panel/wayland/WaylandActivationTokens.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/input/portal/FakePortal.h"

#include <gmock/gmock.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

namespace tessarine {
namespace {

using testing::ElementsAre;

/// What Qt and started programs find while a summons is handled, one for each.
class SummonsTokenTest : public testing::Test {
protected:
    void note() { found.push_back(qgetenv("XDG_ACTIVATION_TOKEN").toStdString()); }

    std::vector<std::string> found;
};

TEST_F(SummonsTokenTest, isThereWhileACallOfTheDesktopsIsHandled) {
    auto bus = QDBusConnection::sessionBus();
    const DesktopApplication application("com.example.Summoned",
                                         {.activate = [this] { note(); },
                                          .actions = {{"toggle", [this] { note(); }}},
                                          .problem = {}});
    const auto call = [&](const char* method, const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(QStringLiteral("com.example.Summoned"),
                                                      QStringLiteral("/com/example/Summoned"),
                                                      QStringLiteral("org.freedesktop.Application"),
                                                      QLatin1String(method));
        message.setArguments(arguments);
        const auto before = found.size();
        bus.send(message);
        EXPECT_TRUE(spinUntil([&] { return found.size() > before; }));
    };
    const QVariantMap token{{QStringLiteral("activation-token"), QStringLiteral("of the call")}};
    const QVariantList noParameter;
    call("ActivateAction", {QStringLiteral("toggle"), noParameter, token});
    call("Activate", {token});
    call("Activate", {QVariantMap()}); // as from a terminal: the one before is worth nothing now
    EXPECT_THAT(found, ElementsAre("of the call", "of the call", ""));
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

TEST_F(SummonsTokenTest, isThereWhileAKeyOfThePortalsIsHandled) {
    FakePortal portal;
    QtMainQueue queue;
    PortalHotkeyRegistrar registrar(queue, "com.corvane.tessarine");
    bool isSettled = false;
    registrar.setEvents({.pressed = [this](const HotkeyRegistrar::Press&) { note(); },
                         .keysChanged = {},
                         .settled =
                             [&](std::uint32_t, const HotkeyOutcome& outcome) {
                                 isSettled = outcome.kind == HotkeyOutcome::Kind::registered;
                             }});
    registrar.describe(1, {.name = "panel", .description = "panel"});
    registrar.grab(1, {.keyCode = 49, .carbonModifiers = 0x100});
    ASSERT_TRUE(spinUntil([&] { return isSettled; }));
    portal.activate(
        "panel", 0, {{QStringLiteral("activation_token"), QStringLiteral("of the key")}});
    portal.deactivate("panel");
    portal.activate("panel");
    ASSERT_TRUE(spinUntil([&] { return found.size() == 2; }));
    EXPECT_THAT(found, ElementsAre("of the key", ""));
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));

    // What a key starts without the panel.
    WaylandActivationTokens tokens;
    std::vector<std::optional<std::string>> taken;
    registrar.setEvents({.pressed = [&](const HotkeyRegistrar::Press&) {
        for (const auto activation : {Activation::background, Activation::foreground})
            taken.push_back(tokens.take(activation));
        note();
    }});
    portal.deactivate("panel");
    portal.activate("panel", 0, {{QStringLiteral("activation_token"), QStringLiteral("again")}});
    ASSERT_TRUE(spinUntil([&] { return taken.size() == 2; }));
    EXPECT_THAT(taken, ElementsAre(std::nullopt, "again"));
    EXPECT_EQ(found.back(), "") << "each counts once";
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

} // namespace
} // namespace tessarine
