#include "launcherapp/platform/linux/desktop/DesktopApplication.h"

#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <optional>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto name = "com.example.Summoned";

class DesktopApplicationTest : public testing::Test {
protected:
    void TearDown() override { QDBusConnection::disconnectFromBus(QStringLiteral("desktop")); }

    DesktopApplication::Handlers handlers() {
        return {.activate = [this] { told.push_back("activate"); },
                .actions = {{"toggle", [this] { told.push_back("toggle"); }},
                            {"clipboard", "there is no display"}},
                .problem = [this](const std::string& text) { problems.push_back(text); }};
    }

    bool nameIsOwned() { return desktop.interface()->isServiceRegistered(QLatin1String(name)); }

    /// The answer to a call by another program; "ok" or the error's name.
    std::string call(const char* method, const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(QLatin1String(name),
                                                      QStringLiteral("/com/example/Summoned"),
                                                      QStringLiteral("org.freedesktop.Application"),
                                                      QLatin1String(method));
        message.setArguments(arguments);
        const auto answer = desktop.asyncCall(message);
        EXPECT_TRUE(spinUntil([&] { return answer.isFinished(); }));
        return answer.isError() ? answer.error().name().toStdString() : "ok";
    }

    QDBusConnection desktop =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("desktop"));
    std::vector<std::string> told;
    std::vector<std::string> problems;
    const QVariantMap platformData{{QStringLiteral("desktop-startup-id"), QStringLiteral("x")}};
};

TEST_F(DesktopApplicationTest, isSummonedThroughTheBus) {
    std::optional<DesktopApplication> application;
    application.emplace(name, handlers());
    ASSERT_TRUE(spinUntil([&] { return nameIsOwned(); }));
    const QVariantList none; // the action's parameter, of type "av"
    const auto action = [&](const char* id) {
        return QVariantList{QString::fromUtf8(id), none, platformData};
    };

    const struct {
        const char* method;
        QVariantList arguments;
        std::string answer;
        std::vector<std::string> told;
    } cases[] = {
        {"Activate", {platformData}, "ok", {"activate"}},
        {"ActivateAction", action("toggle"), "ok", {"toggle"}},
        {"ActivateAction", action("dance"), "org.freedesktop.DBus.Error.InvalidArgs", {}},
        {"ActivateAction", action("clipboard"), "org.freedesktop.DBus.Error.NotSupported", {}},
        {"Open", {QStringList{QStringLiteral("file:///x")}, platformData}, "ok", {}},
        {"Activate", {}, "org.freedesktop.DBus.Error.UnknownMethod", {}}, // not as the call is
        {"Explode", {platformData}, "org.freedesktop.DBus.Error.UnknownMethod", {}},
    };

    for (const auto& each : cases) {
        told.clear();
        EXPECT_EQ(call(each.method, each.arguments), each.answer) << each.method;
        EXPECT_EQ(told, each.told) << each.method;
    }
    EXPECT_THAT(problems, IsEmpty());
    application.reset();
    EXPECT_TRUE(spinUntil([&] { return !nameIsOwned(); }));
}

TEST_F(DesktopApplicationTest, aNameThatIsTakenComesInItsTurn) {
    ASSERT_TRUE(desktop.registerService(QLatin1String(name)));
    const DesktopApplication application(name, handlers());
    ASSERT_TRUE(spinUntil([&] { return !problems.empty(); }));
    EXPECT_THAT(
        problems,
        ElementsAre("D-Bus: the name com.example.Summoned is another program's until it ends"));
    desktop.unregisterService(QLatin1String(name));
    EXPECT_TRUE(spinUntil([&] { return nameIsOwned(); }));
    EXPECT_EQ(call("Activate", {platformData}), "ok");
}

TEST_F(DesktopApplicationTest, withoutABusThatIsTheProblem) {
    const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    const DesktopApplication application(name, handlers());
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_THAT(problems, ElementsAre(HasSubstr("there is no session bus")));
}

} // namespace
} // namespace tessarine
