#include "launcherapp/platform/linux/DBusApplicationBus.h"

#include "launcherapp/platform/linux/QtMainQueue.h"
#include "launcherapp/platform/linux/SessionBus.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace tessarine {
namespace {

using testing::HasSubstr;

/// An application on the bus that notes what it is told and answers as a test wants.
class FakeApplication : public QDBusVirtualObject {
public:
    enum class Answer { yes, no, never };

    Answer answer = Answer::yes;
    QString member;
    QVariantList arguments;

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        member = message.interface() + QLatin1Char('.') + message.member();
        arguments = message.arguments();
        if (answer == Answer::yes)
            connection.send(message.createReply());
        else if (answer == Answer::no)
            connection.send(
                message.createErrorReply(QStringLiteral("x.Refused"), QStringLiteral("not now")));
        return true;
    }
};

class DBusApplicationBusTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(sessionBus()) << "the tests run on a session bus of their own";
        // The same connection would answer itself without the bus; this is another program.
        ASSERT_TRUE(other.registerService(QStringLiteral("org.example.Some-App")));
        other.registerVirtualObject(QStringLiteral("/org/example/Some_App"), &application);
    }

    void TearDown() override {
        other.unregisterObject(QStringLiteral("/org/example/Some_App"));
        QDBusConnection::disconnectFromBus(QStringLiteral("other"));
    }

    std::optional<std::string> activate(const BusActivation& request, Seconds timeout) {
        int calls = 0;
        std::optional<std::string> result;
        bus.activate(request, timeout, [&](std::optional<std::string> problem) {
            ++calls;
            result = problem;
        });
        EXPECT_EQ(calls, 0) << "the answer comes later";
        EXPECT_TRUE(spinUntil([&] { return calls > 0; }));
        spinFor(20);
        EXPECT_EQ(calls, 1);
        return result;
    }

    QtMainQueue queue;
    DBusApplicationBus bus{queue};
    FakeApplication application;
    QDBusConnection other =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("other"));
};

TEST_F(DBusApplicationBusTest, activatesWithItsToken) {
    EXPECT_EQ(activate({.busName = "org.example.Some-App", .activationToken = "t1"}, Seconds{5}),
              std::nullopt);
    EXPECT_EQ(application.member, QStringLiteral("org.freedesktop.Application.Activate"));
    ASSERT_EQ(application.arguments.size(), 1);
    const auto data = qdbus_cast<QVariantMap>(application.arguments[0]);
    EXPECT_EQ(data.value(QStringLiteral("desktop-startup-id")).toString(), QStringLiteral("t1"));
    EXPECT_EQ(data.value(QStringLiteral("activation-token")).toString(), QStringLiteral("t1"));
}

TEST_F(DBusApplicationBusTest, opensWhatItIsGiven) {
    EXPECT_EQ(
        activate({.busName = "org.example.Some-App", .uris = {"file:///a", "x:b"}}, Seconds{5}),
        std::nullopt);
    EXPECT_EQ(application.member, QStringLiteral("org.freedesktop.Application.Open"));
    ASSERT_EQ(application.arguments.size(), 2);
    EXPECT_EQ(application.arguments[0].toStringList(),
              QStringList({QStringLiteral("file:///a"), QStringLiteral("x:b")}));
}

TEST_F(DBusApplicationBusTest, tellsWhyItFailed) {
    application.answer = FakeApplication::Answer::no;
    EXPECT_EQ(activate({.busName = "org.example.Some-App"}, Seconds{5}), "not now");
    application.answer = FakeApplication::Answer::never;
    EXPECT_THAT(activate({.busName = "org.example.Some-App"}, Seconds{0.05}).value_or(""),
                testing::Not(testing::IsEmpty()));
    EXPECT_THAT(activate({.busName = "org.example.Nobody"}, Seconds{5}).value_or(""),
                HasSubstr("org.example.Nobody"));
}

} // namespace
} // namespace tessarine
