#include "launcherapp/platform/linux/desktop/SessionWatch.h"

#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "tests/linux/BusObject.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {
namespace {

using testing::ElementsAreArray;

const auto ours = QStringLiteral("/org/freedesktop/login1/session/_32");
const auto others = QStringLiteral("/org/freedesktop/login1/session/_33");

/// A logind that says which session is the asker's.
class Logind : public BusObject {
public:
    Logind() : BusObject("org.freedesktop.login1", "/org/freedesktop/login1") {}

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(ours))));
        return true;
    }

    void ask(const QString& session, const char* signal) { tell(session, interface, signal); }

    void change(const QString& session, const char* property, bool value) {
        tell(session,
             "org.freedesktop.DBus.Properties",
             "PropertiesChanged",
             {QLatin1String(interface),
              QVariantMap{{QLatin1String(property), value}},
              QStringList()});
    }

private:
    static constexpr auto interface = "org.freedesktop.login1.Session";
};

class Saver : public BusObject {
public:
    explicit Saver(const char* name = "org.gnome.ScreenSaver")
        : BusObject(name, "/x"), interface_(name) {}

    void turn(bool active) { tell(QStringLiteral("/x"), interface_, "ActiveChanged", {active}); }

private:
    const char* interface_;
};

class SessionWatchTest : public testing::Test {
protected:
    using Events = std::vector<std::string>;

    /// Makes it happen until it is heard, since the bus is given its rules at a time that nothing
    /// tells; not so often that a crowd of signals is left to be heard.
    [[nodiscard]] bool hears(const std::string& event, const std::function<void()>& happens) {
        constexpr int pauseMilliseconds = 20;
        QElapsedTimer last;
        return spinUntil([&] {
            if (!last.isValid() || last.hasExpired(pauseMilliseconds)) {
                last.start();
                happens();
            }
            return !events.empty() && events.back() == event;
        });
    }

    /// By all that is heard of it.
    [[nodiscard]] bool hears(Logind& logind) {
        events.clear();
        return hears("locked", [&] { logind.ask(ours, "Lock"); }) &&
               hears("resumed", [&] { logind.ask(ours, "Unlock"); }) &&
               hears("locked", [&] { logind.change(ours, "LockedHint", true); }) && settles(logind);
    }

    /// What was told before is heard before.
    [[nodiscard]] bool settles(Logind& logind) {
        logind.ask(ours, "Unlock");
        return spinUntil([&] { return events.back() == "resumed"; });
    }

    /// What is told of what happens. The signals `end`, from the same sender, come after it: so
    /// nothing more can come of it then.
    void expectTold(Events expected,
                    const std::function<void()>& happens,
                    const std::function<void(bool isLocked)>& end) {
        events.clear();
        happens();
        for (const bool isLocked : {true, true, false}) {
            end(isLocked);
            expected.emplace_back(isLocked ? "locked" : "resumed");
        }
        spinUntil([&] { return events.size() >= expected.size(); });
        EXPECT_THAT(events, ElementsAreArray(expected));
    }

    QtMainQueue queue;
    ThreadPoolWorkQueues work{queue};
    SessionWatch watch{work};
    Events events;
    Subscription locks = watch.onLocked([this] { events.emplace_back("locked"); });
    Subscription resumes = watch.onResumed([this] { events.emplace_back("resumed"); });
};

TEST_F(SessionWatchTest, tellsWhatLogindSaysOfTheOwnSession) {
    Logind logind;
    ASSERT_TRUE(hears(logind));

    const struct {
        const char* reason;
        std::function<void()> happens;
        Events events;
    } cases[] = {
        {"another user's lock", [&] { logind.ask(others, "Lock"); }, {}},
        {"asked for", [&] { logind.ask(ours, "Lock"); }, {"locked"}},
        {"done by the desktop", [&] { logind.change(ours, "LockedHint", true); }, {"locked"}},
        {"undone with the password",
         [&] { logind.change(ours, "LockedHint", false); },
         {"resumed"}},
        {"undone without", [&] { logind.ask(ours, "Unlock"); }, {"resumed"}},
        {"to another user", [&] { logind.change(ours, "Active", false); }, {}},
        {"the other user's", [&] { logind.change(others, "Active", true); }, {}},
        {"back", [&] { logind.change(ours, "Active", true); }, {"resumed"}},
        {"no lock", [&] { logind.change(ours, "IdleHint", true); }, {}},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        expectTold(each.events, each.happens, [&](bool isLocked) {
            logind.ask(ours, isLocked ? "Lock" : "Unlock");
        });
    }
}

TEST_F(SessionWatchTest, hearsALogindThatIsStartedAnew) {
    std::optional<Logind> logind;
    logind.emplace();
    ASSERT_TRUE(hears(*logind));
    logind.reset();
    logind.emplace();
    EXPECT_TRUE(hears(*logind));
}

TEST_F(SessionWatchTest, hearsScreenSaversWithoutALogind) {
    for (const auto* name : {"org.gnome.ScreenSaver", "org.freedesktop.ScreenSaver"}) {
        SCOPED_TRACE(name);
        Saver saver(name);
        ASSERT_TRUE(hears("locked", [&] { saver.turn(true); }));
        ASSERT_TRUE(hears("resumed", [&] { saver.turn(false); }));
    }
}

TEST_F(SessionWatchTest, oneThatGoesBeforeItsBusHasAnsweredTakesNothingAlong) {
    Logind logind;
    ASSERT_TRUE(hears(logind));
    int hastyLocks = 0;
    for (const bool hasBegun : {false, true}) {
        SessionWatch hasty(work);
        const auto hastyLock = hasty.onLocked([&] { ++hastyLocks; });
        if (hasBegun)
            QCoreApplication::processEvents();
    }
    EXPECT_TRUE(hears(logind));
    SessionWatch next(work);
    int nextLocks = 0;
    const auto nextLock = next.onLocked([&] { ++nextLocks; });
    EXPECT_TRUE(spinUntil([&] {
        logind.ask(ours, "Lock");
        return nextLocks > 0;
    }));
    EXPECT_EQ(hastyLocks, 0);
}

} // namespace
} // namespace tessarine
