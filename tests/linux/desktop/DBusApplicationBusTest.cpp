#include "launcherapp/platform/linux/desktop/DBusApplicationBus.h"

#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/linux/BusObject.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusArgument>

namespace tessarine {
namespace {

using testing::HasSubstr;

class DBusApplicationBusTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(application.owns) << "the tests run on a session bus of their own";
    }

    /// The problem; the answer must come later, and once.
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
    BusObject application{"org.example.Some-App", "/org/example/Some_App"};
};

TEST_F(DBusApplicationBusTest, activatesWithItsToken) {
    EXPECT_EQ(activate({.busName = "org.example.Some-App", .activationToken = "t1"}, Seconds{5}),
              std::nullopt);
    EXPECT_EQ(application.last.interface(), QStringLiteral("org.freedesktop.Application"));
    EXPECT_EQ(application.last.member(), QStringLiteral("Activate"));
    EXPECT_EQ(application.last.signature(), QStringLiteral("a{sv}"));
    const auto data = qdbus_cast<QVariantMap>(application.last.arguments().at(0));
    EXPECT_EQ(data.value(QStringLiteral("desktop-startup-id")).toString(), QStringLiteral("t1"));
    EXPECT_EQ(data.value(QStringLiteral("activation-token")).toString(), QStringLiteral("t1"));
}

TEST_F(DBusApplicationBusTest, opensWhatItIsGiven) {
    EXPECT_EQ(
        activate({.busName = "org.example.Some-App", .uris = {"file:///a", "x:b"}}, Seconds{5}),
        std::nullopt);
    EXPECT_EQ(application.last.member(), QStringLiteral("Open"));
    EXPECT_EQ(application.last.signature(), QStringLiteral("asa{sv}"));
    EXPECT_EQ(application.last.arguments().at(0).toStringList(),
              QStringList({QStringLiteral("file:///a"), QStringLiteral("x:b")}));
}

TEST_F(DBusApplicationBusTest, tellsWhyItFailed) {
    using Answer = BusObject::Answer;

    const struct {
        const char* busName;
        Answer answer;
        Seconds timeout;
        const char* problem;
    } cases[] = {
        {"org.example.Some-App", Answer::no, Seconds{5}, "not now"},
        {"org.example.Some-App", Answer::emptyNo, Seconds{5}, "x.Refused"}, // at least its name
        {"org.example.Some-App", Answer::never, Seconds{0.05}, "reply"},
        {"org.example.Nobody", Answer::yes, Seconds{5}, "org.example.Nobody"},
        {"no bus name", Answer::yes, Seconds{5}, "no bus name"}, // never gets to the bus
    };

    for (const auto& [busName, answer, timeout, problem] : cases) {
        application.answer = answer;
        EXPECT_THAT(activate({.busName = busName}, timeout).value_or("(none)"), HasSubstr(problem))
            << busName;
    }
}

TEST_F(DBusApplicationBusTest, withoutABusThatIsTheProblem) {
    const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(activate({.busName = "org.example.Some-App"}, Seconds{5}), "there is no session bus");
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
}

} // namespace
} // namespace tessarine
